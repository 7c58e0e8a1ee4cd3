#include "platform/say.h"

#include "base/visible_text.h"
#include "platform/terminal.h"

#include <cstdio>

namespace orlo {

void say(const std::string &line)
{
    const std::string text = (is_terminal(stderr) ? visible_text(line) : line) + "\n";
    std::fwrite(text.data(), 1, text.size(), stderr);
}

} // namespace orlo

#include "view/messages.h"

#include "base/visible_text.h"
#include "platform/say.h"
#include "platform/terminal.h"

#include <cstdio>

namespace orlo::view {
namespace {

void put(const std::string &text) { std::fwrite(text.data(), 1, text.size(), stderr); }

// a caret after nothing but blanks; it stands at a byte of the line before it
bool is_caret(std::string_view line) { return line.ends_with('^') && line.find_first_not_of(" \t") == line.size() - 1; }

} // namespace

void tell(const std::string &line) { say(line); }

void pass_on(std::string_view messages)
{
    if (!is_terminal(stderr))
        return put(std::string{messages});
    std::string      shown;
    std::string_view before;
    while (!messages.empty()) { // each round takes a line
        const std::size_t      end  = messages.find('\n');
        const std::string_view line = messages.substr(0, end);
        shown += is_caret(line) ? margin_under(before, line.size() - 1) + "^" : visible_text(line, "\t");
        shown += end == std::string_view::npos ? "" : "\n";
        messages.remove_prefix(end == std::string_view::npos ? messages.size() : end + 1);
        before = line;
    }
    put(shown);
}

} // namespace orlo::view

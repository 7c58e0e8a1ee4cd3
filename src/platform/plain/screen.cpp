// Without signals nothing can end the program while text is gathered but the program itself, which flushes it.

#include "platform/screen.h"

#include "platform/output_files.h"
#include "platform/terminal.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace orlo {
namespace {

constexpr std::size_t MOST_GATHERED = 32768; // bytes

bool        shown     = true;
bool        gathering = false;
char        gathered[MOST_GATHERED];
std::size_t used = 0;

} // namespace

void show_screen(bool is_shown) { shown = is_shown; }

bool screen_is_shown() { return shown; }

void put_on_screen(const char *text, std::size_t length)
{
    if (!shown)
        return;
    if (!gathering) {
        std::fwrite(text, 1, length, stderr);
        return;
    }
    while (length > 0) { // each round takes a part of the text
        const std::size_t piece = std::min(length, MOST_GATHERED - used);
        std::memcpy(gathered + used, text, piece);
        used += piece;
        if (used == MOST_GATHERED)
            flush_screen();
        text += piece;
        length -= piece;
    }
}

void gather_screen()
{
    if (!is_terminal(stderr) && !is_output(stderr))
        gathering = true;
}

void end_gathering()
{
    flush_screen();
    gathering = false;
}

void flush_screen()
{
    std::fwrite(gathered, 1, used, stderr);
    used = 0;
}

void flush_screen_in_signal() {}

} // namespace orlo

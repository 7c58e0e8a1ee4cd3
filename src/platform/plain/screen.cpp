// Text goes out by the C library. What ends a program may come in a thread of its own: who is about to write a piece takes it
// first, so that each byte goes out once, and what is gathered is put back to its start only while the end is held back.

#include "platform/screen.h"

#include "platform/ending_signals.h"
#include "platform/output_files.h"
#include "platform/terminal.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>

namespace orlo {
namespace {

constexpr std::size_t MOST_GATHERED = 32768; // bytes

bool                     shown     = true;
bool                     gathering = false;
char                     gathered[MOST_GATHERED];
std::atomic<std::size_t> begin = 0; // of what is gathered and not written
std::atomic<std::size_t> end   = 0;

void write_gathered()
{
    const std::size_t last  = end;
    const std::size_t first = begin.exchange(last);
    if (first < last)
        std::fwrite(gathered + first, 1, last - first, stderr);
}

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
        const std::size_t used  = end;
        const std::size_t piece = std::min(length, MOST_GATHERED - used);
        std::memcpy(gathered + used, text, piece);
        end = used + piece;
        if (used + piece == MOST_GATHERED)
            flush_screen();
        text += piece;
        length -= piece;
    }
}

void gather_screen() { gathering = gathering || (!is_terminal(stderr) && !is_output(stderr)); }

void end_gathering()
{
    flush_screen();
    gathering = false;
}

void flush_screen()
{
    write_gathered();
    hold_ending_signals();
    begin = 0;
    end   = 0;
    release_ending_signals();
}

void flush_screen_in_signal() { write_gathered(); }

} // namespace orlo

// A signal may come at any time. One that ends the process shows what is gathered up to it, and each byte goes out once: the ending
// signals are held back while bytes go from "gathered" to "written". A process that waits for a reader must still be ended by
// them, so that waiting is done before, by poll; a pipe that has room takes PIPE_BUF bytes without waiting (pipe(7)).
// A fault of the program itself shows them too, and then ends it as if it had not been looked at.

#include "platform/screen.h"

#include "platform/ending_signals.h"
#include "platform/output_files.h"
#include "platform/terminal.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <poll.h>
#include <unistd.h>

namespace orlo {
namespace {

constexpr std::size_t MOST_GATHERED = 32768; // bytes
constexpr int         FOR_EVER      = -1;
constexpr int         NOT_AT_ALL    = 0;
constexpr int         faults[]      = {SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL};

bool                     shown     = true;
bool                     gathering = false;
int                      screen    = -1; // its descriptor while text is gathered
char                     gathered[MOST_GATHERED];
std::atomic<std::size_t> begin = 0; // of what is gathered and not written
std::atomic<std::size_t> end   = 0;

static_assert(std::atomic<std::size_t>::is_always_lock_free); // so that a signal may look at it

// writes a piece, or gives everything up when the screen takes nothing
void write_piece(bool ready)
{
    hold_ending_signals();
    const std::size_t length  = std::min<std::size_t>(end - begin, PIPE_BUF);
    const ssize_t     written = ready ? write(screen, gathered + begin, length) : 0;
    begin                     = written > 0 ? begin + static_cast<std::size_t>(written) : end.load();
    release_ending_signals();
}

void write_gathered(int patience)
{
    pollfd room{screen, POLLOUT, 0};
    while (begin < end) { // each round writes, gives up or was interrupted
        const int ready = poll(&room, 1, patience);
        if (ready >= 0 || errno != EINTR)
            write_piece(ready > 0);
    }
}

// a signal is held back in its own handler: raised again, it comes when that is left, and ends the program
extern "C" void show_and_end(int number)
{
    write_gathered(NOT_AT_ALL);
    static_cast<void>(std::raise(number));
}

// for each fault that has the one
void change_handlers(void (*from)(int), void (*to)(int))
{
    struct sigaction action {};
    action.sa_handler = to;
    action.sa_flags   = static_cast<int>(SA_RESETHAND);
    for (const int number : faults) {
        struct sigaction now {};
        if (sigaction(number, nullptr, &now) == 0 && now.sa_handler == from)
            sigaction(number, &action, nullptr);
    }
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
        const std::size_t used  = end.load(std::memory_order_relaxed);
        const std::size_t piece = std::min(length, MOST_GATHERED - used);
        std::memcpy(gathered + used, text, piece);
        end.store(used + piece, std::memory_order_release);
        if (used + piece == MOST_GATHERED)
            flush_screen();
        text += piece;
        length -= piece;
    }
}

void gather_screen()
{
    screen = fileno(stderr);
    if (gathering || screen < 0 || is_terminal(stderr) || is_output(stderr))
        return;
    gathering = true;
    change_handlers(SIG_DFL, show_and_end);
}

void end_gathering()
{
    if (!gathering)
        return;
    flush_screen();
    change_handlers(show_and_end, SIG_DFL);
    gathering = false;
}

void flush_screen()
{
    if (end == 0)
        return;
    write_gathered(FOR_EVER);
    hold_ending_signals();
    begin = 0;
    end   = 0;
    release_ending_signals();
}

void flush_screen_in_signal() { write_gathered(NOT_AT_ALL); }

} // namespace orlo

// What a signal does is asked by sigaction alone: setting it, even for a moment, to "ignored" would throw away a signal that waits.
// The handler holds all ending signals back and takes itself from all of them, so that things are cleared away once.

#include "platform/ending_signals.h"

#include <csignal>
#include <unistd.h>

#ifdef __linux__
#include <sys/prctl.h>
#endif

namespace orlo {
namespace {

// not those of a fault of the program itself: nothing can be relied on then, and a core file should show it as it was
constexpr int ending_signals[] = {SIGHUP,  SIGINT,  SIGQUIT,   SIGTERM, SIGALRM, SIGUSR1,
                                  SIGUSR2, SIGXCPU, SIGVTALRM, SIGPROF, SIGPOLL};

ClearAway clear_away_first = nullptr; // settled before a handler is set
int       holds            = 0;       // calls of hold_ending_signals that are not released
sigset_t  mask_before{};              // of the first of them

sigset_t all_ending_signals()
{
    sigset_t set;
    sigemptyset(&set);
    for (const int number : ending_signals)
        sigaddset(&set, number);
    return set;
}

// for each signal that has the one
void change_handlers(void (*from)(int), void (*to)(int))
{
    struct sigaction action {};
    action.sa_handler = to;
    action.sa_mask    = all_ending_signals();
    for (const int number : ending_signals) {
        struct sigaction now {};
        if (sigaction(number, nullptr, &now) == 0 && now.sa_handler == from)
            sigaction(number, &action, nullptr);
    }
}

// a signal is held back in its own handler: raised again, it comes when that is left, and ends the program
extern "C" void clear_away_and_end(int number)
{
    clear_away_first();
    let_signals_end();
    static_cast<void>(std::raise(number));
}

} // namespace

void hold_ending_signals()
{
    const sigset_t set = all_ending_signals();
    if (holds++ == 0)
        sigprocmask(SIG_BLOCK, &set, &mask_before);
}

void release_ending_signals()
{
    if (--holds == 0)
        sigprocmask(SIG_SETMASK, &mask_before, nullptr);
}

void on_ending_signal(ClearAway clear_away)
{
    hold_ending_signals();
    clear_away_first = clear_away;
    change_handlers(SIG_DFL, clear_away_and_end);
    release_ending_signals();
}

void end_with_parent([[maybe_unused]] int parent)
{
#ifdef __linux__
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent)
        static_cast<void>(std::raise(SIGTERM));
#endif
}

void let_signals_end() { change_handlers(clear_away_and_end, SIG_DFL); }

} // namespace orlo

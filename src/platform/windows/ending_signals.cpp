// Windows calls a handler in a thread of its own and ends the program when the last one is left: at Ctrl-C, when the console is
// closed, the user logs off or the machine is shut down. Holding back is a lock, which the handler takes for good.

#include "platform/ending_signals.h"

#include <windows.h>

namespace orlo {
namespace {

SRWLOCK   held             = SRWLOCK_INIT;
int       holds            = 0;       // calls of hold_ending_signals that are not released
ClearAway clear_away_first = nullptr; // settled before the handler is set

BOOL WINAPI clear_away_and_end(DWORD)
{
    AcquireSRWLockExclusive(&held);
    clear_away_first();
    return FALSE;
}

} // namespace

void hold_ending_signals()
{
    if (holds++ == 0)
        AcquireSRWLockExclusive(&held);
}

void release_ending_signals()
{
    if (--holds == 0)
        ReleaseSRWLockExclusive(&held);
}

void on_ending_signal(ClearAway clear_away)
{
    hold_ending_signals();
    let_signals_end();
    clear_away_first = clear_away;
    SetConsoleCtrlHandler(clear_away_and_end, TRUE);
    release_ending_signals();
}

void let_signals_end() { SetConsoleCtrlHandler(clear_away_and_end, FALSE); }

void end_with_parent(int) {}

} // namespace orlo

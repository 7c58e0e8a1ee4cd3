// ending_signals.h: the signals that end a program from outside: interrupted, terminated, hung up, out of time. Owns their handlers
// and whether they are held back; knows nothing of what there is to clear away. A signal that the caller had switched off stays
// off.
#pragma once

namespace orlo {

/// What is done before a signal ends the program: it interrupts anything, so that it may call only what POSIX lists as safe for
/// that (kill, poll, unlink, waitpid ...), and may look only at what is settled while the signals are held back.
using ClearAway = void (*)();

/// Holds the signals back: one that comes now waits until they are released. Calls may be nested.
void hold_ending_signals();

/// Ends the last hold. In a child that was forked meanwhile it gives the mask that the program was started with.
void release_ending_signals();

/// From now on a signal that ends the program clears away first; the program still ends by that signal.
/// @param clear_away not null
void on_ending_signal(ClearAway clear_away);

/// From now on signals end the program at once, as before on_ending_signal. To be called in a child as well.
void let_signals_end();

/// To be called in a child: the process is asked to end when its parent has ended in whatever way, where the system knows how.
/// @param parent the parent's number, for it may have ended already
void end_with_parent(int parent);

} // namespace orlo

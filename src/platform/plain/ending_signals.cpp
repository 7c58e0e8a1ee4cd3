// No signal is handled: what ends the program from outside ends it at once.

#include "platform/ending_signals.h"

namespace orlo {

void hold_ending_signals() {}
void release_ending_signals() {}
void on_ending_signal(ClearAway) {}
void let_signals_end() {}
void end_with_parent(int) {}

} // namespace orlo

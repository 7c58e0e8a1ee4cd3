// Writes a finished event list as the "i" statements of a Csound score.
#pragma once

#include "events/event_list.h"

#include <cstdio>

namespace orlo {

/// Drops the rests from a list and writes a line for every event that is left, each p-field in its output type.
/// Write errors are left to the stream's error flag.
/// @param n p-fields of an event
/// @return false for a list that is empty or all rests (which is empty then, and told on the screen)
[[nodiscard]] bool print_csound(Event *&list, std::FILE *out, std::int32_t n);

} // namespace orlo

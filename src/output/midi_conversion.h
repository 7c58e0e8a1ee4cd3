// Turns a finished event list into the note-ons and note-offs of a MIDI track, in time order.
#pragma once

#include "events/event_list.h"

#include <cstdint>

namespace orlo {

/// Converts a list in place: rests are dropped, every event becomes a note-on with a note-off at its end; p4 becomes the velocity,
/// p5 the key. Each event is traced on the screen.
/// @param n p-fields of an event
/// @param length gets the bytes of the track's events
/// @return 1, or 0 for a list that is empty or all rests (which is empty then, and told on the screen), or 32 as -1
[[nodiscard]] int List2MIDI(Event *&list, std::int32_t n, std::uint64_t &length);

} // namespace orlo

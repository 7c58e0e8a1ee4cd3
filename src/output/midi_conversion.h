// Turns a finished event list into the note-ons and note-offs of a MIDI track, in time order.
#pragma once

#include "events/event_list.h"

#include <cstdint>

namespace orlo {

extern int MKMIDI; // 1: a MIDI file is made instead of a score, 0 at start; set by the options

inline constexpr float TICKS_PER_SECOND = 480.0F;

/// Seconds as ticks, truncated; a negative time gives 0, one that is no number or out of range 2^63.
[[nodiscard]] std::uint64_t ticks(float seconds);

/// Converts a list in place: rests are dropped, every event becomes a note-on with a note-off at its end; p4 becomes the velocity,
/// p5 the key. Each event is traced on the screen.
/// @param n p-fields of an event
/// @param length gets the bytes of the track's events
/// @return 1, or 0 for a list that is empty or all rests (which is empty then, and told on the screen), or 32 as -1
[[nodiscard]] int List2MIDI(Event *&list, std::int32_t n, std::uint64_t &length);

} // namespace orlo

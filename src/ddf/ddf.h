// The frame of the generators (dynamic data functions): the loop over events and the storing of their values. What a generator
// reads and how it makes a value is its own.
#pragma once

#include "base/codes.h"
#include "events/section.h"
#include "input/line_reader.h"

#include <cstdint>

namespace orlo {

inline constexpr float SPAN_SLACK = 5.0F; // beats that a span may reach past the last event without a warning

inline constexpr int MOST_STALLED_STEPS = 100000; // p2 steps in a row that use up nothing of a span of beats
inline constexpr int MOST_FULL_WARNINGS = 100000; // warnings of a full block in one count span of p2

/// Reads the generator of a code, with the position after its name and stores its values in the section, which is done when the
/// block is full. A code without a generator does nothing. @return 0, 16, 23, 27, 32, 36 to 42, 48, 50 to 53, 55, 57 to 62, 63, 64,
/// 72, 97, or an error of reading
[[nodiscard]] int do_DDF(Code code, Section &section, Input &in);

/// Events that a span covers from the one to be filled on, outside p2. Warns of a span of beats that reaches past the last event.
/// @param first,last get the beats of the first and of the last covered event, 0 for a span of events
[[nodiscard]] std::uint64_t covered_events(float span, const Section &section, const Input &in, float &first, float &last);

/// Reports that the block is full and ends the section.
void truncate(Section &section, const Input &in);

} // namespace orlo

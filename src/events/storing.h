// Where a value of a section goes: p2 makes events, p3 gives them durations, every further p-field a value. Reads no text.
#pragma once

#include "events/section.h"
#include "input/line_reader.h"

#include <cstdint>

namespace orlo {

/// What a p3 value means, by its magnitude.
enum class P3Code : std::int32_t { factor = 0, longer = 200, shorter = 300, beats = 400, seconds = 1000 };

/// Takes a p3 value apart. @return the amount, with the sign of the value
float extract_p3val(P3Code &code, float value);

/// Stores a p3 value as the duration of the event after the cursor, which becomes the cursor. Two draws.
/// Warning 1 shows no line. @return the code of the value
P3Code store_p3(Section &section, const Input &in, float value);

/// Stores a value of a p-field from p4 up, deviated and rounded by adjust. One draw. @return false when memory is exhausted
[[nodiscard]] bool store_value(Section &section, float value);

/// As store_value; a negative note (a rest) flips the sign of the receiving event's duration.
[[nodiscard]] bool store_value_or_rest(Section &section, float value);

/// Creates the event of a p2 value in beats and moves CBEATS on. Seconds are the converted value.
/// @return false when memory is exhausted
[[nodiscard]] bool store_start(Section &section, float value, float seconds);

/// What tells an interval of 0, which a block given in beats refuses: the value as it was written, or what it is in seconds.
enum class ZeroBy { value, seconds };

/// Stores one value of the section, whichever p-field it is. @return 0, 32, or 54 for an interval of 0
[[nodiscard]] int store_one(Section &section, const Input &in, float value, ZeroBy zero);

/// Stores the last value once more or, from p4 up after a chord, the last chord, whose members are counted as events.
/// @return as store_one
[[nodiscard]] int store_last(Section &section, const Input &in, ZeroBy zero);

/// A value rounded to a semitone for the pitch input types, unless they were written with "x".
[[nodiscard]] float adjust(float value);

} // namespace orlo

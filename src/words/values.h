// Single values as they are written in each input type: numbers, decibels, note names, pitches, rhythms.
#pragma once

#include "input/line_reader.h"

#include <cstdint>

namespace orlo {

inline constexpr std::int32_t MAX_OCTAVE = 9; // of a note name

/// Reads one value in the section's input type; "z" is the last value. @return false where no such value stands
[[nodiscard]] bool get_input_type(float &value, Input &in);

/// Note name: letter, modifiers, optional octave, which is remembered. In semitones above 4.00, an octave higher for MIDI; -1 for
/// "r".
[[nodiscard]] bool get_pitch(float &value, Input &in);

/// Rhythm in beats: 4 / n, points, ties; negative for a negative n.
[[nodiscard]] bool get_rdc(float &value, Input &in);

/// Whether a character can begin a value of the section's input type.
[[nodiscard]] bool in_limits(char c);

/// Sets the remembered octave back to its start.
void reset_values();

} // namespace orlo

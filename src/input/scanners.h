// Number scanners over the current line. Each skips blanks before the number, stops at the first character that does not belong to
// it, and returns 1 or 0; none reports anything, none knows exponents, hexadecimal forms or digit separators.
#pragma once

#include "input/line_reader.h"

#include <cstdint>

namespace orlo {

inline constexpr std::int32_t  MIN_INTEGER  = -32768;
inline constexpr std::int32_t  MAX_INTEGER  = 32767;
inline constexpr std::uint32_t MAX_UNSIGNED = 65535;
inline constexpr float         MAX_DECIBELS = 96.0F;

/// Real number in 32 or 64 bits: digits are gathered as value * 10 + digit, then divided by a divisor of 32 bits
/// that wraps around after nine fraction digits. Fails without a digit or a point, just past a sign.
[[nodiscard]] bool get_f(float &value, Input &in);
[[nodiscard]] bool get_df(double &value, Input &in);

/// Whole number from MIN_INTEGER to MAX_INTEGER; fails on the first digit when out of range.
[[nodiscard]] bool get_i(std::int32_t &value, Input &in);

/// Whole number from 0 to MAX_UNSIGNED, "+" allowed; fails on the first digit when out of range.
[[nodiscard]] bool get_ui(std::uint32_t &value, Input &in);

/// Whole number of 64 bits, wrapping around; blanks after it are skipped.
[[nodiscard]] bool get_uli(std::uint64_t &value, Input &in);
[[nodiscard]] bool get_li(std::int64_t &value, Input &in); // only tests call it

/// Decibels from 0 to MAX_DECIBELS, as a linear amplitude.
[[nodiscard]] bool get_db(float &value, Input &in);

/// Octave-point-pitch-class, as semitones above 4.00; an octave higher for MIDI.
[[nodiscard]] bool get_oct_pc(float &value, Input &in);

/// 1 when the character at the position stands for the last value ("z" or "Z").
[[nodiscard]] inline bool is_last_variable(const Input &in) { return lower(peek(in)) == 'z'; }

} // namespace orlo

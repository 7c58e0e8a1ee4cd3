// Rounding, remainders and conversions to integers that are defined for every input. Pure functions.
#pragma once

#include <cstdint>
#include <limits>

namespace orlo {

/// A real as an integer, truncated toward zero; a NaN or a value out of range gives the most negative integer.
[[nodiscard]] std::int32_t        to_int32(double value);
[[nodiscard]] inline std::int64_t to_int64(double value)
{
    if (value >= -9223372036854775808.0 && value < 9223372036854775808.0)
        return static_cast<std::int64_t>(value);
    return std::numeric_limits<std::int64_t>::min();
}
/// As to_int64 for values from 0 to 2^64; a NaN or a value out of range (below 0 too) gives 2^63.
[[nodiscard]] std::uint64_t to_uint64(double value);

/// Nearest integer, halves up: 2.5 gives 3, -2.5 gives -2.
[[nodiscard]] std::int32_t Round(float x);

/// Nearest whole number as a float, halves up.
[[nodiscard]] float RoundF(float x);

/// Remainder of x by m with the sign of x; 0 when m is 0. The quotient is truncated, so mod(-1, 12) is -1.
[[nodiscard]] float mod(float x, float m);

/// Exchanges two floats.
void swapf(float &a, float &b);

} // namespace orlo

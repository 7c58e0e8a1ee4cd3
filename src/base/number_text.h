// Numbers as text, byte for byte as the C library's "%*.*f" and "%*d" write them, without its cost. Pure functions.
// What is no number is always "-nan": whether its sign bit is set depends on the processor that made it and on the compiler.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orlo {

inline constexpr std::size_t LONGEST_NUMBER = 64; // a 32-bit float has at most 39 digits before its point and 7 after it
inline constexpr int         MOST_DECIMALS  = 7;

/// A real as the C library may print it: the same value, with the sign bit set when it is no number.
[[nodiscard]] double printable(double value);

/// Writes a real number right-aligned, without a NUL, rounded to the nearest (ties of the exact binary value to even).
/// @param width at most 16
/// @param decimals 0 to MOST_DECIMALS
/// @return the end of the text, at most LONGEST_NUMBER bytes on
[[nodiscard]] char *put_real(char *text, float value, int width, int decimals);

/// Writes a whole number right-aligned, without a NUL.
/// @return the end of the text, at most LONGEST_NUMBER bytes on
[[nodiscard]] char *put_whole(char *text, std::int32_t value, int width);

} // namespace orlo

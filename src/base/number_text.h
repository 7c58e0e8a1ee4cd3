// Numbers as text, byte for byte as the C library's "%*.*f" and "%*d" write them, without its cost. What is no finite number is
// written here and nowhere else: C libraries differ in its text, and processors and compilers in its sign. And texts as numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>

namespace orlo {

inline constexpr std::size_t LONGEST_NUMBER = 64;  // a 32-bit float has at most 39 digits before its point and 7 after it
inline constexpr std::size_t LONGEST_DOUBLE = 400; // a 64-bit one has 309
inline constexpr int         MOST_DECIMALS  = 7;

/// What stands for a number that is not finite: "inf", "-inf", or "-nan", whatever the sign bit of the last.
[[nodiscard]] std::string_view not_finite_text(double value);

/// Writes a real number right-aligned, without a NUL, rounded to the nearest (ties of the exact binary value to even).
/// @param width at most 16
/// @param decimals 0 to MOST_DECIMALS
/// @return the end of the text, at most LONGEST_NUMBER bytes on
[[nodiscard]] char *put_real(char *text, float value, int width, int decimals);

/// As put_real for a 64-bit number. @return the end of the text, at most LONGEST_DOUBLE bytes on
[[nodiscard]] char *put_double(char *text, double value, int width, int decimals);

/// Writes a real number, as put_real does, to a stream.
void print_real(std::FILE *stream, float value, int width, int decimals);

/// Writes a whole number right-aligned, without a NUL.
/// @return the end of the text, at most LONGEST_NUMBER bytes on
[[nodiscard]] char *put_whole(char *text, std::int32_t value, int width);

/// Reads a number that is the whole of a text: [ "-" ] digits [ "." digits ] [ "e" [ sign ] digits ]; digits may stand on one side
/// of the point alone. One that is too large gives infinity, one too near to 0 what is nearest to it.
/// @return false for any other text; value is left as it is
[[nodiscard]] bool read_double(std::string_view text, double &value);

/// The same by what every C library has, for read_double where the C++ library reads no reals.
[[nodiscard]] bool read_double_by_library(std::string_view text, double &value);

} // namespace orlo

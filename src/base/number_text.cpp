// A 32-bit float is a mantissa of 24 bits times a power of two, so that value * 10^decimals is the mantissa times 10^decimals,
// shifted: below 2^39 it fits into 64 bits, and the bits shifted out tell how to round. Larger values go through the C library.

#include "base/number_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <version>

namespace orlo {
namespace {

constexpr std::uint32_t MANTISSA_BITS = 23;
constexpr std::uint32_t HIDDEN_BIT    = std::uint32_t{1} << MANTISSA_BITS;
constexpr int           EXPONENT_BIAS = 150; // of a mantissa taken as a whole number
constexpr int           LARGEST_SHIFT = 15;  // 24 bits, and 24 of 10^7, leave room for so many more

constexpr int MOST_WIDTH  = 16;
constexpr int MOST_DIGITS = 19; // below 2^63
constexpr int GROUP       = 8;  // digits that are made at once

constexpr auto powers_of_ten = [] {
    std::array<std::uint64_t, MOST_DIGITS + 1> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i)
        powers[i] = powers[i - 1] * 10;
    return powers;
}();

// the digits of 0 to 99, two each
constexpr auto pairs = [] {
    std::array<char, 200> digits{};
    for (std::size_t i = 0; i < digits.size(); ++i)
        digits[i] = static_cast<char>('0' + (i % 2 == 0 ? i / 20 : i / 2 % 10));
    return digits;
}();

// a number shifted right by 1 or more, to the nearest, ties to even
std::uint64_t shift_right_rounded(std::uint64_t number, int shift)
{
    if (shift >= 64)
        return 0; // the number has 48 bits, less than half of what is asked for
    const std::uint64_t half = std::uint64_t{1} << (shift - 1);
    return (number + half - 1 + (number >> shift & 1)) >> shift;
}

// digits of a number, none of 0; 1233 / 4096 is a little more than the logarithm of 2
int count_digits(std::uint64_t number)
{
    const auto at_most = static_cast<std::size_t>(std::bit_width(number) * 1233 >> 12);
    return static_cast<int>(at_most) + (number >= powers_of_ten[at_most] ? 1 : 0);
}

// takes so many of a number's last digits off and writes them in front of a text; returns where they begin
char *put_digits_before(char *start, std::uint64_t &number, int count)
{
    for (; count >= 2; count -= 2) {
        start -= 2;
        std::memcpy(start, pairs.data() + 2 * (number % 100), 2);
        number /= 100;
    }
    if (count > 0) {
        *--start = static_cast<char>('0' + number % 10);
        number /= 10;
    }
    return start;
}

// writes a number with a point before its last decimals in front of an end; returns where it begins
char *put_digits(char *end, std::uint64_t number, int digits, int decimals)
{
    char *start = put_digits_before(end, number, decimals);
    if (decimals > 0)
        *--start = '.';
    return put_digits_before(start, number, digits - decimals);
}

// the digits of a number of GROUP digits at most, the first one in the lowest byte: halves, their halves and theirs side by side
std::uint64_t digits_of_group(std::uint64_t number)
{
    const std::uint64_t fours = number / 10000 | number % 10000 << 32;
    const std::uint64_t upper = fours * 5243 >> 19 & 0x0000007F0000007F; // of each by 100
    const std::uint64_t twos  = upper | (fours - upper * 100) << 16;
    const std::uint64_t tens  = twos * 103 >> 10 & 0x000F000F000F000F;
    return (tens | (twos - tens * 10) << 8) + 0x3030303030303030;
}

// the last 1 to GROUP digits of a group, the first one in the lowest byte; the mask says to a reader that no shift is too wide
std::uint64_t last_digits(std::uint64_t group, int digits) { return group >> (8 * (GROUP - digits) & 63); }

// as put_digits; what is written after a part is overwritten by the next one
char *put_group(char *end, std::uint64_t number, int digits, int decimals)
{
    const std::uint64_t group    = digits_of_group(number);
    const std::uint64_t whole    = last_digits(group, digits);
    char               *fraction = end - decimals;
    char               *start    = fraction - (digits - decimals) - (decimals > 0 ? 1 : 0);
    std::memcpy(start, &whole, GROUP);
    if (decimals > 0) {
        const std::uint64_t rest = last_digits(group, decimals);
        fraction[-1]             = '.';
        std::memcpy(fraction, &rest, GROUP);
    }
    return start;
}

char *put_not_finite(char *text, double value, int width)
{
    const std::string_view word = not_finite_text(value);
    for (int blanks = width - static_cast<int>(word.size()); blanks > 0; --blanks)
        *text++ = ' ';
    return std::copy(word.begin(), word.end(), text);
}

// takes one of two characters off a text that begins with it
bool take(std::string_view &text, char one, char other)
{
    const bool taken = text.starts_with(one) || text.starts_with(other);
    text.remove_prefix(taken ? 1 : 0);
    return taken;
}

// takes digits off a text; returns whether there are any
bool take_digits(std::string_view &text)
{
    const std::size_t count = std::min(text.find_first_not_of("0123456789"), text.size());
    text.remove_prefix(count);
    return count > 0;
}

// decimal -> [ "-" ] ( digits [ "." [ digits ] ] | "." digits ) [ ( "e" | "E" ) [ "+" | "-" ] digits ]
bool is_decimal(std::string_view text)
{
    take(text, '-', '-');
    bool digits = take_digits(text);
    if (take(text, '.', '.'))
        digits = take_digits(text) || digits;
    if (digits && take(text, 'e', 'E')) {
        take(text, '+', '-');
        digits = take_digits(text);
    }
    return digits && text.empty();
}

} // namespace

std::string_view not_finite_text(double value)
{
    if (std::isnan(value))
        return "-nan";
    return value < 0.0 ? "-inf" : "inf";
}

char *put_real(char *text, float value, int width, int decimals)
{
    const auto bits     = std::bit_cast<std::uint32_t>(value);
    const auto exponent = static_cast<int>(bits >> MANTISSA_BITS & 0xFF);
    const int  shift    = exponent - EXPONENT_BIAS;
    if (shift > LARGEST_SHIFT)
        return put_double(text, static_cast<double>(value), width, decimals);

    // of numbers that have no hidden bit, 0 among them, nothing is left by the shift
    const std::uint64_t mantissa = (bits & (HIDDEN_BIT - 1)) | HIDDEN_BIT;
    const std::uint64_t product  = mantissa * powers_of_ten[static_cast<std::size_t>(decimals)];
    const std::uint64_t scaled   = shift >= 0 ? product << shift : shift_right_rounded(product, -shift);

    const bool negative = bits >> 31 != 0;
    const int  digits   = std::max(count_digits(scaled), decimals + 1);
    char      *end      = text + std::max(digits + (decimals > 0 ? 1 : 0) + (negative ? 1 : 0), width);
    std::memset(text, ' ', MOST_WIDTH); // of which the number takes its part
    const bool at_once = digits <= GROUP && std::endian::native == std::endian::little;
    char      *start   = at_once ? put_group(end, scaled, digits, decimals) : put_digits(end, scaled, digits, decimals);
    if (negative)
        *--start = '-';
    return end;
}

char *put_double(char *text, double value, int width, int decimals)
{
    if (!std::isfinite(value))
        return put_not_finite(text, value, width);
    return text + std::snprintf(text, LONGEST_DOUBLE, "%*.*f", width, decimals, value);
}

void print_real(std::FILE *stream, float value, int width, int decimals)
{
    char        text[LONGEST_NUMBER];
    const char *end = put_real(text, value, width, decimals);
    std::fwrite(text, 1, static_cast<std::size_t>(end - text), stream);
}

char *put_whole(char *text, std::int32_t value, int width)
{
    char                       buffer[LONGEST_NUMBER];
    const std::to_chars_result result = std::to_chars(buffer, buffer + sizeof buffer, value);
    const std::ptrdiff_t       length = result.ptr - buffer;
    for (std::ptrdiff_t blanks = width - length; blanks > 0; --blanks)
        *text++ = ' ';
    std::memcpy(text, buffer, static_cast<std::size_t>(length));
    return text + length;
}

#ifdef __cpp_lib_to_chars
bool read_double(std::string_view text, double &value)
{
    if (!is_decimal(text))
        return false;
    if (std::from_chars(text.data(), text.data() + text.size(), value).ec == std::errc{})
        return true;
    return read_double_by_library(text, value); // out of range
}
#else
bool read_double(std::string_view text, double &value) { return read_double_by_library(text, value); }
#endif

// its point is that of the locale, which no program of ours sets
bool read_double_by_library(std::string_view text, double &value)
{
    if (!is_decimal(text))
        return false;
    value = std::strtod(std::string{text}.c_str(), nullptr);
    return true;
}

} // namespace orlo

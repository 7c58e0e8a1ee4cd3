// A 32-bit float is a mantissa of 24 bits times a power of two, so that value * 10^decimals is the mantissa times 10^decimals,
// shifted: below 2^39 it fits into 64 bits, and the bits shifted out tell how to round. Larger values, infinities and what is no
// number go through the C library.

#include "base/number_text.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace orlo {
namespace {

constexpr std::uint32_t MANTISSA_BITS = 23;
constexpr std::uint32_t HIDDEN_BIT    = std::uint32_t{1} << MANTISSA_BITS;
constexpr int           EXPONENT_BIAS = 150; // of a mantissa taken as a whole number
constexpr int           LARGEST_SHIFT = 15;  // 24 bits, and 24 of 10^7, leave room for so many more

constexpr std::uint64_t powers_of_ten[MOST_DECIMALS + 1] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000};

// a number shifted right by 1 or more, to the nearest, ties to even
std::uint64_t shift_right_rounded(std::uint64_t number, int shift)
{
    if (shift >= 64)
        return 0; // the number has 48 bits, less than half of what is asked for
    const std::uint64_t kept = number >> shift;
    const std::uint64_t rest = number - (kept << shift);
    const std::uint64_t half = std::uint64_t{1} << (shift - 1);
    return kept + (rest > half || (rest == half && (kept & 1) != 0) ? 1 : 0);
}

// takes a number's last digit off and writes it in front of a text
void put_digit_before(char *&start, std::uint64_t &number)
{
    *--start = static_cast<char>('0' + number % 10);
    number /= 10;
}

// copies a text that was built at the end of a buffer, with blanks in front of it up to a width
char *put_aligned(char *text, const char *start, const char *end, int width)
{
    const std::ptrdiff_t length = end - start;
    for (std::ptrdiff_t blanks = width - length; blanks > 0; --blanks)
        *text++ = ' ';
    std::memcpy(text, start, static_cast<std::size_t>(length));
    return text + length;
}

} // namespace

double printable(double value) { return std::isnan(value) ? std::copysign(value, -1.0) : value; }

char *put_real(char *text, float value, int width, int decimals)
{
    const auto bits     = std::bit_cast<std::uint32_t>(value);
    const auto exponent = static_cast<int>(bits >> MANTISSA_BITS & 0xFF);
    const int  shift    = (exponent == 0 ? 1 : exponent) - EXPONENT_BIAS;
    if (shift > LARGEST_SHIFT)
        return text + std::snprintf(text, LONGEST_NUMBER, "%*.*f", width, decimals, printable(static_cast<double>(value)));

    const std::uint64_t mantissa = (bits & (HIDDEN_BIT - 1)) | (exponent == 0 ? 0 : HIDDEN_BIT);
    const std::uint64_t product  = mantissa * powers_of_ten[decimals];
    const std::uint64_t scaled   = shift >= 0 ? product << shift : shift_right_rounded(product, -shift);

    char          buffer[LONGEST_NUMBER];
    char         *end   = buffer + sizeof buffer;
    char         *start = end;
    std::uint64_t rest  = scaled;
    for (int i = 0; i < decimals; ++i)
        put_digit_before(start, rest);
    if (decimals > 0)
        *--start = '.';
    do
        put_digit_before(start, rest);
    while (rest != 0);
    if (bits >> 31 != 0)
        *--start = '-';
    return put_aligned(text, start, end, width);
}

char *put_whole(char *text, std::int32_t value, int width)
{
    char                       buffer[LONGEST_NUMBER];
    const std::to_chars_result result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return put_aligned(text, buffer, result.ptr, width);
}

} // namespace orlo

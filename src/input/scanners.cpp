// The digits of whole numbers are gathered in unsigned integers, whose overflow is defined, and whole numbers with a range stop
// growing above it, so that no length of a digit string can bring them back into the range.

#include "input/scanners.h"

#include "base/conversions.h"
#include "base/numerics.h"
#include "base/switches.h"

#include <limits>

namespace orlo {
namespace {

// sign -> [ "-" | "+" ]
// takes a sign that is in the accepted ones
bool take_sign(Input &in, bool minus_allowed, bool &negative)
{
    skip_blanks(in);
    const char c = peek(in);
    negative     = c == '-' && minus_allowed;
    if (negative || c == '+')
        ++in.pos;
    return is_digit(peek(in));
}

// a digit string as a value that stays above limit once it is above it
std::uint64_t take_digits_up_to(Input &in, std::uint64_t limit)
{
    std::uint64_t value = 0;
    for (; is_digit(peek(in)); ++in.pos)
        if (value <= limit)
            value = value * 10 + static_cast<std::uint64_t>(peek(in) - '0');
    return value;
}

// a digit string modulo 2^64, and the blanks after it
std::uint64_t take_wrapping_digits(Input &in)
{
    std::uint64_t value = 0;
    for (; is_digit(peek(in)); ++in.pos)
        value = value * 10 + static_cast<std::uint64_t>(peek(in) - '0');
    skip_blanks(in);
    return value;
}

// The digits of a text, points left out, gathered in so many bits: the same as in an integer while that is short.
template <typename Real> Real sum_of_digits(const char *text, const char *end)
{
    Real sum = 0;
    for (; text != end; ++text)
        if (*text != '.')
            sum = sum * 10 + static_cast<Real>(*text - '0');
    return sum;
}

// real -> sign digits [ "." digits ] | sign "." digits
template <typename Real> bool get_real(Real &value, Input &in)
{
    bool negative = false;
    if (!take_sign(in, true, negative) && peek(in) != '.')
        return false;

    std::uint64_t digits  = 0;
    std::uint32_t divisor = 1; // 32 bits with wrap-around
    const char   *start   = in.line + in.pos;
    const char   *c       = start;
    for (; is_digit(*c); ++c)
        digits = digits * 10 + static_cast<std::uint64_t>(*c - '0');
    if (*c == '.')
        for (++c; is_digit(*c); ++c) {
            digits = digits * 10 + static_cast<std::uint64_t>(*c - '0');
            divisor *= 10;
        }
    in.pos   = static_cast<std::uint32_t>(c - in.line);
    Real sum = c - start <= std::numeric_limits<Real>::digits10 ? static_cast<Real>(static_cast<std::int64_t>(digits))
                                                                : sum_of_digits<Real>(start, c);
    if (sum != 0 || divisor != 0)
        sum /= static_cast<Real>(static_cast<std::int32_t>(divisor));
    value = negative ? -sum : sum;
    return true;
}

} // namespace

bool get_f(float &value, Input &in) { return get_real(value, in); }

bool get_df(double &value, Input &in) { return get_real(value, in); }

bool get_i(std::int32_t &value, Input &in)
{
    bool negative = false;
    if (!take_sign(in, true, negative))
        return false;
    const std::uint32_t first_digit = in.pos;
    const std::uint64_t limit       = static_cast<std::uint64_t>(negative ? -MIN_INTEGER : MAX_INTEGER);
    const std::uint64_t magnitude   = take_digits_up_to(in, limit);
    if (magnitude > limit) {
        in.pos = first_digit;
        return false;
    }
    value = static_cast<std::int32_t>(magnitude);
    if (negative)
        value = -value;
    return true;
}

bool get_ui(std::uint32_t &value, Input &in)
{
    bool negative = false;
    if (!take_sign(in, false, negative))
        return false;
    const std::uint32_t first_digit = in.pos;
    const std::uint64_t magnitude   = take_digits_up_to(in, MAX_UNSIGNED);
    if (magnitude > MAX_UNSIGNED) {
        in.pos = first_digit;
        return false;
    }
    value = static_cast<std::uint32_t>(magnitude);
    return true;
}

bool get_uli(std::uint64_t &value, Input &in)
{
    bool negative = false;
    if (!take_sign(in, false, negative))
        return false;
    value = take_wrapping_digits(in);
    return true;
}

bool get_li(std::int64_t &value, Input &in)
{
    bool negative = false;
    if (!take_sign(in, true, negative))
        return false;
    const std::uint64_t magnitude = take_wrapping_digits(in);
    value                         = static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude);
    return true;
}

bool get_db(float &value, Input &in)
{
    float decibels = 0.0F;
    if (!get_f(decibels, in) || !(decibels >= 0.0F && decibels <= MAX_DECIBELS))
        return false;
    value = static_cast<float>(db_to_amp(to_int32(static_cast<double>(decibels))));
    return true;
}

bool get_oct_pc(float &value, Input &in)
{
    std::int32_t octave   = 0;
    float        fraction = 0.0F;
    if (!get_i(octave, in) || peek(in) != '.' || !get_f(fraction, in))
        return false;
    const std::int32_t magnitude = octave < 0 ? -octave : octave;
    const float        pitch     = static_cast<float>(magnitude * 12 - 48) + 100.0F * fraction;
    if (MKMIDI)
        value = pitch + 12.0F;
    else
        value = octave < 0 ? -pitch : pitch;
    return true;
}

} // namespace orlo

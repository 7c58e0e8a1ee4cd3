// The loops of mod remove what the rounded product leaves over. They end: each step shrinks the remainder, and a remainder so large
// that a step no longer changes it goes to the library's exact remainder.

#include "output/numerics.h"

#include <cmath>
#include <limits>

namespace orlo {

std::int32_t to_int32(double value)
{
    if (value > -2147483649.0 && value < 2147483648.0)
        return static_cast<std::int32_t>(value);
    return std::numeric_limits<std::int32_t>::min();
}

std::int64_t to_int64(double value)
{
    if (value >= -9223372036854775808.0 && value < 9223372036854775808.0)
        return static_cast<std::int64_t>(value);
    return std::numeric_limits<std::int64_t>::min();
}

std::uint64_t to_uint64(double value)
{
    if (value > -1.0 && value < 18446744073709551616.0)
        return static_cast<std::uint64_t>(value);
    return std::uint64_t{1} << 63;
}

std::int32_t Round(float x)
{
    const std::int32_t up   = to_int32(static_cast<double>(std::ceil(x)));
    const std::int32_t down = to_int32(static_cast<double>(std::floor(x)));
    return static_cast<float>(up) - x <= x - static_cast<float>(down) ? up : down;
}

float RoundF(float x)
{
    const float up   = std::ceil(x);
    const float down = std::floor(x);
    return x - down < up - x ? down : up;
}

float mod(float x, float m)
{
    if (m == 0.0F)
        return 0.0F;
    if (m < 0.0F)
        m = -m;
    if (!std::isfinite(x))
        return std::fmod(x, m);

    const std::int64_t quotient = to_int64(static_cast<double>(x / m));

    float r = x - m * static_cast<float>(quotient);
    while (r > m) {
        if (r - m == r)
            return std::fmod(x, m);
        r -= m;
    }
    while (-r > m) {
        if (r + m == r)
            return std::fmod(x, m);
        r += m;
    }
    return r;
}

} // namespace orlo

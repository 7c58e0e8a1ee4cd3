// What the rounded product of mod leaves over is taken off by subtracting the divisor again and again, in 32 bits. Between two
// powers of two the subtraction rounds alike each time, so that once two steps were equal all further ones down to the lower power
// are taken at once. A remainder so large that a step no longer changes it goes to the library's exact remainder.

#include "base/numerics.h"

#include <cmath>
#include <limits>
#include <utility>

namespace orlo {
namespace {

// r less m as often as it takes to get down to m; stays above m when a step changes nothing
float subtract_down(float r, float m)
{
    double last_step = 0.0;
    while (r > m) { // a few steps for each power of two
        const float next = r - m;
        if (next == r)
            break;
        const double step = static_cast<double>(r) - static_cast<double>(next);
        r                 = next;
        if (step == last_step) {
            const double lowest = std::fmax(std::ldexp(1.0, std::ilogb(r)), static_cast<double>(m));
            const double steps  = std::floor((static_cast<double>(r) - lowest) / step) - 1.0;
            if (steps > 0.0)
                r = static_cast<float>(static_cast<double>(r) - steps * step);
        }
        last_step = step;
    }
    return r;
}

} // namespace

std::int32_t to_int32(double value)
{
    if (value > -2147483649.0 && value < 2147483648.0)
        return static_cast<std::int32_t>(value);
    return std::numeric_limits<std::int32_t>::min();
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
    if (r > m || -r > m) {
        const float magnitude = subtract_down(std::fabs(r), m);
        if (magnitude > m)
            return std::fmod(x, m);
        r = std::copysign(magnitude, r);
    }
    return r;
}

void swapf(float &a, float &b) { std::swap(a, b); }

} // namespace orlo

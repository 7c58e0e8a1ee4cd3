// Both interpolators reduce the position to x in [0, 1] and share the shapes; everything is computed in 64 bits and narrowed once.

#include "base/curves.h"

#include <cmath>

namespace orlo {
namespace {

constexpr double HALF_PI = 1.5707963267948966;

// start + (end - start) * shape of x
float plot(int code, double x, float start, float end, double exponent)
{
    double shape = 0.0;
    switch (static_cast<Curve>(code)) {
    case Curve::line:
        shape = x;
        break;
    case Curve::square:
        shape = x * x;
        break;
    case Curve::root:
        shape = std::pow(x, 0.5);
        break;
    case Curve::power:
        shape = std::pow(x, exponent);
        break;
    case Curve::sine:
        shape = std::sin(x * HALF_PI);
        break;
    case Curve::mirrored:
        shape = 2.0 * x - std::sin(x * HALF_PI);
        break;
    default:
        return 0.0F;
    }
    const auto from = static_cast<double>(start);
    return static_cast<float>(from + (static_cast<double>(end) - from) * shape);
}

} // namespace

float tplot_val(int code, float t, float total, float start, float end, double exponent)
{
    if (t >= total)
        return end;
    if (t <= 0.0F)
        return start;
    return plot(code, static_cast<double>(t) / static_cast<double>(total), start, end, exponent);
}

float pplot_val(std::uint64_t i, std::uint64_t n, int code, float start, float end, double exponent)
{
    if (n == 1)
        return start;
    if (i > n - 1)
        return end;
    return plot(code, static_cast<double>(i) / static_cast<double>(n - 1), start, end, exponent);
}

} // namespace orlo

// Each formula keeps its 32-bit and 64-bit steps apart, because a score must not depend on them being merged.
// A loop that refuses one value ends because the sequence of draws holds others; the step of a walk, whose window can be narrower
// than two draws lie apart, ends at the latest after WINDOW_DRAWS.

#include "base/distributions.h"

#include "base/observer.h"
#include "base/random.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace orlo {
namespace {

constexpr int   WINDOW_DRAWS = 1 << 24; // the most draws of one window step
constexpr float LN_1000      = 6.9078F;

void tell_refused(std::uint64_t draws)
{
    if (observer != nullptr)
        observer->refused(draws);
}

float draw_above_zero()
{
    for (;;) { // one value in 2^31 is refused
        const float u = draw_uniform();
        if (u != 0.0F)
            return u;
        tell_refused(1);
    }
}

} // namespace

float mk_rval(int type, float low, float high)
{
    const float range = high - low;
    switch (type) {
    case static_cast<int>(Range::uniform):
        return low + static_cast<float>(draw_int()) * range * 4.656613e-10F;
    case static_cast<int>(Range::low):
        return low + expone_left() * range;
    case static_cast<int>(Range::high):
        return low + (1.0F - expone_left()) * range;
    case static_cast<int>(Range::triangular): {
        const float u1 = draw_uniform();
        const float u2 = draw_uniform();
        return low + (u1 + u2) * 0.5F * range;
    }
    case static_cast<int>(Range::gaussian):
        return low + gauss() * range;
    case static_cast<int>(Range::bilateral):
        return low + bilex() * range;
    case static_cast<int>(Range::beta):
        return low + beta() * range;
    default:
        return 0.0F;
    }
}

float expone_left()
{
    const float u = draw_above_zero();
    const auto  x = static_cast<float>(-std::log(static_cast<double>(u)) / static_cast<double>(LN_1000));
    return std::min(x, 1.0F);
}

float gauss()
{
    float sum = 0.0F;
    for (int i = 0; i < 12; ++i)
        sum += draw_uniform();
    return std::clamp((sum - 6.0F) * 0.155F + 0.5F, 0.0F, 1.0F);
}

float bilex()
{
    float w = 2.0F * draw_uniform();
    while (w == 0.0F || w == 2.0F) { // hardly any value is refused
        tell_refused(1);
        w = 2.0F * draw_uniform();
    }

    double sign = 1.0;
    if (w > 1.0F) {
        w    = 2.0F - w;
        sign = -1.0;
    }
    const auto x = static_cast<float>(sign * std::log(static_cast<double>(w)) / 14.0);
    if (x > 0.5F)
        return 1.0F;
    return std::max(x, -0.5F) + 0.5F;
}

float beta()
{
    for (;;) { // 19 pairs in 20 are taken
        const float u = draw_above_zero();
        const float v = draw_above_zero();
        const auto  x = static_cast<float>(std::pow(static_cast<double>(u), 5.0));
        const auto  y = static_cast<float>(std::pow(static_cast<double>(v), 5.0));
        if (x + y <= 1.0F)
            return x / (x + y);
        tell_refused(2);
    }
}

float add_rdev(float value, float deviation)
{
    const float u         = draw_uniform();
    const float magnitude = std::fabs(value);
    if (deviation == 0.0F && magnitude > 0.0F && magnitude <= FLT_MAX) // 0 is added, which changes 0 and what is no number alone
        return value;
    const float amount = deviation * value;
    return static_cast<float>(static_cast<double>(u * amount) + static_cast<double>(-0.5F * amount) + static_cast<double>(value));
}

Window window_around(float position, float width)
{
    const float half = 0.5F * width;
    const float low  = position - half;
    const float high = position + half;
    if (low < 0.0F)
        return {0.0F, width};
    if (high > 1.0F)
        return {1.0F - width, 1.0F};
    return {low, high};
}

float rwindow(float &position, float width)
{
    const float before     = position;
    const auto [low, high] = window_around(position, width);
    if (low == high) {
        static_cast<void>(draw_uniform());
        return before;
    }
    if (const float u = draw_uniform_within(low, high, WINDOW_DRAWS); u >= 0.0F)
        position = u;
    return before;
}

float rand_window(float &position, float low, float high, float width) { return rwindow(position, width) * (high - low) + low; }

int prob_result(const float *weights, int n)
{
    const float u = draw_uniform();
    if (n <= 1)
        return 0;
    float sum = weights[0];
    for (int i = 0; i < n; ++i) {
        if (i > 0)
            sum += weights[i];
        if (u <= sum)
            return i;
    }
    return n;
}

bool hundred_percent(const float *weights, int n)
{
    if (n < 1)
        return false;
    float sum = 0.0F;
    for (int i = 0; i < n; ++i)
        sum += weights[i];
    const auto s = static_cast<double>(sum);
    return 0.99999 < s && s < 1.00001;
}

} // namespace orlo

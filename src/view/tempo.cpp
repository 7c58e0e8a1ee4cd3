// Where the length of a beat changes evenly from a to b over n beats, the beats up to the x-th take a*x + (b - a)*x*x/(2*n)
// seconds.

#include "view/tempo.h"

#include <algorithm>

namespace orlo::view {
namespace {

// seconds from a point to a beat after it
double seconds_from(const TempoPoint &point, const TempoPoint *next, Between between, double beat)
{
    const double x = beat - point.beat;
    const double growth =
        next != nullptr && between == Between::moves ? (next->length - point.length) / (next->beat - point.beat) : 0;
    return x * (point.length + growth * x / 2);
}

} // namespace

void place_points(std::vector<TempoPoint> &points, Between between)
{
    double seconds = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (i > 0 && points[i].beat > points[i - 1].beat)
            seconds += seconds_from(points[i - 1], &points[i], between, points[i].beat);
        points[i].seconds = seconds;
    }
}

double seconds_at(const std::vector<TempoPoint> &points, Between between, double beat)
{
    const auto after =
        std::upper_bound(points.begin(), points.end(), beat, [](double b, const TempoPoint &p) { return b < p.beat; });
    if (after == points.begin())
        return beat;
    const TempoPoint *next = after != points.end() ? &*after : nullptr;
    return (after - 1)->seconds + seconds_from(*(after - 1), next, between, beat);
}

} // namespace orlo::view

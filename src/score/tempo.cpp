// Where the length of a beat changes evenly from a to b over n beats, the beats up to the x-th take x*(a + (b - a)*(x/n)/2)
// seconds. The part x/n is within 0 and 1 however near two points are; (b - a)/n would be infinite.

#include "score/tempo.h"

#include <algorithm>

namespace orlo::score {
namespace {

// seconds from a point to a beat after it
double seconds_from(const TempoPoint &point, const TempoPoint *next, Between between, double beat)
{
    const double x = beat - point.beat;
    if (next == nullptr || between == Between::steps)
        return x * point.length;
    return x * (point.length + (next->length - point.length) * (x / (next->beat - point.beat)) / 2);
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

} // namespace orlo::score

// Two passes over the events: the bins need the range first.
#include "view/lanes.h"

#include "base/markup.h"

#include <algorithm>
#include <cmath>

namespace orlo::view {
namespace {

std::string lane_name(const Score &score, int field)
{
    const std::string  plain = joined({"p", std::to_string(field)});
    const std::string &name  = score.field_names[static_cast<std::size_t>(field - 1)];
    return name.empty() || name == plain ? plain : joined({plain, " ", name});
}

void count_values(const Score &score, Lane &lane)
{
    bool empty = true;
    for (const Event &event : score.events) {
        if (event.fields < lane.field)
            continue;
        const double value = field_value(score, event, lane.field);
        if (!std::isnan(value)) {
            include(lane.range, empty, value);
            lane.count++;
        } else {
            lane.missing++;
        }
    }
}

void fill_bins(const Score &score, Lane &lane)
{
    for (const Event &event : score.events) {
        const double value = field_value(score, event, lane.field);
        if (!std::isnan(value))
            lane.bins[bin_of(lane.range, value)]++;
    }
}

} // namespace

std::size_t bin_of(const Range &range, double value)
{
    return std::min(static_cast<std::size_t>(fraction(range, value) * HISTOGRAM_BINS), HISTOGRAM_BINS - 1);
}

std::vector<Lane> lanes_of(const Score &score)
{
    std::vector<Lane> lanes;
    const int         fields = static_cast<int>(score.field_names.size());
    for (int field = FIRST_LANE; field <= fields && field < FIRST_LANE + MOST_LANES; field++) {
        Lane lane;
        lane.field = field;
        lane.name  = lane_name(score, field);
        count_values(score, lane);
        fill_bins(score, lane);
        lanes.push_back(std::move(lane));
    }
    return lanes;
}

} // namespace orlo::view

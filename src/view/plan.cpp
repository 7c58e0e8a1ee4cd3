// Pitches take the upper part of the roll, one row a series the lower: only series with events that have no pitch get a row, so
// a score with drums beside tunes has both parts, one without pitches the lower alone.
#include "view/plan.h"

#include "base/markup.h"

#include <algorithm>
#include <cmath>

namespace orlo::view {
namespace {

constexpr double LEAST_PITCHES = 140; // height of the part with pitches
constexpr double MOST_PITCHES  = 440;
constexpr double KEY_HEIGHT    = 10;   // where there is room
constexpr double CENT          = 0.01; // 8.07 is a little more than seven keys above 8
constexpr double LEAST_NOTE    = 3;
constexpr double MARGIN        = 0.008; // beside the first and the last event, a part of the time

void set_time(Plan &plan, const Score &score)
{
    bool empty = true;
    for (const Event &event : score.events) {
        include(plan.time, empty, event.start);
        include(plan.time, empty, event.start + event.duration);
    }
    if (plan.time.low > 0 && plan.time.low < plan.time.high / 2)
        plan.time.low = 0;
    if (!(plan.time.low < plan.time.high))
        plan.time.high = plan.time.low + std::fmax(1, plan.time.low);
    const double margin = (plan.time.high - plan.time.low) * MARGIN;
    plan.time           = {plan.time.low - margin, plan.time.high + margin};
}

void set_series(Plan &plan, const Score &score)
{
    const std::size_t count = std::min<std::size_t>(score.instruments.size(), MOST_SERIES);
    for (std::size_t i = 0; i < count; i++)
        plan.series.push_back({instrument_name(score.instruments[i]), 0, -1});
    if (score.instruments.size() > count)
        plan.series.back().name = count_text(score.instruments.size() - count + 1) + " more instruments";
}

// counts the events, finds the pitches, and marks the series that need a row
void look_at_events(Plan &plan, const Score &score)
{
    bool empty = true;
    for (const Event &event : score.events) {
        Series      &series = plan.series[static_cast<std::size_t>(series_of(event))];
        const double key    = key_of(score, event);
        series.events++;
        if (std::isnan(key))
            series.row = 0;
        else
            include(plan.keys, empty, key);
    }
    plan.pitched = !empty;
    for (Series &series : plan.series)
        series.row = series.row < 0 ? -1 : plan.rows++;
}

void set_heights(Plan &plan)
{
    plan.note_height = ROW_HEIGHT / 2;
    if (plan.pitched) {
        plan.keys         = {std::floor(plan.keys.low + CENT) - 0.5, std::ceil(plan.keys.high - CENT) + 0.5};
        const double keys = std::fmax(plan.keys.high - plan.keys.low, 1);
        plan.pitch_height = std::round(std::clamp(keys * KEY_HEIGHT, LEAST_PITCHES, MOST_PITCHES));
        plan.note_height  = std::clamp(std::floor(plan.pitch_height / keys) - 1, LEAST_NOTE, KEY_HEIGHT);
    }
    plan.roll_height = plan.pitch_height + plan.rows * ROW_HEIGHT;
}

} // namespace

Plan plan_of(const Score &score)
{
    Plan plan{};
    plan.many    = score.events.size() > MANY_EVENTS;
    plan.details = !plan.many && score.values.size() <= MOST_VALUES;
    set_time(plan, score);
    set_series(plan, score);
    look_at_events(plan, score);
    set_heights(plan);
    plan.lanes          = lanes_of(score);
    plan.lanes_left_out = std::max(0, static_cast<int>(score.field_names.size()) - (FIRST_LANE + MOST_LANES - 1));
    return plan;
}

std::string instrument_name(const std::string &name)
{
    const bool number = !name.empty() && name.front() >= '0' && name.front() <= '9';
    return number ? joined({"i", name}) : name;
}

int series_of(const Event &event) { return std::min(event.instrument, MOST_SERIES - 1); }

double note_y(const Plan &plan, const Score &score, const Event &event)
{
    const double key = key_of(score, event);
    return std::isnan(key) ? row_y(plan, plan.series[static_cast<std::size_t>(series_of(event))].row) : key_y(plan, key);
}

double row_y(const Plan &plan, int row) { return plan.pitch_height + (row + 0.5) * ROW_HEIGHT; }

double key_y(const Plan &plan, double key) { return (1 - fraction(plan.keys, key)) * plan.pitch_height; }

double value_y(const Lane &lane, double value)
{
    return LANE_PADDING + (1 - fraction(lane.range, value)) * (LANE_HEIGHT - 2 * LANE_PADDING);
}

} // namespace orlo::view

#include "view/axes.h"

#include "base/markup.h"
#include "view/marks.h"

#include <cmath>

namespace orlo::view {
namespace {

constexpr double      LABEL_DROP    = 4;  // from the middle of a line of text to its base line
constexpr double      LABEL_SPACE   = 14; // a label takes this height
constexpr double      STRIPE_LEAST  = 4;  // a stripe lower than this is a blur
constexpr std::size_t LABEL_LETTERS = 9;

std::string line_at(double y, const std::string &width, bool strong)
{
    const std::string place = pixels(y);
    return R"(<line class=")" + std::string(strong ? "G" : "g") + R"(" x2=")" + width + R"(" y1=")" + place + R"(" y2=")" + place +
           "\"/>";
}

std::string label_at(double x, double y, const std::string &text)
{
    return R"(<text class="t" x=")" + pixels(x) + R"(" y=")" + pixels(y + LABEL_DROP) + "\">" + escaped(text) + "</text>";
}

std::string stripes(const Plan &plan, const std::string &width)
{
    const double height = plan.pitch_height / (plan.keys.high - plan.keys.low);
    std::string  out;
    if (height < STRIPE_LEAST)
        return out;
    for (int key = static_cast<int>(std::ceil(plan.keys.low)); key < plan.keys.high; key++) {
        if (is_black(key))
            out += R"(<rect class="k" y=")" + pixels(key_y(plan, key + 0.5)) + R"(" width=")" + width + R"(" height=")" +
                   pixels(height) + "\"/>";
    }
    return out;
}

std::vector<Tick> ticks_of(const Plan &plan) { return key_ticks(plan.keys, static_cast<int>(plan.pitch_height / LABEL_SPACE)); }

} // namespace

std::string roll_grid(const Plan &plan, const std::string &width)
{
    std::string out;
    if (plan.pitched) {
        out += stripes(plan, width);
        for (const Tick &tick : ticks_of(plan))
            out += line_at(key_y(plan, tick.value), width, std::fmod(tick.value, 12) == 0);
    }
    if (plan.pitched && plan.rows > 0)
        out += line_at(plan.pitch_height, width, true);
    for (int row = 0; row < plan.rows; row++)
        out += line_at(row_y(plan, row), width, false);
    return out;
}

std::string roll_labels(const Plan &plan, double x)
{
    std::string out;
    if (plan.pitched) {
        for (const Tick &tick : ticks_of(plan))
            out += label_at(x, key_y(plan, tick.value), tick.label);
    }
    for (const Series &series : plan.series) {
        if (series.row >= 0)
            out += label_at(x, row_y(plan, series.row), shortened(series.name, LABEL_LETTERS));
    }
    return out;
}

std::string lane_grid(const Lane &lane, const std::string &width)
{
    std::string out;
    if (lane.count == 0)
        return out;
    for (const Tick &tick : nice_ticks(lane.range, LANE_TICKS))
        out += line_at(value_y(lane, tick.value), width, false);
    return out;
}

std::string lane_labels(const Lane &lane, double x)
{
    std::string out;
    if (lane.count == 0)
        return out;
    for (const Tick &tick : nice_ticks(lane.range, LANE_TICKS))
        out += label_at(x, value_y(lane, tick.value), tick.label);
    return out;
}

std::string series_classes(std::size_t series)
{
    return joined({"c", std::to_string(series % COLOURS), " y", std::to_string(series / COLOURS % STYLES)});
}

} // namespace orlo::view

#include "score/build_score.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace orlo::score {
namespace {

constexpr double MIDDLE_C     = 60;   // key
constexpr double MIDDLE_C_OCT = 8;    // octave of that key in pch and oct
constexpr double A_HERTZ      = 440;  // key 69
constexpr double FARTHEST_KEY = 1000; // what lies beyond is no pitch but a wrong number

double key_of_pch(double pch)
{
    const double octave = std::floor(pch);
    return MIDDLE_C + 12 * (octave - MIDDLE_C_OCT) + 100 * (pch - octave);
}

double key_of_value(Pitch pitch, double value)
{
    switch (pitch) {
    case Pitch::none:
        break;
    case Pitch::pch:
        return key_of_pch(value);
    case Pitch::oct:
        return MIDDLE_C + 12 * (value - MIDDLE_C_OCT);
    case Pitch::hertz:
        return value > 0 ? 69 + 12 * std::log2(value / A_HERTZ) : std::numeric_limits<double>::quiet_NaN();
    case Pitch::key:
        return value;
    }
    return std::numeric_limits<double>::quiet_NaN();
}

// an instrument whose events were all left out is none
void drop_unused_instruments(Score &score)
{
    std::vector<int> number(score.instruments.size(), -1);
    for (const Event &event : score.events)
        number[static_cast<std::size_t>(event.instrument)] = 0;
    int used = 0;
    for (std::size_t i = 0; i < number.size(); ++i) {
        if (number[i] != 0)
            continue;
        if (static_cast<std::size_t>(used) != i)
            score.instruments[static_cast<std::size_t>(used)] = std::move(score.instruments[i]);
        number[i] = used++;
    }
    score.instruments.resize(static_cast<std::size_t>(used));
    for (Event &event : score.events)
        event.instrument = number[static_cast<std::size_t>(event.instrument)];
}

bool is_time(double time) { return time >= 0 && time <= LARGEST_TIME; }

} // namespace

double field_value(const Score &score, const Event &event, int field)
{
    if (field < 1 || field > event.fields)
        return std::numeric_limits<double>::quiet_NaN();
    return score.values[event.first + static_cast<std::size_t>(field) - 1];
}

double key_of(const Score &score, const Event &event)
{
    const bool       same = score.pitches.empty();
    const PitchField at =
        same ? PitchField{score.pitch_field, score.pitch} : score.pitches[static_cast<std::size_t>(event.instrument)];
    const double key = key_of_value(at.pitch, field_value(score, event, at.field));
    return std::abs(key) <= FARTHEST_KEY ? key : std::numeric_limits<double>::quiet_NaN();
}

void add_trouble(Score &score, int line, std::string text)
{
    if (score.troubles.size() < MAX_TROUBLES)
        score.troubles.push_back({line, std::move(text)});
    else
        ++score.troubles_left_out;
}

std::string field_name(int field)
{
    std::string name = "p";
    return name += std::to_string(field);
}

bool enters(Score &score, const Event &event, const std::string &where)
{
    if (!is_time(event.start) || !is_time(event.duration)) {
        add_trouble(score, event.line, where + beyond_time(score.beats));
        return false;
    }
    for (int field = 1; field <= event.fields; ++field) {
        double &value = score.values[event.first + static_cast<std::size_t>(field) - 1];
        if (std::abs(value) > LARGEST_VALUE) {
            add_trouble(score, event.line, where + field_name(field) + " is beyond 1e300, and left out");
            value = std::numeric_limits<double>::quiet_NaN();
        }
    }
    return true;
}

std::string beyond_time(bool beats)
{
    return std::string{"an event beyond 1e12 "} + (beats ? "beats" : "seconds") + " is left out";
}

void finish_score(Score &score)
{
    drop_unused_instruments(score);
    for (const Event &event : score.events)
        score.end = std::max(score.end, event.start + event.duration);
    std::stable_sort(score.troubles.begin(), score.troubles.end(),
                     [](const Trouble &a, const Trouble &b) { return a.line < b.line; });
    if (score.troubles_left_out > 0)
        score.troubles.push_back({0, "and " + std::to_string(score.troubles_left_out) + " more like these"});
}

} // namespace orlo::score

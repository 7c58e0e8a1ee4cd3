// score_support.h: scores made by hand, for the tests of what is drawn of them.
#pragma once

#include "base/markup.h"
#include "score/score.h"

#include <algorithm>
#include <initializer_list>
#include <limits>

namespace orlo::score::test {

inline constexpr double NONE = std::numeric_limits<double>::quiet_NaN();

/// A score without events whose pitch is p5, octave.pitch-class.
inline Score empty_score(int instruments)
{
    Score score;
    score.title       = "test.sco";
    score.pitch_field = 5;
    score.pitch       = Pitch::pch;
    for (int i = 1; i <= instruments; i++)
        score.instruments.push_back(std::to_string(i));
    return score;
}

/// Adds an event: p1 is one more than the instrument's index.
/// @param more p4 and on
inline void add(Score &score, int instrument, double start, double duration, std::initializer_list<double> more)
{
    const int fields = 3 + static_cast<int>(more.size());
    score.events.push_back({score.values.size(), fields, instrument, start, duration, static_cast<int>(score.events.size()) + 1});
    for (const double value : {instrument + 1.0, start, duration})
        score.values.push_back(value);
    score.values.insert(score.values.end(), more);
    while (static_cast<int>(score.field_names.size()) < fields)
        score.field_names.push_back(joined({"p", std::to_string(score.field_names.size() + 1)}));
    score.end = std::max(score.end, start + duration);
}

} // namespace orlo::score::test

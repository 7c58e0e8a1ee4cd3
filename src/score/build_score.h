// build_score.h: what the readers of files share while they fill a score. Reads and prints nothing.
#pragma once

#include "score/score.h"

#include <cstddef>
#include <string>

namespace orlo::score {

/// What a reader accepts at most; what is beyond is left out, and told.
struct Limits {
    std::size_t bytes  = std::size_t{1} << 30; ///< of a file
    std::size_t values = 50'000'000;           ///< p-fields of all events together
    std::size_t open   = 5'000'000;            ///< ramps and references to other events of a section
};

/// Notes what could not be read; counts it when there are MAX_TROUBLES already.
/// @param line line of the file, 0 where there is none
void add_trouble(Score &score, int line, std::string text);

/// "p4" for 4.
std::string field_name(int field);

/// The door of a score: each event passes it once, with its final times and values. One whose times are not from 0 to LARGEST_TIME
/// stays outside; a value beyond LARGEST_VALUE becomes NaN; both are told.
/// @param where what comes before the trouble's text: "track 2: ", or nothing
/// @return false when the event has to go
[[nodiscard]] bool enters(Score &score, const Event &event, const std::string &where);

/// Why an event is left out whose times are too large.
/// @param beats their unit, else seconds
std::string beyond_time(bool beats);

/// Sets the score's end, and brings its troubles in order. To be called once, when all events are there.
void finish_score(Score &score);

} // namespace orlo::score

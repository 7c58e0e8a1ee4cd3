// event_reader.h: the events of a Csound score, with the p-fields that they take from the event before them. Knows nothing of other
// statements; times stay beats.
#pragma once

#include "view/build_score.h"
#include "view/instruments.h"
#include "view/open_fields.h"
#include "view/score_text.h"

#include <cstddef>
#include <vector>

namespace orlo::view {

inline constexpr double LARGEST_TIME = 1e12; ///< beats

inline constexpr auto NO_EVENT = static_cast<std::size_t>(-1);

/// A group's latest event.
struct Latest {
    std::size_t       event = NO_EVENT; ///< index into Score::events, of an earlier section perhaps
    std::vector<Open> open  = {};       ///< its open p-fields, in order
};

/// The events of a score, section by section.
struct EventReader {
    Score              &score;
    Limits              limits;
    Instruments         instruments = {};
    std::vector<Latest> latest      = {};    ///< of each group
    std::size_t         first       = 0;     ///< event of the section, index into Score::events
    double              base        = 0;     ///< beats that are added to every p2
    std::vector<Open>   open        = {};    ///< p-fields of the section that are to be filled in
    bool                full        = false; ///< a limit is reached, and told: nothing more is to be read
};

/// Reads an event; the text is after its "i". One that can't be shown is left out, after a trouble.
void read_event(EventReader &reader, Text &text);

/// What is read from now on belongs to a new section.
void begin_section(EventReader &reader);

} // namespace orlo::view

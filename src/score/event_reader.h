// event_reader.h: the events of a Csound score, with the p-fields that they take from the event before them. Knows nothing of other
// statements; times stay beats.
#pragma once

#include "score/build_score.h"
#include "score/instruments.h"
#include "score/open_fields.h"
#include "score/score_text.h"

#include <cstddef>
#include <vector>

namespace orlo::score {

/// A group's latest event.
struct Latest {
    std::size_t       section = 0;  ///< 1 is the first; 0: there is none
    std::size_t       event   = 0;  ///< index into Score::events, while its section is read
    std::vector<Open> open    = {}; ///< its open p-fields, in order
};

/// The events of a score, section by section. Those of the section that is being read stand at the end of Score::events with their
/// beats, and have not entered the score yet.
struct EventReader {
    Score              &score;
    Limits              limits;
    Instruments         instruments = {};
    std::vector<Latest> latest      = {};    ///< of each group
    std::size_t         section     = 1;     ///< that is being read
    std::size_t         first       = 0;     ///< its first event, index into Score::events
    double              base        = 0;     ///< beats that are added to every p2
    std::vector<Open>   open        = {};    ///< p-fields of the section that are to be filled in
    bool                full        = false; ///< a limit is reached, and told: nothing more is to be read
};

/// Reads an event; the text is after its "i". One that can't be shown is left out, after a trouble.
void read_event(EventReader &reader, Text &text);

/// What is read from now on belongs to a new section.
void begin_section(EventReader &reader);

} // namespace orlo::score

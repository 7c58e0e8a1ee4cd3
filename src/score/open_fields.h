// open_fields.h: p-fields that refer to neighbours in time: ramps between the numbers around them, "np" and "pp" from the next and
// the previous event of their group. Reads no text.
#pragma once

#include "score/instruments.h"
#include "score/score.h"
#include "score/score_text.h"

#include <cstddef>
#include <vector>

namespace orlo::score {

/// A p-field that is filled in when all events of its section are there.
struct Open {
    std::size_t event;  ///< index into Score::events
    int         field;  ///< 4 is p4
    Mark        mark;   ///< ramp, next, previous
    int         source; ///< the p-field that next and previous name
};

/// Fills in the open p-fields of a section; one that can't be filled stays NaN, after a trouble.
/// @param first the section's first event; those from there to the score's end have their final times
void fill_open_fields(Score &score, const Instruments &instruments, std::size_t first, const std::vector<Open> &open);

} // namespace orlo::score

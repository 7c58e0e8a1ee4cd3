// tempo_marks.h: where players are told the tempo, and how the grid moves between. Writes nothing.
#pragma once

#include "export/grid.h"

#include <cstdint>
#include <string>
#include <vector>

namespace orlo::exporting {

struct TempoMark {
    std::int64_t quarter;       ///< from the start of the piece, where it holds from
    double       tempo;         ///< quarters a minute
    bool         shown = false; ///< as a number; else it only sounds
    std::string  words;         ///< "accel." where a change begins
};

struct TempoMarks {
    std::vector<TempoMark>   marks; ///< in their order, the first at 0
    std::vector<std::string> said;
};

/// @param quarters of the piece
[[nodiscard]] TempoMarks tempo_marks(const Grid &grid, std::int64_t quarters);

} // namespace orlo::exporting

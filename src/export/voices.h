// voices.h: which notes follow each other in one voice, and which voices share a staff. Beats are real numbers here; writes
// nothing.
#pragma once

#include "export/grid.h"
#include "export/music.h"
#include "export/rhythm.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace orlo::exporting {

inline constexpr std::size_t VOICES      = 4;  // of a staff
inline constexpr std::size_t MOST_STAVES = 16; // of an instrument

struct NotationOptions {
    MapWish            map;
    bool               own_beats = false; ///< beats are those of each block, not of the grid
    Meter              meter;
    std::optional<int> grid;             ///< 16: what has no rhythm begins and ends with sixteenths
    bool               sounding = false; ///< notes are written as long as they sound
};

/// Notes that begin and end together.
struct Chord {
    double                   beat;  ///< quarters from the start of the piece
    double                   end;   ///< of what is written; INFINITY: the next start in its voice
    double                   sound; ///< end of what sounds
    bool                     sure;  ///< its end is a time of its own, else what is near will do
    std::vector<std::size_t> notes; ///< indices into Music::notes
};

/// Chords one after the other.
using Line = std::vector<Chord>;

/// A staff of a part.
struct Staff {
    std::size_t       part;
    std::size_t       number; ///< among those of its part, from 0
    std::vector<Line> voices; ///< from the highest to the lowest, where they sound together
};

struct Staves {
    std::vector<Staff>       staves;
    std::string              fault; ///< what can't be written, as the end of a sentence; empty when all can
    std::vector<std::string> said;
};

/// Puts all notes on staves.
[[nodiscard]] Staves staves_of(const Music &music, const Grid &grid, const NotationOptions &options);

} // namespace orlo::exporting

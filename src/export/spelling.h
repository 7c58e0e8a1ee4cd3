// spelling.h: which name and octave a pitch has on paper: as it was written, else the one nearest to its neighbours on the line of
// fifths. Writes nothing.
#pragma once

#include "export/music.h"

#include <cstddef>
#include <string>
#include <vector>

namespace orlo::exporting {

struct Spelling {
    char   step   = 'B';   ///< 'A' to 'G'
    int    octave = 4;     ///< 0 to 9; 4 begins with middle C
    double alter  = 0.0;   ///< semitones
    bool   pitch  = false; ///< none: it stands on the middle line
};

struct Spellings {
    std::vector<Spelling>    notes; ///< by the indices of Music::notes
    std::vector<std::string> said;
};

[[nodiscard]] Spellings spellings_of(const Music &music);

/// Steps above c0, as staves count them.
[[nodiscard]] int height_of(const Spelling &spelling);

/// Which lines a staff has.
struct Clef {
    const char *sign; ///< "G", "F", "percussion"
    int         line;
    int         octaves; ///< that it sounds higher than written
};

/// The clef with the fewest ledger lines.
/// @param notes indices into Spellings::notes
[[nodiscard]] Clef clef_of(const Spellings &spellings, const std::vector<std::size_t> &notes);

} // namespace orlo::exporting

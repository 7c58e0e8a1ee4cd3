// hints.h: what may not be meant in a piece. Each room looks for hints of one field.
#pragma once

#include "explain/hints/finder.h"

namespace orlo::explain {

/// The hints of a run that is over, in the order of the text, without those that a comment of the piece has silenced.
[[nodiscard]] Hints find_hints(const Piece &piece, bool midi);

// the rooms
void look_at_starts(Finder &finder);      ///< where blocks start
void look_at_intervals(Finder &finder);   ///< p2
void look_at_spans(Finder &finder);       ///< generators: how far they reach
void look_at_letters(Finder &finder);     ///< notes and letters
void look_at_rhythms(Finder &finder);     ///< rhythms
void look_at_values(Finder &finder);      ///< single values: codes, what is no number
void look_at_sections(Finder &finder);    ///< sections: what is left over, what is missing
void look_at_lists(Finder &finder);       ///< lists and loops, and what comes when they have ended
void look_at_midi(Finder &finder);        ///< MIDI files
void look_at_sharps(Finder &finder);      ///< sharps in another spelling
void look_at_definitions(Finder &finder); ///< names of macros and constants
void look_at_decimals(Finder &finder);    ///< values of constants as they are written
void look_at_seeds(Finder &finder);       ///< sequences of chance
void look_at_text(Finder &finder);        ///< files as they are written

/// Leaves out what a comment "; orlo: quiet NAME ..." has silenced: in a block or just before it, for the block; before the first
/// block, for the piece.
void keep_quiet(Finder &finder);

} // namespace orlo::explain

// read_music.h: a piece that was run, or a score that was read, as music. Opens no file.
#pragma once

#include "export/music.h"
#include "gather/piece.h"
#include "score/score.h"

namespace orlo::exporting {

/// The events of all blocks, with what is written of them. The events must have been gathered.
[[nodiscard]] Music music_of(gather::Piece &piece);

/// The events of a score; its troubles become those of the music. The score's pitches must have been recognised.
[[nodiscard]] Music music_of(const score::Score &score);

} // namespace orlo::exporting

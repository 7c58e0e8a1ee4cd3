// run_piece.h: which part of a file is the piece, and its run. One at a time.
#pragma once

#include "gather/collector.h"
#include "gather/csd.h"
#include "gather/piece.h"

#include <optional>
#include <string>

namespace orlo::gather {

/// A file that orlo is to run.
struct PieceFile {
    std::string             name;
    std::optional<CsdScore> score = {}; // of a Csound document, the part that is run
};

/// Looks whether a file is a Csound document, and finds its score.
/// @return what is wrong, empty when nothing is; a file that can't be read is left to the run, which tells
[[nodiscard]] std::string find_piece(PieceFile &file);

/// Runs a piece and gathers what it was.
/// @param status that orlo would have
/// @return false when memory was exhausted
[[nodiscard]] bool run_piece(const PieceFile &file, bool midi, Detail detail, Piece &piece, int &status);

/// Whether a file that is to be written is one of those that the piece was read from; "-" is none.
[[nodiscard]] bool is_input(const Piece &piece, const std::string &name);

} // namespace orlo::gather

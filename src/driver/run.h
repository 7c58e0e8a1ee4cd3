// The run: files, the loop over global blocks and i-blocks, statistics and clean-up. Parses nothing itself.
#pragma once

#include "input/include_pass.h"
#include "input/line_reader.h"

#include <cstdio>

namespace orlo {

/// The whole program, from its start: what an earlier run in the process has left is set back. @return exit status: 0 for a
/// complete run, 1 for any failure, which has been reported
[[nodiscard]] int run(int argc, const char *const *argv);

/// As run, for a companion that has set an observer: of a piece alone, without options; nothing is shown, and no score or MIDI file
/// is written. After an error, what follows is looked at for more (driver/recovery).
/// @param midi as with -m
/// @param piece the part of the file that is the piece
/// @return the status that run would have
[[nodiscard]] int explain_run(const char *name, bool midi, Extent piece);

/// Reads one i-block, writes its events and reports its statistics. out is null where nothing is written.
/// @param block number of the next block to be reported, moved on when one is
/// @return 0 or an error
[[nodiscard]] int do_iblock(Input &in, std::FILE *out, std::uint32_t &block);

} // namespace orlo

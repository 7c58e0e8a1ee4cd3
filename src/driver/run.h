// The run: files, the loop over global blocks and i-blocks, statistics and clean-up. Parses nothing itself.
#pragma once

#include "input/line_reader.h"

#include <cstdio>

namespace orlo {

/// The whole program, from its start: what an earlier run in the process has left is set back. @return exit status: 0 for a
/// complete run, 1 for any failure, which has been reported
[[nodiscard]] int run(int argc, const char *const *argv);

/// Reads one i-block, writes its events and reports its statistics.
/// @param block number of the next block to be reported, moved on when one is
/// @return 0 or an error
[[nodiscard]] int do_iblock(Input &in, std::FILE *out, std::uint32_t &block);

} // namespace orlo

// The run: files, the loop over global blocks and i-blocks, statistics and clean-up. Parses nothing itself.
#pragma once

#include "input/line_reader.h"

#include <cstdio>

namespace orlo {

extern double CUM_TIME;    // seconds, the latest end of any block so far, 0 at start
extern double LAST_IB_DUR; // seconds, duration of the last block that was written, 0 at start

/// The whole program. @return exit status: 0 for a complete run, 1 for any failure, which has been reported
[[nodiscard]] int run(int argc, const char *const *argv);

/// Reads one i-block, writes its events and reports its statistics.
/// @param block number of the next block to be reported, moved on when one is
/// @return 0 or an error
[[nodiscard]] int do_iblock(Input &in, std::FILE *out, std::uint32_t &block);

} // namespace orlo

// recovery.h: what can still be checked after the first error of a run: later blocks, each on its own. For companions alone; a
// run of orlo ends with its first error.
#pragma once

#include "input/line_reader.h"

namespace orlo {

inline constexpr int MOST_ERRORS = 100; // of a run, after which nothing more is looked at

/// Goes on after an error to the end of the input and reports further errors.
/// @param in_block the error stands in an i-block, not between two
void check_rest(Input &in, bool in_block);

} // namespace orlo

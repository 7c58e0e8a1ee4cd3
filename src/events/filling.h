// What fills a block up to its end after the last value of a section.
#pragma once

#include "events/section.h"
#include "input/line_reader.h"

namespace orlo {

/// Fills the rest of the block: with the values of the queue in turn or, without a queue, with the last value or chord.
/// @return 0, 32 for exhausted memory, 54 for an interval of 0, or 1000 when p2 never gets to the block's end
[[nodiscard]] int fill_to_end(Section &section, const Input &in);

/// Reports a p2 that never reaches the end of the block. @return 1000
[[nodiscard]] int never_ends(const Input &in);

} // namespace orlo

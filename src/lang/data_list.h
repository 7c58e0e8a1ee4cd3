// Literal data of a p-field section: values, the operators that repeat and fuse them, and their place in the event list.
#pragma once

#include "events/section.h"
#include "input/line_reader.h"

namespace orlo {

/// Reads one item, a value or an operator, at the position, and places what it stands for.
/// @return 0, or 23, 24, 27, 32, 45, 49, 54, 73, 1000; a full block gives a warning and sets the section's done flag
[[nodiscard]] int parse_pdata(Section &section, Input &in);

} // namespace orlo

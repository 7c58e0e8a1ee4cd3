// S2: selects groups of values, each sounding together as a chord.
#pragma once

#include "events/section.h"
#include "input/line_reader.h"

namespace orlo {

/// Reads an S2 generator from behind its name and stores its values. @return 0 or an error
[[nodiscard]] int do_S2(Section &section, Input &in);

} // namespace orlo

// The frame of the generators (dynamic data functions): span, weighted sets, the loop over events, storing.
// A generator owns its grammar and its rule, and nothing else.
#pragma once

#include "events/section.h"
#include "input/line_reader.h"

#include <cstdint>

namespace orlo {

enum class Generator : int { RA = 0, RW = 1, MO = 2, SE = 3, EX = 4, MS = 5, HO = 6 };

/// Reads a generator from behind its name and stores its values. @return 0 or an error
[[nodiscard]] int do_DDF(Generator kind, Section &section, Input &in);

} // namespace orlo

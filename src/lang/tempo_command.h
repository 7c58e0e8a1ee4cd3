// The "te" command: one tempo change, from the text to the tempo map.
#pragma once

#include "input/line_reader.h"

namespace orlo {

/// Reads "te(tempo)" or "te(start end tempo tempo [curve])" behind its name and stores the segment.
/// @return 0, or 96, 150 to 153, 46, 63, 64, 155 to 159, 19, or 1000 for one tempo change too many
[[nodiscard]] int get_tempo_change(Input &in);

} // namespace orlo

// The "te" command: one tempo change, from the text to the tempo map.
#pragma once

#include "input/line_reader.h"

namespace orlo {

inline constexpr float FAST_TEMPO = 300.0F; // beats per minute; above it a warning is given
inline constexpr float SLOW_TEMPO = 30.0F;  // beats per minute; below it a warning is given
inline constexpr float LATE_BEAT  = 600.0F; // of a change that starts or ends later a warning is given

/// Reads "te(tempo)" or "te(start end tempo tempo [curve])" after its name and stores the segment.
/// @return 0, or 96, 150 to 153, 46, 63, 64, 155 to 159, 19, or 1000 for one tempo change too many
[[nodiscard]] int get_tempo_change(Input &in);

} // namespace orlo

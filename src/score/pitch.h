// pitch.h: which p-field of a score holds its pitches, judged by the numbers in it.
#pragma once

#include "score/score.h"

#include <string_view>

namespace orlo::score {

/// Sets Score::pitch_field and Score::pitch (and Score::pitches, where instruments differ) to the p-field, from p4 on, whose
/// numbers look most like pitches; the rules stand in the manual. The same score gives the same answer.
void recognise_pitch(Score &score);

/// Name of a kind of pitch, as options and messages have it: "pch", "oct", "hz", "key", "none".
const char *pitch_name(Pitch pitch);

/// The kind with that name.
/// @return false when there is none
[[nodiscard]] bool find_pitch(std::string_view name, Pitch &pitch);

} // namespace orlo::score

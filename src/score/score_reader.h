// score_reader.h: a Csound score as events. Follows carried p-fields, ramps, tempo and sections; what it does not follow it names.
// Opens no file.
#pragma once

#include "score/build_score.h"

#include <string_view>

namespace orlo::score {

/// Reads a whole score; never fails: what can't be read stands in the score's troubles, the rest in its events.
/// @param text the file
/// @param score an empty score; pitch_field and title are left alone
void read_score(std::string_view text, const Limits &limits, Score &score);

} // namespace orlo::score

// scores.h: the scores that are looked at, by the names that their own room gives them.
#pragma once

#include "score/score.h"

namespace orlo::view {

using namespace score; // Score, Event, Pitch and what is asked of them

} // namespace orlo::view

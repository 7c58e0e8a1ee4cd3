// gathered.h: what was gathered of a run, by the names that its own room gives it.
#pragma once

#include "gather/piece.h"

namespace orlo::explain {

using namespace gather; // Piece, Place and what they are made of

} // namespace orlo::explain

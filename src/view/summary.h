// summary.h: what is said about a score beside its drawing, as plain text.
#pragma once

#include "view/plan.h"

#include <string>

namespace orlo::view {

/// "164 events, 3 instruments, 32.4 s".
std::string summary_text(const Score &score);

/// What the pitch p-field holds: "pitch: p5, octave.pitch-class", or instrument by instrument; empty where there is none.
std::string pitch_text(const Score &score, const Plan &plan);

/// What could not be read, counted: "3 things could not be read, or left out"; empty where there is nothing.
std::string trouble_text(const Score &score);

/// A lane's range and count: "6.3 to 9.1, 164 values, 2 without a number".
std::string lane_text(const Lane &lane);

/// What a drawing leaves out because the score is large; empty where nothing is.
std::string left_out_text(const Plan &plan);

} // namespace orlo::view

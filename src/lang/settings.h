// The small setting commands, "name(value)", of the global block, the i-block and the p-field sections, and the direct output line.
// A value is stored before it is checked. All return 0 or the number of an error.
#pragma once

#include "input/line_reader.h"

#include <cstdio>

namespace orlo {

inline constexpr float MAX_DEVIATION   = 100.0F; // a fraction of the value
inline constexpr float LARGE_DEVIATION = 1.0F;   // above it a warning is given

/// Moves to the "(" after a command's name, over blanks and line ends. @return 0 on it, or 96
[[nodiscard]] int good_cmd_format(Input &in);

[[nodiscard]] int set_rand_seed(Input &in); ///< "rs": seeds the draws, 0 to MAX_UNSIGNED, at once (29)
[[nodiscard]] int set_rand_dev(Input &in);  ///< "rd": MAX_DEV, 0 to MAX_DEVIATION (28)
[[nodiscard]] int set_rand_dev2(Input &in); ///< "dv": MAX_DEV2, as "rd" (28)
[[nodiscard]] int set_samp_rate(Input &in); ///< "sr": SRATE in Hz (65)
[[nodiscard]] int set_pfactor(Input &in);   ///< "pf": PFACTOR (125), not in p2 (126)

/// Writes the rest of the line after ">" to a score, on a line of its own; to a MIDI file nothing.
void do_direct_out(Input &in, std::FILE *out);

} // namespace orlo

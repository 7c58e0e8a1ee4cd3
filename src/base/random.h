// The program's source of random numbers. Every draw of the program comes from here, so that a seed gives the same score
// everywhere.
#pragma once

#include <cstdint>

namespace orlo {

/// Starts the sequence of a seed; without a call the sequence is that of seed 1, and seed 0 is the same as 1.
void seed_draws(std::uint32_t seed);

/// Next number of the sequence, 0 to 2^31 - 1.
[[nodiscard]] std::int32_t draw_int();

/// Next number of the sequence times 2^-31, as a 32-bit float in [0, 1]; 1 itself comes from rounding.
[[nodiscard]] float draw_uniform();

/// Draws from the first to the last; none where the first lies after the last.
struct DrawSpan {
    std::int32_t first;
    std::int32_t last;
};

/// The draws whose uniform value lies from low to high.
[[nodiscard]] DrawSpan uniform_span(float low, float high);

/// As draw_uniform, called until its value lies from low to high, but so many times at most.
/// @return the value, or -1 when none did
[[nodiscard]] float draw_uniform_within(float low, float high, int most);

/// Forgets the seed: the sequence starts again as that of seed 1.
void reset_draws();

} // namespace orlo

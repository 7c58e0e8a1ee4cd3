// The program's source of random numbers. Every draw of the program comes from here, so that a seed gives the same score
// everywhere.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orlo {

inline constexpr std::size_t DRAW_WORDS = 31;  // of the sequence, which make the next one
inline constexpr std::size_t DRAW_BLOCK = 960; // results that are made at a time

/// The sequence: results, after those before them that have made them, the oldest first. Here so that a draw costs no call; read
/// and written by this room alone.
struct DrawState {
    std::uint32_t words[DRAW_WORDS + DRAW_BLOCK];
    std::size_t   next; // place of the next result; all are used up at the end
    std::uint64_t past; // results that were used up with earlier blocks
};
extern DrawState draw_state;

/// Makes the next results, when all are used up.
void refill_draws();

/// Starts the sequence of a seed; seed 0 is the same as 1.
void seed_draws(std::uint32_t seed);

/// Starts the sequence of seed 1, which a run has without a seed.
void reset_draws();

/// Numbers of the sequence that have been drawn since it was started.
[[nodiscard]] std::uint64_t draws_made();

/// Next number of the sequence, 0 to 2^31 - 1.
[[nodiscard]] inline std::int32_t draw_int()
{
    if (draw_state.next == DRAW_WORDS + DRAW_BLOCK)
        refill_draws();
    return static_cast<std::int32_t>(draw_state.words[draw_state.next++] >> 1);
}

/// A number of the sequence times 2^-31, as a 32-bit float in [0, 1]; 1 itself comes from rounding.
[[nodiscard]] constexpr float uniform_of(std::int32_t draw) { return static_cast<float>(draw) * 4.656613e-10F; }

/// Next number of the sequence as a float in [0, 1].
[[nodiscard]] inline float draw_uniform() { return uniform_of(draw_int()); }

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

} // namespace orlo

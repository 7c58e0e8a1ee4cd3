// Additive feedback generator over 31 words, x[i] = x[i-3] + x[i-31] modulo 2^32, whose results are the words without their lowest
// bit. The words start from the seed by the "minimal standard" generator 16807 * x modulo 2^31 - 1 (Park and Miller, Communications
// of the ACM 31(10), 1988), and the first 310 results are dropped. This is the sequence of the GNU C library's rand.
// Results are made in blocks. From a draw to its uniform value both steps, the conversion and the product, never fall, so that the
// draws whose values lie between two bounds follow each other: one that is waited for is looked for by a loop over whole numbers,
// which the compiler can make wide.

#include "base/random.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace orlo {
namespace {

constexpr std::size_t  LAG     = 3;
constexpr std::size_t  DROPPED = 310;
constexpr int          SINGLE  = 64; // draws that are looked at one by one, as most bounds are met soon
constexpr std::int32_t MAX     = std::numeric_limits<std::int32_t>::max();
constexpr float        NONE    = -1.0F;
constexpr DrawSpan     NO_DRAW{0, -1};

static_assert(DRAW_BLOCK % LAG == 0 && LAG == 3 && DROPPED < DRAW_BLOCK);

// The results after the first words. Three sums side by side need not wait for what was just stored.
constexpr void make_block(DrawState &state)
{
    std::uint32_t *words = state.words;
    std::uint32_t  a     = words[DRAW_WORDS - 3];
    std::uint32_t  b     = words[DRAW_WORDS - 2];
    std::uint32_t  c     = words[DRAW_WORDS - 1];
    for (std::size_t i = 0; i < DRAW_BLOCK; i += LAG) {
        words[DRAW_WORDS + i]     = a += words[i];
        words[DRAW_WORDS + i + 1] = b += words[i + 1];
        words[DRAW_WORDS + i + 2] = c += words[i + 2];
    }
    state.next = DRAW_WORDS;
}

// the first of the seeded words lie LAG places before the end: the oldest is the one after them
constexpr DrawState seeded_with(std::uint32_t seed)
{
    DrawState    state{};
    std::int64_t word = static_cast<std::int32_t>(seed == 0 ? 1 : seed);
    for (std::size_t i = 0; i < DRAW_WORDS; ++i) {
        state.words[(i + DRAW_WORDS - LAG) % DRAW_WORDS] = static_cast<std::uint32_t>(word);
        word                                             = 16807 * word % 2147483647;
        if (word < 0)
            word += 2147483647;
    }
    make_block(state);
    state.next += DROPPED;
    return state;
}

constexpr bool lies_in(DrawSpan span, std::int32_t draw) { return (span.first <= draw) & (draw <= span.last); } // without a jump

// place of the first of some results that lies in the span; their number when there is none
std::size_t find_within(DrawSpan span, const std::uint32_t *results, std::size_t count)
{
    int found = 0;
    for (std::size_t i = 0; i < count; ++i)
        found |= lies_in(span, static_cast<std::int32_t>(results[i] >> 1)) ? 1 : 0;
    std::size_t place = found != 0 ? 0 : count;
    while (place < count && !lies_in(span, static_cast<std::int32_t>(results[place] >> 1)))
        ++place;
    return place;
}

// the least draw from which on a question about draws, which never turns to no again, is answered by yes; MAX + 1 when none is
template <class Question> std::int64_t first_draw(Question question)
{
    std::int64_t first = 0;
    std::int64_t end   = std::int64_t{MAX} + 1;
    while (first < end) { // each round halves what lies between
        const std::int64_t middle = (first + end) / 2;
        if (question(static_cast<std::int32_t>(middle)))
            end = middle;
        else
            first = middle + 1;
    }
    return first;
}

// as draw_uniform_within, a block at a time
float draw_in_blocks(DrawSpan span, std::size_t most)
{
    while (most > 0) { // each round uses up results
        if (draw_state.next == std::size(draw_state.words))
            refill_draws();
        const std::size_t count = std::min(most, std::size(draw_state.words) - draw_state.next);
        const std::size_t place = find_within(span, draw_state.words + draw_state.next, count);
        if (place < count) {
            draw_state.next += place;
            return draw_uniform();
        }
        draw_state.next += count;
        most -= count;
    }
    return NONE;
}

} // namespace

DrawState draw_state;

void refill_draws()
{
    std::copy(std::end(draw_state.words) - DRAW_WORDS, std::end(draw_state.words), draw_state.words);
    make_block(draw_state);
    draw_state.past += DRAW_BLOCK;
}

std::uint64_t draws_made() { return draw_state.past + draw_state.next - DRAW_WORDS - DROPPED; }

void seed_draws(std::uint32_t seed) { draw_state = seeded_with(seed); }

void reset_draws() { seed_draws(1); }

DrawSpan uniform_span(float low, float high)
{
    const std::int64_t first = first_draw([low](std::int32_t draw) { return low <= uniform_of(draw); });
    const std::int64_t end   = first_draw([high](std::int32_t draw) { return !(uniform_of(draw) <= high); });
    return first < end ? DrawSpan{static_cast<std::int32_t>(first), static_cast<std::int32_t>(end - 1)} : NO_DRAW;
}

float draw_uniform_within(float low, float high, int most)
{
    const int singly = std::min(most, SINGLE);
    for (int done = 0; done < singly; ++done)
        if (const float u = draw_uniform(); low <= u && u <= high)
            return u;
    return most > singly ? draw_in_blocks(uniform_span(low, high), static_cast<std::size_t>(most - singly)) : NONE;
}

} // namespace orlo

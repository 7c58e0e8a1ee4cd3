// Additive feedback generator over 31 words, x[i] = x[i-3] + x[i-31] modulo 2^32, whose results are the words without their lowest
// bit. The words start from the seed by the "minimal standard" generator 16807 * x modulo 2^31 - 1 (Park and Miller, Communications
// of the ACM 31(10), 1988), and the first 310 results are dropped. This is the sequence of the GNU C library's rand.
// From a draw to its uniform value both steps, the conversion and the product, never fall, so that the draws whose values lie
// between two bounds follow each other. One of them that is waited for is looked for among whole blocks of draws, by loops that
// the compiler can make wide.

#include "base/random.h"

#include <algorithm>
#include <array>
#include <limits>

namespace orlo {
namespace {

constexpr int          WORDS   = 31;
constexpr int          LAG     = 3;
constexpr int          DROPPED = 310;
constexpr int          SINGLE  = 64;  // draws that are made one by one, as most bounds are met soon
constexpr std::size_t  BLOCK   = 960; // then so many at a time
constexpr std::int32_t MAX     = std::numeric_limits<std::int32_t>::max();
constexpr float        NONE    = -1.0F;
constexpr DrawSpan     NO_DRAW{0, -1};

static_assert(BLOCK % LAG == 0 && LAG == 3);

struct Generator {
    std::array<std::uint32_t, WORDS> words;
    int                              next;   // the oldest word, replaced by the next result
    bool                             seeded; // false until the first seed or draw
};

Generator generator{};

constexpr std::int32_t draw_of(std::uint32_t word) { return static_cast<std::int32_t>(word >> 1); }

constexpr float uniform_of(std::int32_t draw) { return static_cast<float>(draw) * 4.656613e-10F; }

// Results one after the other, with those before them, which make them: the oldest first.
struct Block {
    std::array<std::uint32_t, WORDS + BLOCK> words;
};

// puts the state of the sequence before the block
void take_state(Block &block)
{
    const auto oldest = generator.words.begin() + generator.next;
    std::copy(generator.words.begin(), oldest, std::copy(oldest, generator.words.end(), block.words.begin()));
}

// moves the sequence after so many results of the block
void give_state(const Block &block, std::size_t done)
{
    std::copy_n(block.words.begin() + static_cast<std::ptrdiff_t>(done), WORDS, generator.words.begin());
    generator.next = 0;
}

// The next results. Three sums side by side need not wait for what was just stored.
void fill(Block &block)
{
    std::uint32_t *words = block.words.data();
    std::uint32_t  a     = words[WORDS - 3];
    std::uint32_t  b     = words[WORDS - 2];
    std::uint32_t  c     = words[WORDS - 1];
    for (std::size_t i = 0; i < BLOCK; i += LAG) {
        words[WORDS + i]     = a += words[i];
        words[WORDS + i + 1] = b += words[i + 1];
        words[WORDS + i + 2] = c += words[i + 2];
    }
}

constexpr bool lies_in(DrawSpan span, std::int32_t draw) { return (span.first <= draw) & (draw <= span.last); } // without a jump

// place of the first result in the span; BLOCK when there is none
std::size_t find_within(DrawSpan span, const Block &block)
{
    const std::uint32_t *results = block.words.data() + WORDS;
    int                  found   = 0;
    for (std::size_t i = 0; i < BLOCK; ++i)
        found |= lies_in(span, draw_of(results[i])) ? 1 : 0;
    std::size_t place = found != 0 ? 0 : BLOCK;
    while (place < BLOCK && !lies_in(span, draw_of(results[place])))
        ++place;
    return place;
}

// as draw_uniform_within, one by one
float draw_singly(float low, float high, int most)
{
    for (int done = 0; done < most; ++done)
        if (const float u = draw_uniform(); low <= u && u <= high)
            return u;
    return NONE;
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

// the same in whole blocks
float draw_in_blocks(float low, float high, int blocks)
{
    const DrawSpan span = uniform_span(low, high);
    Block          block;
    for (; blocks > 0; --blocks) {
        take_state(block);
        fill(block);
        const std::size_t place = find_within(span, block);
        if (place < BLOCK) {
            give_state(block, place + 1);
            return uniform_of(draw_of(block.words[WORDS + place]));
        }
        give_state(block, BLOCK);
    }
    return NONE;
}

} // namespace

void seed_draws(std::uint32_t seed)
{
    std::int64_t word  = static_cast<std::int32_t>(seed == 0 ? 1 : seed);
    generator.words[0] = static_cast<std::uint32_t>(word);
    for (std::size_t i = 1; i < WORDS; ++i) {
        word = 16807 * word % 2147483647;
        if (word < 0)
            word += 2147483647;
        generator.words[i] = static_cast<std::uint32_t>(word);
    }
    generator.next   = LAG;
    generator.seeded = true;
    for (int i = 0; i < DROPPED; ++i)
        static_cast<void>(draw_int());
}

std::int32_t draw_int()
{
    if (!generator.seeded)
        seed_draws(1);
    const int      i      = generator.next;
    const int      j      = i < LAG ? i + WORDS - LAG : i - LAG;
    std::uint32_t &oldest = generator.words[static_cast<std::size_t>(i)];
    oldest += generator.words[static_cast<std::size_t>(j)];
    generator.next = i + 1 == WORDS ? 0 : i + 1;
    return draw_of(oldest);
}

float draw_uniform() { return uniform_of(draw_int()); }

DrawSpan uniform_span(float low, float high)
{
    const std::int64_t first = first_draw([low](std::int32_t draw) { return low <= uniform_of(draw); });
    const std::int64_t end   = first_draw([high](std::int32_t draw) { return !(uniform_of(draw) <= high); });
    return first < end ? DrawSpan{static_cast<std::int32_t>(first), static_cast<std::int32_t>(end - 1)} : NO_DRAW;
}

float draw_uniform_within(float low, float high, int most)
{
    const int first  = std::min(most, SINGLE);
    const int blocks = (most - first) / static_cast<int>(BLOCK);
    float     u      = draw_singly(low, high, first);
    if (u == NONE && blocks > 0)
        u = draw_in_blocks(low, high, blocks);
    return u == NONE ? draw_singly(low, high, most - first - blocks * static_cast<int>(BLOCK)) : u;
}

void reset_draws() { generator.seeded = false; }

} // namespace orlo

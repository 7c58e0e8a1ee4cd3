// Additive feedback generator over 31 words, x[i] = x[i-3] + x[i-31] modulo 2^32, whose results are the words without their lowest
// bit. The words start from the seed by the "minimal standard" generator 16807 * x modulo 2^31 - 1 (Park and Miller, Communications
// of the ACM 31(10), 1988), and the first 310 results are dropped. This is the sequence of the GNU C library's rand.

#include "base/random.h"

#include <array>

namespace orlo {
namespace {

constexpr int WORDS   = 31;
constexpr int LAG     = 3;
constexpr int DROPPED = 310;

struct Generator {
    std::array<std::uint32_t, WORDS> words;
    int                              next;   // the oldest word, replaced by the next result
    bool                             seeded; // false until the first seed or draw
};

Generator generator{};

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
    return static_cast<std::int32_t>(oldest >> 1);
}

float draw_uniform() { return static_cast<float>(draw_int()) * 4.656613e-10F; }

void reset_draws() { generator.seeded = false; }

} // namespace orlo

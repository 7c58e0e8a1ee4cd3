#include "base/distributions.h"
#include "base/random.h"

#include "support.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace orlo {
namespace {

using test::go_to;

constexpr std::int64_t DRAWS     = std::int64_t{1} << 31;
constexpr float        NO_NUMBER = std::numeric_limits<float>::quiet_NaN();
constexpr float        TINY      = std::numeric_limits<float>::denorm_min();

float uniform_of(std::int64_t draw) { return static_cast<float>(static_cast<std::int32_t>(draw)) * 4.656613e-10F; }

bool in_window(std::int64_t draw, float low, float high) { return low <= uniform_of(draw) && uniform_of(draw) <= high; }

// the draw that a value comes from, or the end that is nearest
std::int64_t draw_near(float value) { return std::llround(std::ldexp(static_cast<double>(std::clamp(value, 0.0F, 1.0F)), 31)); }

// the span holds the draws whose values lie in the window, and no others: at its ends, just outside, and at both edges
void expect_span(float low, float high)
{
    const DrawSpan     span   = uniform_span(low, high);
    const std::int64_t ends[] = {span.first, span.last, 0, DRAWS - 1, draw_near(low), draw_near(high)};
    for (const std::int64_t end : ends) {
        const std::int64_t first = std::max<std::int64_t>(end - 70, 0); // 128 draws have the same value below 1
        for (std::int64_t draw = first; draw <= end + 70 && draw < DRAWS; ++draw) {
            ASSERT_EQ(in_window(draw, low, high), span.first <= draw && draw <= span.last)
                << draw << " in " << span.first << ".." << span.last << " of " << low << ".." << high;
        }
    }
}

const std::vector<float> &edges()
{
    static const std::vector<float> values = [] {
        std::vector<float> all{-1.0F,
                               -TINY,
                               0.0F,
                               TINY,
                               1e-30F,
                               1.0F,
                               std::nextafter(1.0F, 2.0F),
                               2.0F,
                               0.1F,
                               0.3F,
                               0.9F,
                               std::numeric_limits<float>::infinity(),
                               -std::numeric_limits<float>::infinity()};
        for (int exponent = -33; exponent <= 0; ++exponent)
            for (const float factor : {1.0F, 1.0F - 0x1p-24F, 1.0F + 0x1p-23F, 1.5F})
                all.push_back(std::ldexp(factor, exponent));
        return all;
    }();
    return values;
}

TEST(DrawSpan, HoldsTheDrawsOfAWindowBetweenAnyEdges)
{
    for (const float low : edges())
        for (const float high : edges())
            expect_span(low, high);
}

TEST(DrawSpan, HoldsTheDrawsOfRandomWindows)
{
    std::mt19937                          chance{3};
    std::uniform_real_distribution<float> place{0.0F, 1.0F};
    std::uniform_real_distribution<float> exponent{-35.0F, 0.0F};
    for (int i = 0; i < 20000; ++i) {
        const float middle = i % 2 == 0 ? place(chance) : std::exp2(exponent(chance));
        const float half   = 0.5F * std::exp2(exponent(chance));
        expect_span(middle - half, middle + half);
    }
}

TEST(DrawSpan, HoldsEveryDrawOfAWideWindowAndNoneOfAnEmptyOne)
{
    const DrawSpan all = uniform_span(0.0F, 1.0F);
    EXPECT_EQ(0, all.first);
    EXPECT_EQ(2147483647, all.last);
    const DrawSpan ones = uniform_span(1.0F, 1.0F);
    EXPECT_EQ(2147483584, ones.first); // 2^31 - 64 lies half way to 2^31 - 128, and is rounded to even
    EXPECT_EQ(2147483647, ones.last);
    const float empty[][2] = {{0.5F, 0.25F},     {1.5F, 2.0F},     {-2.0F, -1.0F}, {0x1.4p-31F, 0x1.8p-31F},
                              {NO_NUMBER, 1.0F}, {0.0F, NO_NUMBER}};
    for (const auto &window : empty) {
        const DrawSpan none = uniform_span(window[0], window[1]);
        EXPECT_GT(none.first, none.last) << window[0] << ' ' << window[1];
    }
}

TEST(DrawSpan, ValuesNeverFall)
{
    std::mt19937 chance{4};
    for (int i = 0; i < 1000000; ++i) {
        const std::int64_t draw = i < 500000 ? i : static_cast<std::int64_t>(chance() >> 1);
        ASSERT_LE(uniform_of(std::max<std::int64_t>(draw - 1, 0)), uniform_of(draw)) << draw;
    }
    for (std::int64_t power = 2; power < DRAWS; power *= 2)
        for (std::int64_t draw = std::max<std::int64_t>(power - 300, 1); draw < power + 300 && draw < DRAWS; ++draw)
            ASSERT_LE(uniform_of(draw - 1), uniform_of(draw)) << draw;
}

// what draw_uniform_within must do
float one_by_one(float low, float high, int most)
{
    for (int i = 0; i < most; ++i)
        if (const float u = draw_uniform(); low <= u && u <= high)
            return u;
    return -1.0F;
}

void expect_same(test::Start start, float low, float high, int most)
{
    go_to(start);
    const float               value = one_by_one(low, high, most);
    std::vector<std::int32_t> after(40); // a whole turn of what the next draws are made of
    std::generate(after.begin(), after.end(), draw_int);
    go_to(start);
    ASSERT_EQ(value, draw_uniform_within(low, high, most)) << low << ".." << high << ", " << most << " times";
    for (const std::int32_t draw : after)
        ASSERT_EQ(draw, draw_int()) << low << ".." << high << ", " << most << " times";
}

TEST(DrawWithin, IsTheFirstOfTheDrawsOneByOne)
{
    std::mt19937                          chance{5};
    std::uniform_real_distribution<float> place{0.0F, 1.0F};
    for (std::uint32_t seed = 1; seed <= 400; ++seed) {
        const int   skipped = static_cast<int>(seed % 31);
        const float low     = place(chance);
        const float width   = std::ldexp(1.0F, -static_cast<int>(seed % 16));
        expect_same({seed, skipped}, low, low + width, 100000);
    }
}

TEST(DrawWithin, StopsAfterItsNumberOfDraws)
{
    for (const int most : {0, 1, 2, 63, 64, 65, 66, 959, 960, 961, 1023, 1024, 1025, 1983, 1984, 1985, 5000})
        for (const int skipped : {0, 1, 27, 28, 29, 30, 31}) {
            expect_same({9, skipped}, 2.0F, 3.0F, most);
            expect_same({9, skipped}, 0.5F, 0.501F, most);
            expect_same({9, skipped}, 0.25F, 0.2501F, most);
        }
}

TEST(DrawWithin, FindsADrawAtEveryPlaceOfABlock)
{
    go_to({6});
    std::vector<float> draws(2200);
    std::generate(draws.begin(), draws.end(), draw_uniform);
    for (const float u : draws)
        expect_same({6}, u, u, 3000);
}

TEST(DrawWithin, BeginsWithoutASeed)
{
    go_to({1});
    const float value = one_by_one(0.999F, 1.0F, 100000);
    reset_draws();
    EXPECT_EQ(value, draw_uniform_within(0.999F, 1.0F, 100000));
}

// the step of a walk, draw by draw
float step_one_by_one(float &position, float width)
{
    const float before = position;
    const float half   = 0.5F * width;
    float       low    = before - half;
    float       high   = before + half;
    if (low < 0.0F) {
        low  = 0.0F;
        high = width;
    } else if (high > 1.0F) {
        high = 1.0F;
        low  = 1.0F - width;
    }
    if (low == high)
        static_cast<void>(draw_uniform());
    else if (const float u = one_by_one(low, high, 1 << 24); u >= 0.0F)
        position = u;
    return before;
}

TEST(DrawWithin, MakesTheStepsOfAWalk)
{
    for (const float width : {1.0F, 0.5F, 0.02F, 0.0005F, 0.00001F, 0.0F, TINY})
        for (const float start : {0.0F, 0.25F, 0.999F, 1.0F}) {
            const int          steps = width > 0.001F || width == 0.0F ? 2000 : 3;
            std::vector<float> positions;
            float              position = start;
            go_to({12});
            for (int i = 0; i < steps; ++i)
                positions.push_back(step_one_by_one(position, width));
            const std::int32_t next = draw_int();
            position                = start;
            go_to({12});
            for (const float expected : positions)
                ASSERT_EQ(expected, rwindow(position, width)) << width << ' ' << start;
            EXPECT_EQ(next, draw_int()) << width << ' ' << start;
        }
}

} // namespace
} // namespace orlo

#include "base/distributions.h"

#include "support.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace orlo {
namespace {

using test::draws_of;
using test::go_to;
using test::ONE_IS_NEXT;
using test::Start;
using test::wide;
using test::ZERO_IS_NEXT;

constexpr int all_types[] = {0, 1, 2, 3, 4, 5, 6};
constexpr int MANY        = 100000;

// the draws that lie ahead in a sequence
std::vector<float> draws_ahead(Start start, int count)
{
    std::vector<float> draws(static_cast<std::size_t>(count));
    go_to(start);
    std::generate(draws.begin(), draws.end(), draw_uniform);
    go_to(start);
    return draws;
}

template <class Draw> std::vector<float> sorted_draws(Draw draw)
{
    seed_draws(20);
    std::vector<float> values(MANY);
    std::generate(values.begin(), values.end(), draw);
    std::sort(values.begin(), values.end());
    return values;
}

double mean(const std::vector<float> &values)
{
    double sum = 0.0;
    for (const float value : values)
        sum += wide(value);
    return sum / static_cast<double>(values.size());
}

// part of the values up to a bound
double share_up_to(const std::vector<float> &sorted, double bound)
{
    const auto above = std::upper_bound(sorted.begin(), sorted.end(), static_cast<float>(bound));
    return static_cast<double>(above - sorted.begin()) / static_cast<double>(sorted.size());
}

// a distribution over 0..1, whose share up to a bound is known
struct Expected {
    Range  type;
    double mean;
    double bound;
    double share;
};

constexpr Expected expected[] = {
    {Range::uniform, 0.5, 0.1, 0.1},         {Range::uniform, 0.5, 0.75, 0.75},
    {Range::low, 0.144621, 0.1, 0.498819},                                          // 1 - exp(-0.69078)
    {Range::low, 0.144621, 0.5, 0.968378},                                          // 1 - exp(-3.4539)
    {Range::high, 0.855379, 0.5, 0.031622},                                         // exp(-3.4539)
    {Range::high, 0.855379, 0.9, 0.501181},                                         // exp(-0.69078)
    {Range::triangular, 0.5, 0.25, 0.125},                                          // 2 * 0.25^2
    {Range::triangular, 0.5, 0.75, 0.875},   {Range::gaussian, 0.5, 0.2, 0.026078}, // twelve uniform variables
    {Range::gaussian, 0.5, 0.4, 0.261696},   {Range::gaussian, 0.5, 0.6, 0.738304},
    {Range::bilateral, 0.5, 0.45, 0.248293},                                         // exp(-0.7) / 2
    {Range::bilateral, 0.5, 0.5, 0.5},       {Range::bilateral, 0.5, 0.6, 0.876702}, // 1 - exp(-1.4) / 2
    {Range::beta, 0.5, 0.01, 0.209778}, // incomplete beta function, both parameters 0.2
    {Range::beta, 0.5, 0.3, 0.433204},       {Range::beta, 0.5, 0.5, 0.5},
};

TEST(Distributions, HaveTheirMeansAndQuantiles)
{
    for (const Expected &e : expected) {
        const int                type   = static_cast<int>(e.type);
        const std::vector<float> values = sorted_draws([type] { return mk_rval(type, 0.0F, 1.0F); });
        EXPECT_NEAR(e.mean, mean(values), 0.005) << type;
        EXPECT_NEAR(e.share, share_up_to(values, e.bound), 0.006) << type << " up to " << e.bound;
    }
}

TEST(Distributions, StayBetweenTheirBounds)
{
    for (const int type : all_types) {
        const std::vector<float> values = sorted_draws([type] { return mk_rval(type, -3.0F, 5.0F); });
        EXPECT_GE(values.front(), -3.0F) << type;
        EXPECT_LE(values.back(), 5.0F) << type;
        EXPECT_LT(values.front(), 0.0F) << type;
        EXPECT_GT(values.back(), 2.0F) << type;
    }
}

TEST(Distributions, OfEqualBoundsGiveTheBoundAndStillDraw)
{
    const int least[] = {1, 1, 1, 2, 12, 1, 2};
    for (const int type : all_types) {
        float value = 0.0F;
        EXPECT_EQ(least[type], draws_of({3}, [&] { value = mk_rval(type, 7.25F, 7.25F); })) << type;
        EXPECT_EQ(7.25F, value) << type;
    }
}

TEST(Distributions, FallWhenTheBoundsAreSwapped)
{
    seed_draws(5);
    const float up = mk_rval(0, 0.0F, 8.0F);
    seed_draws(5);
    EXPECT_FLOAT_EQ(8.0F - up, mk_rval(0, 8.0F, 0.0F));
}

TEST(Distributions, AnUnknownTypeIsZeroWithoutADraw)
{
    for (const int type : {-1, 7, 100}) {
        float value = 1.0F;
        EXPECT_EQ(0, draws_of({3}, [&] { value = mk_rval(type, 5.0F, 6.0F); })) << type;
        EXPECT_EQ(0.0F, value) << type;
    }
}

TEST(Uniform, IsOneDrawScaled)
{
    EXPECT_EQ(1, draws_of({1}, [] { static_cast<void>(mk_rval(0, 10.0F, 20.0F)); }));
    seed_draws(1);
    EXPECT_EQ(10.0F + 1804289383.0F * 10.0F * 4.656613e-10F, mk_rval(0, 10.0F, 20.0F));
}

TEST(Uniform, CanBeBothBounds)
{
    go_to(ZERO_IS_NEXT);
    EXPECT_EQ(10.0F, mk_rval(0, 10.0F, 20.0F));
    go_to(ONE_IS_NEXT);
    EXPECT_EQ(20.0F, mk_rval(0, 10.0F, 20.0F));
}

TEST(Exponential, IsTheLogarithmOfOneDraw)
{
    for (std::uint32_t seed = 1; seed <= 200; ++seed) {
        const double u = wide(draws_ahead({seed}, 1)[0]);
        const auto   x = static_cast<float>(-std::log(u) / wide(6.9078F));
        EXPECT_EQ(std::min(x, 1.0F), expone_left()) << seed;
        EXPECT_EQ(1, draws_of({seed}, [] { static_cast<void>(expone_left()); })) << seed;
    }
}

TEST(Exponential, IsCappedAtOne)
{
    const std::vector<float> values = sorted_draws(expone_left);
    EXPECT_GE(values.front(), 0.0F);
    EXPECT_EQ(1.0F, values.back());
    EXPECT_NEAR(0.999, share_up_to(values, 0.99999), 0.0005);
}

TEST(Exponential, RefusesADrawOfZero)
{
    const std::vector<float> draws = draws_ahead(ZERO_IS_NEXT, 2);
    ASSERT_EQ(0.0F, draws[0]);
    EXPECT_FLOAT_EQ(static_cast<float>(-std::log(wide(draws[1])) / 6.9078), expone_left());
    EXPECT_EQ(2, draws_of(ZERO_IS_NEXT, [] { static_cast<void>(expone_left()); }));
}

TEST(Exponential, OfADrawOfOneIsZero)
{
    go_to(ONE_IS_NEXT);
    EXPECT_EQ(0.0F, expone_left());
}

TEST(HighExponential, MirrorsTheLowOne)
{
    for (std::uint32_t seed = 1; seed <= 50; ++seed) {
        seed_draws(seed);
        const float low = expone_left();
        EXPECT_EQ(1, draws_of({seed}, [] { static_cast<void>(mk_rval(2, 0.0F, 1.0F)); }));
        seed_draws(seed);
        EXPECT_EQ(1.0F - low, mk_rval(2, 0.0F, 1.0F)) << seed;
        seed_draws(seed);
        EXPECT_EQ(2.0F + low * 3.0F, mk_rval(1, 2.0F, 5.0F)) << seed;
    }
}

TEST(Triangular, IsTheMeanOfTwoDraws)
{
    for (std::uint32_t seed = 1; seed <= 50; ++seed) {
        const std::vector<float> u = draws_ahead({seed}, 2);
        EXPECT_EQ(4.0F + (u[0] + u[1]) * 0.5F * 8.0F, mk_rval(3, 4.0F, 12.0F)) << seed;
        EXPECT_EQ(2, draws_of({seed}, [] { static_cast<void>(mk_rval(3, 4.0F, 12.0F)); })) << seed;
    }
}

TEST(Gaussian, IsTheScaledSumOfTwelveDraws)
{
    for (std::uint32_t seed = 1; seed <= 200; ++seed) {
        float sum = 0.0F;
        for (const float u : draws_ahead({seed}, 12))
            sum += u;
        EXPECT_EQ(std::clamp((sum - 6.0F) * 0.155F + 0.5F, 0.0F, 1.0F), gauss()) << seed;
        EXPECT_EQ(12, draws_of({seed}, [] { static_cast<void>(gauss()); })) << seed;
    }
}

TEST(Gaussian, StaysBetweenZeroAndOne)
{
    const std::vector<float> values = sorted_draws(gauss);
    EXPECT_GE(values.front(), 0.0F);
    EXPECT_LE(values.back(), 1.0F);
    EXPECT_LT(values.front(), 0.05F);
    EXPECT_GT(values.back(), 0.95F);
}

TEST(Bilateral, MirrorsTheLogarithmAroundOneHalf)
{
    for (std::uint32_t seed = 1; seed <= 200; ++seed) {
        const double w = wide(2.0F * draws_ahead({seed}, 1)[0]);
        const double x = w > 1.0 ? -std::log(2.0 - w) / 14.0 : std::log(w) / 14.0;
        EXPECT_NEAR(std::clamp(x + 0.5, 0.0, 1.0), wide(bilex()), 1e-6) << seed;
        EXPECT_EQ(1, draws_of({seed}, [] { static_cast<void>(bilex()); })) << seed;
    }
}

TEST(Bilateral, StaysBetweenZeroAndOne)
{
    const std::vector<float> values = sorted_draws(bilex);
    EXPECT_GE(values.front(), 0.0F);
    EXPECT_LE(values.back(), 1.0F);
    EXPECT_LT(values.front(), 0.01F);
    EXPECT_GT(values.back(), 0.99F);
}

TEST(Bilateral, RefusesDrawsOfZeroAndOne)
{
    EXPECT_EQ(2, draws_of(ZERO_IS_NEXT, [] { static_cast<void>(bilex()); }));
    EXPECT_EQ(2, draws_of(ONE_IS_NEXT, [] { static_cast<void>(bilex()); }));
}

TEST(Beta, IsAQuotientOfFifthPowers)
{
    int refused = 0;
    for (std::uint32_t seed = 1; seed <= 200; ++seed) {
        const std::vector<float> draws = draws_ahead({seed}, 100);
        std::size_t              i     = 0;
        float                    x     = 1.0F;
        float                    y     = 1.0F;
        while (x + y > 1.0F) {
            x = static_cast<float>(std::pow(wide(draws[i++]), 5.0));
            y = static_cast<float>(std::pow(wide(draws[i++]), 5.0));
        }
        refused += i > 2 ? 1 : 0;
        EXPECT_EQ(x / (x + y), beta()) << seed;
        EXPECT_EQ(static_cast<int>(i), draws_of({seed}, [] { static_cast<void>(beta()); })) << seed;
    }
    EXPECT_GT(refused, 0);
}

TEST(Beta, StaysBetweenZeroAndOneAndPilesUpThere)
{
    const std::vector<float> values = sorted_draws(beta);
    EXPECT_GE(values.front(), 0.0F);
    EXPECT_LE(values.back(), 1.0F);
    EXPECT_GT(share_up_to(values, 0.1), 0.3);
    EXPECT_LT(share_up_to(values, 0.9), 0.7);
}

TEST(Beta, RefusesADrawOfZero)
{
    // the zero is drawn again alone, as the first of a pair and as the second
    const int before = ZERO_IS_NEXT.skipped;
    for (const int skipped : {before, before - 1}) {
        const Start              start{ZERO_IS_NEXT.seed, skipped};
        const std::vector<float> draws = draws_ahead(start, 3);
        const int                first = before - skipped == 0 ? 1 : 0;
        const double             x     = std::pow(wide(draws[static_cast<std::size_t>(first)]), 5.0);
        const double             y     = std::pow(wide(draws[2]), 5.0);
        ASSERT_LT(x + y, 0.999);
        EXPECT_NEAR(x / (x + y), wide(beta()), 1e-5);
        EXPECT_EQ(3, draws_of(start, [] { static_cast<void>(beta()); }));
    }
}

TEST(RelativeDeviation, AlwaysTakesOneDraw)
{
    for (const float deviation : {0.0F, 0.2F, 1.0F, 100.0F})
        for (const float value : {0.0F, 10.0F, -10.0F})
            EXPECT_EQ(1, draws_of({9}, [&] { static_cast<void>(add_rdev(value, deviation)); })) << deviation << " " << value;
}

TEST(RelativeDeviation, OfZeroChangesNothing)
{
    seed_draws(9);
    for (const float value : {0.0F, 0.1F, 10.0F, -1e30F, 1e-30F})
        EXPECT_EQ(value, add_rdev(value, 0.0F)) << value;
}

TEST(RelativeDeviation, OfTheValueZeroIsZero)
{
    seed_draws(9);
    for (int i = 0; i < 100; ++i)
        ASSERT_EQ(0.0F, add_rdev(0.0F, 100.0F));
}

TEST(RelativeDeviation, MovesByUpToHalfOfItToEitherSide)
{
    const std::vector<float> values = sorted_draws([] { return add_rdev(10.0F, 0.2F); });
    EXPECT_GE(values.front(), 9.0F);
    EXPECT_LE(values.back(), 11.0F);
    EXPECT_LT(values.front(), 9.001F);
    EXPECT_GT(values.back(), 10.999F);
    EXPECT_NEAR(10.0, mean(values), 0.01);
    EXPECT_NEAR(0.25, share_up_to(values, 9.5), 0.005);
}

TEST(RelativeDeviation, ReachesItsEndsWithTheExtremeDraws)
{
    go_to(ZERO_IS_NEXT);
    EXPECT_EQ(9.0F, add_rdev(10.0F, 0.2F));
    go_to(ONE_IS_NEXT);
    EXPECT_EQ(11.0F, add_rdev(10.0F, 0.2F));
    go_to(ZERO_IS_NEXT);
    EXPECT_EQ(-9.0F, add_rdev(-10.0F, 0.2F));
}

TEST(RelativeDeviation, AddsIn64Bits)
{
    int differing = 0;
    for (std::uint32_t seed = 1; seed <= 200; ++seed) {
        const float u      = draws_ahead({seed}, 1)[0];
        const float value  = 10.1F;
        const float amount = 0.3F * value;
        EXPECT_EQ(static_cast<float>(wide(u * amount) + wide(-0.5F * amount) + wide(value)), add_rdev(value, 0.3F)) << seed;
        seed_draws(seed);
        differing += add_rdev(value, 0.3F) != u * amount + -0.5F * amount + value ? 1 : 0;
    }
    EXPECT_GT(differing, 0);
}

// positions that a window gives from one position
std::vector<float> moves_from(float position, float width)
{
    return sorted_draws([=] {
        float moved = position;
        EXPECT_EQ(position, rwindow(moved, width));
        return moved;
    });
}

TEST(Window, ReturnsThePositionBeforeTheMove)
{
    seed_draws(1);
    float       position = 0.3F;
    const float first    = rwindow(position, 1.0F);
    EXPECT_EQ(0.3F, first);
    const float moved = position;
    EXPECT_EQ(1804289383.0F * 4.656613e-10F, moved);
    EXPECT_EQ(moved, rwindow(position, 1.0F));
}

TEST(Window, LiesAroundThePosition)
{
    const std::vector<float> moves = moves_from(0.5F, 0.2F);
    EXPECT_NEAR(0.4, wide(moves.front()), 1e-4);
    EXPECT_NEAR(0.6, wide(moves.back()), 1e-4);
    EXPECT_GE(moves.front(), 0.4F);
    EXPECT_LE(moves.back(), 0.6F);
}

TEST(Window, IsShiftedInsideAtTheTop)
{
    const std::vector<float> moves = moves_from(0.95F, 0.2F);
    EXPECT_NEAR(0.8, wide(moves.front()), 1e-4);
    EXPECT_NEAR(1.0, wide(moves.back()), 1e-4);
    EXPECT_GE(moves.front(), 0.8F);
}

TEST(Window, IsShiftedInsideAtTheBottom)
{
    const std::vector<float> moves = moves_from(0.05F, 0.2F);
    EXPECT_NEAR(0.0, wide(moves.front()), 1e-4);
    EXPECT_NEAR(0.2, wide(moves.back()), 1e-4);
    EXPECT_LE(moves.back(), 0.2F);
}

TEST(Window, OfWidthOneTakesOneDrawFromAnywhere)
{
    for (const float from : {0.0F, 0.05F, 0.5F, 0.95F, 1.0F})
        for (std::uint32_t seed = 1; seed <= 50; ++seed) {
            float position = from;
            EXPECT_EQ(1, draws_of({seed}, [&] {
                          position = from;
                          static_cast<void>(rwindow(position, 1.0F));
                      }));
            EXPECT_EQ(draws_ahead({seed}, 1)[0], position);
        }
}

TEST(Window, OfWidthZeroTakesOneDrawAndStays)
{
    for (const float from : {0.0F, 0.05F, 0.5F, 0.95F, 1.0F}) {
        float position = from;
        float before   = -1.0F;
        EXPECT_EQ(1, draws_of({4}, [&] { before = rwindow(position, 0.0F); })) << from;
        EXPECT_EQ(from, position);
        EXPECT_EQ(from, before);
    }
}

TEST(Window, TakesADrawForEachAttempt)
{
    int most = 0;
    for (std::uint32_t seed = 1; seed <= 50; ++seed) {
        const std::vector<float> draws = draws_ahead({seed}, 500);
        const auto               hit   = std::find_if(draws.begin(), draws.end(), [](float u) { return 0.25F <= u && u <= 0.75F; });
        const int                attempts = static_cast<int>(hit - draws.begin()) + 1;
        float                    position = 0.5F;
        EXPECT_EQ(attempts, draws_of({seed}, [&] {
                      position = 0.5F;
                      static_cast<void>(rwindow(position, 0.5F));
                  }));
        EXPECT_EQ(*hit, position);
        most = std::max(most, attempts);
    }
    EXPECT_GT(most, 2);
}

TEST(Window, HoldsBothOfItsEnds)
{
    int at_low  = 0;
    int at_high = 0;
    for (std::uint32_t seed = 1; seed <= 50; ++seed) {
        seed_draws(seed);
        const float first = draw_uniform();
        for (const float side : {0.125F, -0.125F}) {
            float position = first + side; // the window's end is the first draw, where the sum is exact
            if (position - side != first || position < 0.125F || position > 0.875F)
                continue;
            ++(side > 0.0F ? at_low : at_high);
            seed_draws(seed);
            static_cast<void>(rwindow(position, 0.25F));
            EXPECT_EQ(first, position) << seed << ' ' << side;
        }
    }
    EXPECT_GT(at_low, 0);
    EXPECT_GT(at_high, 0);
}

TEST(Window, ThatNoDrawCanHitEndsAfterTwoToThe24)
{
    constexpr float FROM = 1e-6F; // between 2147 and 2148 times 2^-31
    seed_draws(1);
    float position = FROM;
    EXPECT_EQ(FROM, rwindow(position, 1e-10F));
    EXPECT_EQ(FROM, position);
    const std::int32_t next = draw_int();
    go_to({1, 1 << 24});
    EXPECT_EQ(draw_int(), next);
}

TEST(Window, StaysInsideOnALongWalk)
{
    seed_draws(11);
    float position = 0.5F;
    float least    = 1.0F;
    float most     = 0.0F;
    for (int i = 0; i < 20000; ++i) {
        const float before = rwindow(position, 0.1F);
        ASSERT_LE(std::fabs(position - before), 0.1F);
        least = std::min(least, position);
        most  = std::max(most, position);
    }
    EXPECT_GE(least, 0.0F);
    EXPECT_LE(most, 1.0F);
    EXPECT_LT(least, 0.01F);
    EXPECT_GT(most, 0.99F);
}

TEST(Window, ScalesThePositionBeforeTheMove)
{
    seed_draws(1);
    float position = 0.25F;
    EXPECT_EQ(12.5F, rand_window(position, 10.0F, 20.0F, 1.0F));
    const float moved = position;
    EXPECT_EQ(1804289383.0F * 4.656613e-10F, moved);
    EXPECT_EQ(moved * 10.0F + 10.0F, rand_window(position, 10.0F, 20.0F, 1.0F));
}

TEST(WeightedChoice, TakesOneDrawWhateverTheWeights)
{
    const float weights[] = {0.25F, 0.25F, 0.5F};
    for (const int n : {-1, 0, 1, 2, 3})
        EXPECT_EQ(1, draws_of({6}, [&] { static_cast<void>(prob_result(weights, n)); })) << n;
}

TEST(WeightedChoice, OfOneIsTheFirst)
{
    const float weights[] = {0.0F};
    for (const int n : {-1, 0, 1})
        EXPECT_EQ(0, prob_result(weights, n)) << n;
}

TEST(WeightedChoice, ADrawOnARunningSumChoosesIt)
{
    const float u             = draws_ahead({1}, 1)[0];
    const float below         = std::nextafter(u, 0.0F);
    const float exact[]       = {u, 1.0F - u};
    const float short_of_it[] = {below, 1.0F - below};
    seed_draws(1);
    EXPECT_EQ(0, prob_result(exact, 2));
    seed_draws(1);
    EXPECT_EQ(1, prob_result(short_of_it, 2));
}

TEST(WeightedChoice, RunsThroughTheSums)
{
    const float u         = draws_ahead({1}, 1)[0]; // 0.84
    const float weights[] = {0.25F, 0.25F, 0.25F, 0.25F};
    ASSERT_GT(u, 0.75F);
    seed_draws(1);
    EXPECT_EQ(3, prob_result(weights, 4));
    const float late[] = {0.0F, 0.5F, 0.5F};
    seed_draws(1);
    EXPECT_EQ(2, prob_result(late, 3));
}

TEST(WeightedChoice, ADrawAboveEverySumGivesTheCount)
{
    const float weights[] = {0.1F, 0.2F};
    seed_draws(1);
    EXPECT_EQ(2, prob_result(weights, 2));
}

TEST(WeightedChoice, FollowsTheWeights)
{
    const float weights[] = {0.2F, 0.5F, 0.3F};
    int         chosen[4] = {};
    seed_draws(8);
    for (int i = 0; i < MANY; ++i)
        ++chosen[prob_result(weights, 3)];
    EXPECT_NEAR(0.2, chosen[0] / 1e5, 0.006);
    EXPECT_NEAR(0.5, chosen[1] / 1e5, 0.006);
    EXPECT_NEAR(0.3, chosen[2] / 1e5, 0.006);
    EXPECT_EQ(0, chosen[3]);
}

TEST(HundredPercent, BothLimitsAreOutside)
{
    for (const float sum : {0.999995F, 1.0F, 1.000005F, 0.9999901F, 1.0000099F})
        EXPECT_TRUE(hundred_percent(&sum, 1)) << wide(sum);
    for (const float sum : {0.99999F, 1.00001F, 0.9F, 1.1F, 0.0F, -1.0F, std::nanf("")})
        EXPECT_FALSE(hundred_percent(&sum, 1)) << wide(sum);
}

TEST(HundredPercent, AddsTheFirstWeights)
{
    const float weights[] = {0.25F, 0.25F, 0.5F, 7.0F};
    EXPECT_FALSE(hundred_percent(weights, 2));
    EXPECT_TRUE(hundred_percent(weights, 3));
    EXPECT_FALSE(hundred_percent(weights, 4));
    const std::vector<float> tenths(10, 0.1F);
    EXPECT_TRUE(hundred_percent(tenths.data(), 10));
}

TEST(HundredPercent, OfNothingIsRefused)
{
    const float weight = 1.0F;
    EXPECT_FALSE(hundred_percent(&weight, 0));
    EXPECT_FALSE(hundred_percent(&weight, -1));
}

} // namespace
} // namespace orlo

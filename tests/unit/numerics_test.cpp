#include "base/numerics.h"

#include "base/random.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace orlo {
namespace {

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr double INFINITE     = std::numeric_limits<double>::infinity();
constexpr float  FLOAT_NAN    = std::numeric_limits<float>::quiet_NaN();
constexpr float  FLOAT_INF    = std::numeric_limits<float>::infinity();

constexpr std::int32_t MIN_32 = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t MIN_64 = std::numeric_limits<std::int64_t>::min();

TEST(ToInt32, TruncatesTowardZero)
{
    EXPECT_EQ(2, to_int32(2.999));
    EXPECT_EQ(-2, to_int32(-2.999));
    EXPECT_EQ(0, to_int32(-0.5));
}

TEST(ToInt32, ReachesBothLimits)
{
    EXPECT_EQ(2147483647, to_int32(2147483647.0));
    EXPECT_EQ(2147483647, to_int32(2147483647.9));
    EXPECT_EQ(MIN_32, to_int32(-2147483648.0));
    EXPECT_EQ(-2147483647, to_int32(-2147483647.5));
}

TEST(ToInt32, OutOfRangeGivesTheMostNegative)
{
    for (const double value : {2147483648.0, 1e20, -2147483649.0, -1e300, INFINITE, -INFINITE, NOT_A_NUMBER})
        EXPECT_EQ(MIN_32, to_int32(value)) << value;
}

TEST(ToInt64, ReachesBothLimits)
{
    EXPECT_EQ(-7, to_int64(-7.99));
    EXPECT_EQ(9223372036854774784, to_int64(9223372036854774784.0));
    EXPECT_EQ(MIN_64, to_int64(-9223372036854775808.0));
    EXPECT_EQ(-9223372036854774784, to_int64(-9223372036854774784.0));
}

TEST(ToInt64, OutOfRangeGivesTheMostNegative)
{
    for (const double value : {9223372036854775808.0, 1e30, -9223372036854777856.0, INFINITE, -INFINITE, NOT_A_NUMBER})
        EXPECT_EQ(MIN_64, to_int64(value)) << value;
}

TEST(ToUint64, ReachesBothLimits)
{
    EXPECT_EQ(0U, to_uint64(0.0));
    EXPECT_EQ(3U, to_uint64(3.9));
    EXPECT_EQ(9223372036854775808U, to_uint64(9223372036854775808.0));
    EXPECT_EQ(18446744073709549568U, to_uint64(18446744073709549568.0));
}

TEST(ToUint64, OutOfRangeGivesTheTopBit)
{
    for (const double value : {18446744073709551616.0, 1e300, -1.0, -5e18, INFINITE, -INFINITE, NOT_A_NUMBER})
        EXPECT_EQ(9223372036854775808U, to_uint64(value)) << value;
}

TEST(Round, HalvesGoUp)
{
    EXPECT_EQ(3, Round(2.5F));
    EXPECT_EQ(-2, Round(-2.5F));
    EXPECT_EQ(1, Round(0.5F));
    EXPECT_EQ(0, Round(-0.5F));
}

TEST(Round, TakesTheNearest)
{
    EXPECT_EQ(2, Round(2.4999998F));
    EXPECT_EQ(3, Round(2.5000002F));
    EXPECT_EQ(-3, Round(-2.5000002F));
    EXPECT_EQ(7, Round(7.0F));
    EXPECT_EQ(-7, Round(-7.0F));
    EXPECT_EQ(16777216, Round(16777216.0F));
}

TEST(Round, OutOfRangeGivesTheMostNegative)
{
    EXPECT_EQ(2147483520, Round(2147483520.0F));
    for (const float value : {2147483648.0F, -1e20F, FLOAT_INF, -FLOAT_INF, FLOAT_NAN})
        EXPECT_EQ(MIN_32, Round(value)) << value;
}

TEST(RoundF, HalvesGoUp)
{
    EXPECT_EQ(3.0F, RoundF(2.5F));
    EXPECT_EQ(-2.0F, RoundF(-2.5F));
    EXPECT_EQ(0.0F, RoundF(-0.5F));
}

TEST(RoundF, TakesTheNearestOfAnySize)
{
    EXPECT_EQ(2.0F, RoundF(2.4999998F));
    EXPECT_EQ(-3.0F, RoundF(-2.5000002F));
    EXPECT_EQ(1e30F, RoundF(1e30F));
    EXPECT_EQ(-1e30F, RoundF(-1e30F));
}

TEST(Mod, KeepsTheSignOfTheDividend)
{
    EXPECT_EQ(1.0F, mod(13.0F, 12.0F));
    EXPECT_EQ(-1.0F, mod(-1.0F, 12.0F));
    EXPECT_EQ(-1.0F, mod(-13.0F, 12.0F));
    EXPECT_EQ(1.5F, mod(7.5F, 2.0F));
    EXPECT_EQ(0.0F, mod(24.0F, 12.0F));
}

TEST(Mod, TheSignOfTheDivisorDoesNotCount)
{
    EXPECT_EQ(1.0F, mod(7.0F, -3.0F));
    EXPECT_EQ(-1.0F, mod(-7.0F, -3.0F));
}

TEST(Mod, ByZeroIsZero)
{
    EXPECT_EQ(0.0F, mod(7.0F, 0.0F));
    EXPECT_EQ(0.0F, mod(7.0F, -0.0F));
    EXPECT_EQ(0.0F, mod(FLOAT_INF, 0.0F));
}

TEST(Mod, HugeDividendsEndWithTheExactRemainder)
{
    EXPECT_EQ(std::fmod(1e20F, 1.0F), mod(1e20F, 1.0F));
    EXPECT_EQ(std::fmod(1e30F, 12.0F), mod(1e30F, 12.0F));
    EXPECT_EQ(std::fmod(-1e30F, 12.0F), mod(-1e30F, 12.0F));
    EXPECT_EQ(std::fmod(1e38F, 7.0F), mod(1e38F, 7.0F));
    EXPECT_EQ(std::fmod(3.0F, 1e-30F), mod(3.0F, 1e-30F));
}

// what the rounded product leaves over, taken off step by step
float mod_by_steps(float x, float m)
{
    float r = x - m * static_cast<float>(static_cast<std::int64_t>(x / m));
    while (r > m && r - m != r)
        r -= m;
    while (-r > m && r + m != r)
        r += m;
    return std::fabs(r) > m ? std::fmod(x, m) : r;
}

TEST(Mod, TakesOffWhatTheRoundedProductLeavesOver)
{
    int above = 0;
    int below = 0;
    seed_draws(3);
    for (int i = 0; i < 1000; ++i) {
        const float m    = draw_uniform() * 20.0F + 0.1F;
        const float x    = (draw_uniform() - 0.5F) * std::ldexp(1.0F, 28 + i % 18);
        const float left = x - m * static_cast<float>(static_cast<std::int64_t>(x / m));
        above += left > m ? 1 : 0;
        below += left < -m ? 1 : 0;
        EXPECT_EQ(mod_by_steps(x, m), mod(x, m)) << x << " " << m;
        EXPECT_EQ(mod_by_steps(x, m), mod(x, -m)) << x << " " << -m;
    }
    EXPECT_GT(above, 20);
    EXPECT_GT(below, 20);
}

TEST(Mod, LargeDividendsStayBelowTheDivisor)
{
    for (const float x : {1e6F, 1e8F, 1e10F, 1e12F, 1e15F, 1e18F, -1e9F, -1e13F, -1e18F}) {
        const float r = mod(x, 12.0F);
        EXPECT_LE(std::fabs(r), 12.0F) << x;
    }
}

TEST(Mod, WhatIsNotFiniteGivesNoNumber)
{
    EXPECT_TRUE(std::isnan(mod(FLOAT_INF, 12.0F)));
    EXPECT_TRUE(std::isnan(mod(-FLOAT_INF, 12.0F)));
    EXPECT_TRUE(std::isnan(mod(FLOAT_NAN, 12.0F)));
    EXPECT_TRUE(std::isnan(mod(5.0F, FLOAT_NAN)));
}

TEST(Mod, AnInfiniteDivisorEnds) { EXPECT_TRUE(std::isnan(mod(5.0F, FLOAT_INF))); } // 5 - infinity * 0

TEST(Swapf, TwoNumbersAreExchanged)
{
    float a = 1.0F;
    float b = 2.0F;
    swapf(a, b);
    EXPECT_EQ(2.0F, a);
    EXPECT_EQ(1.0F, b);
}

} // namespace
} // namespace orlo

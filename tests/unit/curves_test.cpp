#include "base/curves.h"

#include "support.h"

#include <cmath>
#include <limits>

namespace orlo {
namespace {

using test::wide;

constexpr int   all_codes[] = {0, 1, 2, 3, 4, 5};
constexpr float FLOAT_INF   = std::numeric_limits<float>::infinity();

TEST(TimePlot, FromTheTotalOnItIsTheEnd)
{
    for (const int code : all_codes) {
        EXPECT_EQ(20.0F, tplot_val(code, 4.0F, 4.0F, 10.0F, 20.0F, 1.0)) << code;
        EXPECT_EQ(20.0F, tplot_val(code, 9.0F, 4.0F, 10.0F, 20.0F, 1.0)) << code;
    }
}

TEST(TimePlot, UpToZeroItIsTheStart)
{
    for (const int code : all_codes) {
        EXPECT_EQ(10.0F, tplot_val(code, 0.0F, 4.0F, 10.0F, 20.0F, 1.0)) << code;
        EXPECT_EQ(10.0F, tplot_val(code, -3.0F, 4.0F, 10.0F, 20.0F, 1.0)) << code;
    }
}

TEST(TimePlot, TheEndIsTestedBeforeTheStart)
{
    EXPECT_EQ(20.0F, tplot_val(0, 0.0F, 0.0F, 10.0F, 20.0F, 1.0));
    EXPECT_EQ(20.0F, tplot_val(0, -1.0F, -2.0F, 10.0F, 20.0F, 1.0));
    EXPECT_EQ(10.0F, tplot_val(0, -3.0F, -2.0F, 10.0F, 20.0F, 1.0));
}

TEST(TimePlot, EveryCodeHasItsShape)
{
    EXPECT_FLOAT_EQ(12.5F, tplot_val(0, 1.0F, 4.0F, 10.0F, 20.0F, 7.0));
    EXPECT_FLOAT_EQ(10.625F, tplot_val(1, 1.0F, 4.0F, 10.0F, 20.0F, 7.0));
    EXPECT_FLOAT_EQ(15.0F, tplot_val(2, 1.0F, 4.0F, 10.0F, 20.0F, 7.0));
    EXPECT_FLOAT_EQ(10.15625F, tplot_val(3, 1.0F, 4.0F, 10.0F, 20.0F, 3.0));
    EXPECT_FLOAT_EQ(13.826834F, tplot_val(4, 1.0F, 4.0F, 10.0F, 20.0F, 7.0)); // sin(pi / 8) = 0.38268343
    EXPECT_FLOAT_EQ(11.173166F, tplot_val(5, 1.0F, 4.0F, 10.0F, 20.0F, 7.0)); // 0.5 - 0.38268343
}

TEST(TimePlot, FallingMovesHaveTheSameShapes)
{
    EXPECT_FLOAT_EQ(17.5F, tplot_val(0, 1.0F, 4.0F, 20.0F, 10.0F, 1.0));
    EXPECT_FLOAT_EQ(19.375F, tplot_val(1, 1.0F, 4.0F, 20.0F, 10.0F, 1.0));
    EXPECT_FLOAT_EQ(15.0F, tplot_val(2, 1.0F, 4.0F, 20.0F, 10.0F, 1.0));
}

TEST(TimePlot, AnUnknownCodeIsZeroBetweenTheEnds)
{
    for (const int code : {-1, 6, 99, 100, 105, 2147483647, -2147483647}) {
        EXPECT_EQ(0.0F, tplot_val(code, 1.0F, 4.0F, 10.0F, 20.0F, 1.0)) << code;
        EXPECT_EQ(10.0F, tplot_val(code, 0.0F, 4.0F, 10.0F, 20.0F, 1.0)) << code;
        EXPECT_EQ(20.0F, tplot_val(code, 4.0F, 4.0F, 10.0F, 20.0F, 1.0)) << code;
    }
}

TEST(TimePlot, IsComputedIn64Bits)
{
    const double third = 1.0 / 3.0;
    EXPECT_EQ(static_cast<float>(wide(0.1F) + (1e6 - wide(0.1F)) * third), tplot_val(0, 1.0F, 3.0F, 0.1F, 1e6F, 1.0));
    EXPECT_EQ(static_cast<float>(std::pow(third, 0.3)), tplot_val(3, 1.0F, 3.0F, 0.0F, 1.0F, 0.3));
}

TEST(TimePlot, IsAlwaysANumberBetweenFiniteEnds)
{
    for (const int code : all_codes)
        for (const float t : {-1e30F, -1.0F, -0.0F, 0.0F, 1e-40F, 0.5F, 1.0F, 1e30F})
            for (const float total : {-1.0F, 0.0F, 1e-38F, 1.0F, 1e30F, FLOAT_INF})
                for (const double exponent : {1e-30, 0.5, 1.0, 1e30})
                    EXPECT_TRUE(std::isfinite(tplot_val(code, t, total, -5.0F, 5.0F, exponent)))
                        << code << " " << t << " " << total << " " << exponent;
}

TEST(EventPlot, TheStraightLineTouchesBothEnds)
{
    const float expected[] = {10.0F, 12.5F, 15.0F, 17.5F, 20.0F};
    for (std::uint64_t i = 0; i < 5; ++i)
        EXPECT_EQ(expected[i], pplot_val(i, 5, 0, 10.0F, 20.0F, 1.0)) << i;
}

TEST(EventPlot, EveryCodeTouchesBothEnds)
{
    for (const int code : all_codes) {
        EXPECT_EQ(10.0F, pplot_val(0, 5, code, 10.0F, 20.0F, 2.5)) << code;
        EXPECT_EQ(20.0F, pplot_val(4, 5, code, 10.0F, 20.0F, 2.5)) << code;
        EXPECT_EQ(10.0F, pplot_val(0, 2, code, 10.0F, 20.0F, 2.5)) << code;
        EXPECT_EQ(20.0F, pplot_val(1, 2, code, 10.0F, 20.0F, 2.5)) << code;
    }
}

TEST(EventPlot, EveryCodeHasItsShape)
{
    EXPECT_FLOAT_EQ(10.625F, pplot_val(1, 5, 1, 10.0F, 20.0F, 7.0));
    EXPECT_FLOAT_EQ(15.0F, pplot_val(1, 5, 2, 10.0F, 20.0F, 7.0));
    EXPECT_FLOAT_EQ(10.15625F, pplot_val(1, 5, 3, 10.0F, 20.0F, 3.0));
    EXPECT_FLOAT_EQ(13.826834F, pplot_val(1, 5, 4, 10.0F, 20.0F, 7.0));
    EXPECT_FLOAT_EQ(11.173166F, pplot_val(1, 5, 5, 10.0F, 20.0F, 7.0));
}

TEST(EventPlot, OverOneEventItIsTheStart)
{
    for (const int code : {0, 3, 6, 100})
        for (const std::uint64_t i : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{99}})
            EXPECT_EQ(10.0F, pplot_val(i, 1, code, 10.0F, 20.0F, 1.0)) << code << " " << i;
}

TEST(EventPlot, PastTheLastEventItIsTheEnd)
{
    EXPECT_EQ(20.0F, pplot_val(5, 5, 0, 10.0F, 20.0F, 1.0));
    EXPECT_EQ(20.0F, pplot_val(std::numeric_limits<std::uint64_t>::max(), 5, 6, 10.0F, 20.0F, 1.0));
}

TEST(EventPlot, AnUnknownCodeIsZeroAtTheEndsToo)
{
    for (const int code : {-1, 6, 100, 105})
        for (const std::uint64_t i : {std::uint64_t{0}, std::uint64_t{2}, std::uint64_t{4}})
            EXPECT_EQ(0.0F, pplot_val(i, 5, code, 10.0F, 20.0F, 1.0)) << code << " " << i;
}

TEST(EventPlot, CountsHave64Bits)
{
    const std::uint64_t n = (std::uint64_t{1} << 40) + 1;
    EXPECT_EQ(15.0F, pplot_val(std::uint64_t{1} << 39, n, 0, 10.0F, 20.0F, 1.0));
    EXPECT_EQ(12.5F, pplot_val(std::uint64_t{1} << 61, std::uint64_t{1} << 63, 0, 10.0F, 20.0F, 1.0));
}

} // namespace
} // namespace orlo

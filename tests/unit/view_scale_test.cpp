#include "view/scale.h"
#include "view/scores.h"

#include <gtest/gtest.h>

#include <cmath>

namespace orlo::view {
namespace {

constexpr double LARGEST = LARGEST_VALUE;

std::string labels(const std::vector<Tick> &ticks)
{
    std::string text;
    for (const Tick &tick : ticks)
        text += (text.empty() ? "" : " ") + tick.label;
    return text;
}

TEST(Fraction, GoesFromLowToHigh)
{
    EXPECT_EQ(0, fraction({-2, 6}, -2));
    EXPECT_EQ(0.25, fraction({-2, 6}, 0));
    EXPECT_EQ(1, fraction({-2, 6}, 6));
}

TEST(Fraction, IsTheMiddleWhereAllIsEqual) { EXPECT_EQ(0.5, fraction({7, 7}, 7)); }

TEST(Fraction, StandsTheWidestRange)
{
    EXPECT_EQ(0, fraction({-LARGEST, LARGEST}, -LARGEST));
    EXPECT_EQ(0.5, fraction({-LARGEST, LARGEST}, 0));
    EXPECT_EQ(1, fraction({-LARGEST, LARGEST}, LARGEST));
}

TEST(Include, StartsWithTheFirstValue)
{
    Range range;
    bool  empty = true;
    include(range, empty, 5);
    EXPECT_FALSE(empty);
    EXPECT_EQ(5, range.low);
    EXPECT_EQ(5, range.high);
    include(range, empty, -1);
    include(range, empty, 3);
    EXPECT_EQ(-1, range.low);
    EXPECT_EQ(5, range.high);
}

TEST(NiceTicks, AreMultiplesOfOneTwoOrFive)
{
    EXPECT_EQ("0 2 4 6 8 10", labels(nice_ticks({0, 10}, 6)));
    EXPECT_EQ("0 0.5 1", labels(nice_ticks({0, 1}, 4)));
    EXPECT_EQ("4000 6000 8000", labels(nice_ticks({3981, 9999}, 4)));
    EXPECT_EQ("-20 -10 0", labels(nice_ticks({-25, 4}, 4)));
    EXPECT_EQ("0 0.1 0.2 0.3", labels(nice_ticks({0, 0.3}, 4))); // 3 * 0.1 is more than 0.3
}

TEST(NiceTicks, HaveDigitsEnough)
{
    EXPECT_EQ("10000000 10000001 10000002", labels(nice_ticks({1e7, 1e7 + 2}, 4)));
    EXPECT_EQ("-1e+30 -5e+29 0 5e+29 1e+30", labels(nice_ticks({-1e30, 1e30}, 5)));
    EXPECT_EQ("0 2e-09 4e-09", labels(nice_ticks({0, 5e-9}, 4)));
}

TEST(NiceTicks, HaveSixteenDigitsAtMost)
{
    EXPECT_EQ("100000000000000", nice_ticks({1e14, 1e14 + 0.109375}, 6)[1].label); // 1e14 + .02
    EXPECT_EQ("100000000000000.1", nice_ticks({1e14, 1e14 + 0.109375}, 6)[5].label);
}

TEST(NiceTicks, AreOneWhereNothingDiffers)
{
    EXPECT_EQ("0.318", labels(nice_ticks({0.318, 0.318}, 4)));
    EXPECT_EQ("1e+20", labels(nice_ticks({1e20, std::nextafter(1e20, 2e20)}, 4)));
    EXPECT_EQ("0", labels(nice_ticks({0, 5e-324}, 4)));
}

TEST(NiceTicks, AreFewInEveryRange)
{
    for (const double low : {-LARGEST, -1e18, -3.0, 0.0, 0.7, 99.5, 1e300}) {
        for (const double width : {1e-300, 1e-9, 0.7, 1.0, 9.99, 1e6, 1e299, LARGEST}) {
            const Range range{low, low + width};
            for (int most = 2; most < 14; most++) {
                const auto ticks = nice_ticks(range, most);
                EXPECT_LE(static_cast<int>(ticks.size()), most) << low << ' ' << width;
                for (const Tick &tick : ticks) {
                    EXPECT_GE(tick.value, range.low - width * 1e-6) << low << ' ' << width;
                    EXPECT_LE(tick.value, range.high + width * 1e-6) << low << ' ' << width;
                }
            }
        }
    }
    EXPECT_FALSE(nice_ticks({-LARGEST, LARGEST}, 4).empty());
}

TEST(KeyName, CountsOctavesFromC)
{
    EXPECT_EQ("C4", key_name(60));
    EXPECT_EQ("A4", key_name(69));
    EXPECT_EQ("B3", key_name(59));
    EXPECT_EQ("F\u266F-1", key_name(6));
    EXPECT_EQ("B-2", key_name(-1));
}

TEST(KeyTicks, NameWhatHasRoom)
{
    EXPECT_EQ("C4 C\u266F4 D4", labels(key_ticks({59.5, 62.5}, 4)));
    EXPECT_EQ("C4 D4 E4 G4 A4 C5", labels(key_ticks({59.5, 72.5}, 10)));
    EXPECT_EQ("C4 E4 G4 C5", labels(key_ticks({59.5, 72.5}, 5)));
    EXPECT_EQ("C4 G4 C5", labels(key_ticks({59.5, 72.5}, 3)));
    EXPECT_EQ("C2 C3 C4", labels(key_ticks({35.5, 60.5}, 4)));
    EXPECT_EQ("C1 C3 C5", labels(key_ticks({20, 75}, 3)));
}

TEST(KeyTicks, AreNumbersBeyondNames)
{
    EXPECT_EQ("0 200 400", labels(key_ticks({-0.5, 400.5}, 4)));
    EXPECT_EQ("-100 -50 0", labels(key_ticks({-100.5, 0.5}, 4)));
}

TEST(TimeText, AddsMinutesToLongTimes)
{
    EXPECT_EQ("32.41 s", time_text(32.41, false));
    EXPECT_EQ("60 s (1:00)", time_text(60, false));
    EXPECT_EQ("153.828 s (2:34)", time_text(153.828, false));
    EXPECT_EQ("3665 s (61:05)", time_text(3665, false));
    EXPECT_EQ("1e+30 s", time_text(1e30, false));
}

TEST(TimeText, CountsBeats)
{
    EXPECT_EQ("1 beat", time_text(1, true));
    EXPECT_EQ("64 beats", time_text(64, true));
}

} // namespace
} // namespace orlo::view

// Numbers as text: compared with the C library.

#include "base/number_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>

namespace {

std::string real_text(float value, int width, int decimals)
{
    char text[orlo::LONGEST_NUMBER];
    return {text, orlo::put_real(text, value, width, decimals)};
}

std::string whole_text(std::int32_t value, int width)
{
    char text[orlo::LONGEST_NUMBER];
    return {text, orlo::put_whole(text, value, width)};
}

std::string library_text(float value, int width, int decimals)
{
    if (std::isnan(value))
        return std::string(static_cast<std::size_t>(std::max(width - 4, 0)), ' ') + "-nan";
    char text[80];
    std::snprintf(text, sizeof text, "%*.*f", width, decimals, static_cast<double>(value));
    return text;
}

#ifdef __SANITIZE_ADDRESS__
constexpr int VALUES = 1'000'000;
#else
constexpr int VALUES = 10'000'000;
#endif

} // namespace

TEST(NumberText, AgreesWithTheLibraryForFloatsOfEveryExponent)
{
    std::mt19937 random{20};
    for (int i = 0; i < VALUES; ++i) {
        const auto value    = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        const int  decimals = i % 8;
        const int  width    = decimals + i % 7;
        ASSERT_EQ(real_text(value, width, decimals), library_text(value, width, decimals)) << value;
    }
}

TEST(NumberText, AgreesWithTheLibraryForTies)
{
    for (int whole = -2000; whole <= 2000; ++whole) {
        for (int halvings = 0; halvings <= 12; ++halvings) {
            const float value = static_cast<float>(whole) / static_cast<float>(1 << halvings);
            for (int decimals = 0; decimals <= 7; ++decimals)
                ASSERT_EQ(real_text(value, decimals + 6, decimals), library_text(value, decimals + 6, decimals)) << value;
        }
    }
}

TEST(NumberText, AgreesWithTheLibraryAtTheEdges)
{
    using limits = std::numeric_limits<float>;
    for (const float value : {0.0F, -0.0F, limits::min(), limits::denorm_min(), -limits::denorm_min(), limits::max(),
                              limits::lowest(), limits::infinity(), -limits::infinity(), limits::quiet_NaN(), -limits::quiet_NaN(),
                              549755813888.0F, 549755781120.0F, -549755813888.0F, 0.5F, 1.5F, -0.0004F})
        for (int decimals = 0; decimals <= 7; ++decimals)
            EXPECT_EQ(real_text(value, decimals + 6, decimals), library_text(value, decimals + 6, decimals)) << value;
}

TEST(NumberText, WhatIsNoNumberIsWrittenOneWay)
{
    for (const float value : {std::nanf(""), -std::nanf(""), std::nanf("1"), -std::nanf("1")}) {
        EXPECT_EQ(real_text(value, 9, 3), "     -nan");
        EXPECT_EQ(real_text(value, 0, 0), "-nan");
        EXPECT_TRUE(std::isnan(orlo::printable(static_cast<double>(value))));
        EXPECT_TRUE(std::signbit(orlo::printable(static_cast<double>(value))));
    }
}

TEST(NumberText, WhatIsANumberIsPrintable)
{
    for (const double value : {0.0, 1.5, -1.5, std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()})
        EXPECT_EQ(orlo::printable(value), value);
    EXPECT_FALSE(std::signbit(orlo::printable(0.0)));
    EXPECT_TRUE(std::signbit(orlo::printable(-0.0)));
}

TEST(NumberText, ThreeThousandthsAreRightAlignedInEight) { EXPECT_EQ(real_text(1.5F, 8, 3), "   1.500"); }

TEST(NumberText, WholeNumbersAreRightAlignedAndMayBeWider)
{
    EXPECT_EQ(whole_text(-2, 5), "   -2");
    EXPECT_EQ(whole_text(1234567, 5), "1234567");
    EXPECT_EQ(whole_text(std::numeric_limits<std::int32_t>::min(), 0), "-2147483648");
}

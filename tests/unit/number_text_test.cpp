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
#include <utility>

namespace {

std::string real_text(float value, int width, int decimals)
{
    char text[orlo::LONGEST_NUMBER];
    return {text, orlo::put_real(text, value, width, decimals)};
}

std::string double_text(double value, int width, int decimals)
{
    char text[orlo::LONGEST_DOUBLE];
    return {text, orlo::put_double(text, value, width, decimals)};
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
        EXPECT_EQ(double_text(static_cast<double>(value), 7, 2), "   -nan");
    }
}

TEST(NumberText, DoublesAgreeWithTheLibrary)
{
    using limits = std::numeric_limits<double>;
    for (const double value :
         {0.0, -0.0, 1.5, -1.005, limits::max(), limits::lowest(), limits::denorm_min(), limits::infinity(), -limits::infinity()}) {
        char      expected[orlo::LONGEST_DOUBLE];
        const int length = std::snprintf(expected, sizeof expected, "%7.2f", value);
        EXPECT_EQ(double_text(value, 7, 2), std::string(expected, static_cast<std::size_t>(length)));
    }
}

TEST(NumberText, WhatIsPrintedIsWhatIsPut)
{
    std::FILE *file = std::tmpfile();
    orlo::print_real(file, 1.25F, 7, 1);
    orlo::print_real(file, std::nanf(""), 0, 6);
    std::rewind(file);
    char              text[32];
    const std::size_t length = std::fread(text, 1, sizeof text, file);
    std::fclose(file);
    EXPECT_EQ((std::string{text, length}), "    1.2-nan");
}

TEST(NumberText, NumbersAreReadInAWholeTextAlone)
{
    for (const auto read : {orlo::read_double, orlo::read_double_by_library}) {
        double value = 0;
        for (const auto &[text, expected] : std::initializer_list<std::pair<const char *, double>>{
                 {"0", 0},
                 {"-0.5", -0.5},
                 {".25", .25},
                 {"3.", 3},
                 {"1e3", 1000},
                 {"1E+3", 1000},
                 {"-2.5e-1", -.25},
                 {"1e400", HUGE_VAL},
                 {"-1e400", -HUGE_VAL},
                 {"1e-400", 0},
                 {"4.9e-324", 5e-324},
                 {"007", 7},
                 {"0.1", 0.1},
                 {"123456789012345678901234567890", 123456789012345678901234567890.0}}) {
            EXPECT_TRUE(read(text, value)) << text;
            EXPECT_EQ(value, expected) << text;
        }
        value = 5;
        for (const char *text : {"",    "-",    ".",   "-.",  "+1",   "--1", "1e", "1e+", "e1", ".e1",  "1.2.3",
                                 "1,5", "0x10", "inf", "nan", "-nan", " 1",  "1 ", "1d",  "1f", "1e5.0"})
            EXPECT_FALSE(read(text, value)) << text;
        EXPECT_EQ(value, 5);
    }
}

TEST(NumberText, ANumberEndsWithItsTextWhateverFollows)
{
    const std::string_view text = "1.2345";
    for (const auto read : {orlo::read_double, orlo::read_double_by_library}) {
        double value = 0;
        EXPECT_TRUE(read(text.substr(0, 4), value));
        EXPECT_EQ(value, 1.23);
    }
}

TEST(NumberText, BothReadersGiveTheDoubleThatWasPrinted)
{
    std::mt19937_64 random{20};
    for (int i = 0; i < 100'000; ++i) {
        const auto printed = std::bit_cast<double>(random());
        if (!std::isfinite(printed))
            continue;
        char text[32];
        std::snprintf(text, sizeof text, "%.17g", printed);
        double one   = 0;
        double other = 0;
        ASSERT_TRUE(orlo::read_double(text, one) && orlo::read_double_by_library(text, other)) << text;
        ASSERT_EQ(std::bit_cast<std::uint64_t>(one), std::bit_cast<std::uint64_t>(printed)) << text;
        ASSERT_EQ(std::bit_cast<std::uint64_t>(other), std::bit_cast<std::uint64_t>(printed)) << text;
    }
}

TEST(NumberText, ThreeThousandthsAreRightAlignedInEight) { EXPECT_EQ(real_text(1.5F, 8, 3), "   1.500"); }

TEST(NumberText, WholeNumbersAreRightAlignedAndMayBeWider)
{
    EXPECT_EQ(whole_text(-2, 5), "   -2");
    EXPECT_EQ(whole_text(1234567, 5), "1234567");
    EXPECT_EQ(whole_text(std::numeric_limits<std::int32_t>::min(), 0), "-2147483648");
}

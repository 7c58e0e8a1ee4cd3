#include "input/constants.h"

#include "support.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace orlo {
namespace {

using test::screen_of;

constexpr double INFINITE = std::numeric_limits<double>::infinity();

// the text of a number; its length must be told and stay within the limit
std::string text_of(double value)
{
    char text[2 * FTOA_SIZE];
    std::memset(text, '!', sizeof text);
    const std::size_t length = FtoA(text, value);
    EXPECT_LT(length, FTOA_SIZE) << value;
    EXPECT_EQ('\0', text[length]) << value;
    for (std::size_t i = length + 1; i < sizeof text; ++i)
        EXPECT_EQ('!', text[i]) << value;
    return text;
}

TEST(FtoA, HasThreeDecimals)
{
    EXPECT_EQ("0.000", text_of(0.0));
    EXPECT_EQ("5.000", text_of(5.0));
    EXPECT_EQ("2.500", text_of(2.5));
    EXPECT_EQ("10.025", text_of(10.025));
    EXPECT_EQ("1234567.125", text_of(1234567.125));
}

TEST(FtoA, NegativeNumbersHaveASign)
{
    EXPECT_EQ("-1.250", text_of(-1.25));
    EXPECT_EQ("-0.500", text_of(-0.5));
    EXPECT_EQ("-0.000", text_of(-0.0001));
    EXPECT_EQ("0.000", text_of(-0.0)); // not below 0
}

TEST(FtoA, TheFractionIsRoundedWithTiesUp)
{
    EXPECT_EQ("0.000", text_of(0.0004));
    EXPECT_EQ("0.001", text_of(0.0005));
    EXPECT_EQ("0.001", text_of(0.0014));
    EXPECT_EQ("0.002", text_of(0.0016));
    EXPECT_EQ("1.063", text_of(1.0625)); // 62.5
    EXPECT_EQ("-1.063", text_of(-1.0625));
}

TEST(FtoA, TheFractionHasLeadingZeros)
{
    EXPECT_EQ("7.001", text_of(7.001));
    EXPECT_EQ("7.010", text_of(7.01));
    EXPECT_EQ("7.100", text_of(7.1));
}

TEST(FtoA, AFractionRoundedToOneIsNotCarried)
{
    EXPECT_EQ("2.1000", text_of(2.9996));
    EXPECT_EQ("-0.1000", text_of(-0.9999));
    EXPECT_EQ("2.999", text_of(2.9994));
}

TEST(FtoA, TheWholePartIsTakenOffIn32Bits)
{
    EXPECT_EQ("16777216.000", text_of(16777216.0));
    EXPECT_EQ("16777217.1000", text_of(16777217.0)); // 16777216 in 32 bits
    EXPECT_EQ("1000000000000000.13008896000", text_of(1e15));
}

// the rule as it stands, beside the way that it is followed
TEST(FtoA, EveryThousandthIsRoundedToTheNearer)
{
    for (int i = 0; i <= 400000; ++i) {
        const double       value = i / 64000.0;
        const double       rest  = 1000.0 * (value - static_cast<int>(value));
        const double       down  = std::floor(rest);
        const double       up    = std::ceil(rest);
        const std::int64_t part  = static_cast<std::int64_t>(rest - down < up - rest ? down : up);
        const std::string  zeros(static_cast<std::size_t>(std::max(0, 3 - CountDigits(part))), '0');
        ASSERT_EQ(std::to_string(static_cast<int>(value)) + "." + zeros + std::to_string(part), text_of(value));
    }
}

TEST(FtoA, ANegativeFractionHasNoDigits) { EXPECT_EQ("33554431.000", text_of(33554431.0)); }

TEST(FtoA, WhatHasNoIntegerHasNoDigits)
{
    EXPECT_EQ(".000", text_of(INFINITE));
    EXPECT_EQ("-.000", text_of(-INFINITE));
    EXPECT_EQ(".000", text_of(std::numeric_limits<double>::quiet_NaN()));
    EXPECT_EQ(".000", text_of(1e30));
    EXPECT_EQ("-.000", text_of(-9223372036854775808.0));
}

TEST(FtoA, StaysShortForEveryMagnitude)
{
    for (double value = 1e-320; value < INFINITE; value *= 7.0) {
        EXPECT_GE(text_of(value).size(), 4U) << value;
        EXPECT_EQ('-', text_of(-value)[0]) << value;
    }
}

TEST(CountDigits, CountsDecimalDigits)
{
    EXPECT_EQ(1, CountDigits(0));
    EXPECT_EQ(1, CountDigits(1));
    EXPECT_EQ(1, CountDigits(9));
    EXPECT_EQ(2, CountDigits(10));
    EXPECT_EQ(3, CountDigits(999));
    EXPECT_EQ(4, CountDigits(1000));
    EXPECT_EQ(19, CountDigits(9223372036854775807));
}

TEST(CountDigits, OfANegativeNumberAreNone)
{
    EXPECT_EQ(0, CountDigits(-1));
    EXPECT_EQ(0, CountDigits(std::numeric_limits<std::int64_t>::min()));
}

TEST(PrintVar, ShowsNameAndValue)
{
    EXPECT_EQ("\n\tVAR width: \n\tVALUE:    2.50 ", screen_of([] { print_var("width", 2.5); }));
}

} // namespace
} // namespace orlo

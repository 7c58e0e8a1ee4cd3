#include "input/scanners.h"

#include "base/switches.h"
#include "support.h"

#include <cmath>
#include <limits>

namespace orlo {
namespace {

using test::line_of;
using test::wide;

// what a scanner made of a text
template <class Value> struct Scan {
    bool          result;
    Value         value; // 77 when nothing was stored
    std::uint32_t pos;
};

template <class Value> Scan<Value> scan(bool (*scanner)(Value &, Input &), std::string_view text, std::uint32_t pos = 0)
{
    Input in = line_of(text);
    in.pos   = pos;
    Scan<Value> scanned{false, Value{77}, 0};
    scanned.result = scanner(scanned.value, in);
    scanned.pos    = in.pos;
    return scanned;
}

// a number that ends at a position
template <class Value> void reads(bool (*scanner)(Value &, Input &), std::string_view text, Value value, std::uint32_t pos)
{
    const Scan<Value> scanned = scan(scanner, text);
    EXPECT_TRUE(scanned.result) << text;
    EXPECT_EQ(value, scanned.value) << text;
    EXPECT_EQ(pos, scanned.pos) << text;
}

// no number, with the position left somewhere
template <class Value> void refuses(bool (*scanner)(Value &, Input &), std::string_view text, std::uint32_t pos)
{
    const Scan<Value> scanned = scan(scanner, text);
    EXPECT_FALSE(scanned.result) << text;
    EXPECT_EQ(pos, scanned.pos) << text;
}

// digits that do not fit into any integer
std::string nines(std::size_t count) { return std::string(count, '9'); }

TEST(GetF, ReadsDigitsPointAndSign)
{
    reads(get_f, "5", 5.0F, 1);
    reads(get_f, "3.25", 3.25F, 4);
    reads(get_f, "-.5", -0.5F, 3);
    reads(get_f, "+2.5x", 2.5F, 4);
    reads(get_f, "007", 7.0F, 3);
}

TEST(GetF, SkipsBlanksBeforeTheNumberAlone)
{
    reads(get_f, " \t\v\f 12 ", 12.0F, 7);
    refuses(get_f, "- 5", 1);
    refuses(get_f, "+ .5", 1);
}

TEST(GetF, APointNeedsNoDigits)
{
    reads(get_f, "5.", 5.0F, 2);
    reads(get_f, ".", 0.0F, 1);
    reads(get_f, "-.", -0.0F, 2);
    reads(get_f, "..", 0.0F, 1);
    reads(get_f, "1.5.25", 1.5F, 3);
}

TEST(GetF, StopsAtTheFirstForeignCharacter)
{
    reads(get_f, "1e3", 1.0F, 1);
    reads(get_f, "0x10", 0.0F, 1);
    reads(get_f, "1,5", 1.0F, 1);
    reads(get_f, "1'000", 1.0F, 1);
    reads(get_f, "2-3", 2.0F, 1);
}

TEST(GetF, WithoutADigitOrPointItFailsThere)
{
    refuses(get_f, "", 0);
    refuses(get_f, "abc", 0);
    refuses(get_f, "   )", 3);
    refuses(get_f, "inf", 0);
    refuses(get_f, "nan", 0);
}

TEST(GetF, AfterASignItFailsJustPastIt)
{
    refuses(get_f, "-abc", 1);
    refuses(get_f, "+x", 1);
    refuses(get_f, "  -", 3);
    refuses(get_f, "--5", 1);
    refuses(get_f, "+-5", 1);
}

TEST(GetF, StartsAtThePosition)
{
    const Scan<float> scanned = scan(get_f, "p4 17 18", 5);
    EXPECT_EQ(18.0F, scanned.value);
    EXPECT_EQ(8U, scanned.pos);
}

TEST(GetF, TheSignComesLast) { EXPECT_TRUE(std::signbit(scan(get_f, "-0").value)); }

TEST(GetF, GathersAllDigitsIn32Bits)
{
    reads(get_f, "16777217", 16777216.0F, 8);
    reads(get_f, "1677721.75", 167772160.0F / 100.0F, 10); // the last digit is lost before the division
    reads(get_f, "0.123456789", 123456789.0F / 1e9F, 11);
}

TEST(GetDf, GathersAllDigitsIn64Bits)
{
    reads(get_df, "16777217", 16777217.0, 8);
    reads(get_df, "1677721.75", 1677721.75, 10);
    reads(get_df, "0.1", 0.1, 3);
    reads(get_df, "-12.125 ", -12.125, 7);
    refuses(get_df, "-x", 1);
    refuses(get_df, "+", 1);
    refuses(get_df, " y", 1);
}

// short numbers are gathered in another way than long ones
TEST(GetF, AnyLengthGathersDigitByDigit)
{
    for (std::size_t length = 1; length <= 24; ++length)
        for (std::size_t point = 0; point <= length; ++point) {
            std::string   text;
            float         sum        = 0.0F;
            double        double_sum = 0.0;
            std::uint32_t divisor    = 1;
            for (std::size_t i = 0; i < length; ++i) {
                if (i == point)
                    text += '.';
                const auto digit = static_cast<char>('9' - (i * 7) % 5);
                text += digit;
                sum        = sum * 10.0F + static_cast<float>(digit - '0');
                double_sum = double_sum * 10.0 + static_cast<double>(digit - '0');
                divisor *= i < point ? 1 : 10;
            }
            const auto divided_by = static_cast<std::int32_t>(divisor);
            reads(get_f, text, sum / static_cast<float>(divided_by), static_cast<std::uint32_t>(text.size()));
            reads(get_df, text, double_sum / static_cast<double>(divided_by), static_cast<std::uint32_t>(text.size()));
        }
}

TEST(GetDf, NineFractionDigitsAreRight) { reads(get_df, "1.000000001", 1.000000001, 11); }

TEST(GetDf, TheDivisorWrapsAroundIn32Bits)
{
    reads(get_df, "0.1234567890", 1234567890.0 / 1410065408.0, 12);     // 10^10
    reads(get_df, "0.12345678901", 12345678901.0 / 1215752192.0, 13);   // 10^11
    reads(get_df, "0.123456789012", 123456789012.0 / -727379968.0, 14); // 10^12
    reads(get_df, "-0.123456789012", 123456789012.0 / 727379968.0, 15);
}

TEST(GetF, TheDivisorWrapsAroundIn32Bits)
{
    reads(get_f, "0.5000000000", 5000000000.0F / 1410065408.0F, 12);
    reads(get_f, "0.500000000000", 5e11F / -727379968.0F, 14);
}

TEST(GetF, ADivisorOfZeroGivesZeroOrTheQuotient)
{
    const std::string zeros(32, '0'); // 10^32 is a multiple of 2^32
    reads(get_f, "0." + zeros, 0.0F, 34);
    reads(get_df, "0." + zeros, 0.0, 34);
    reads(get_df, "1." + zeros, std::numeric_limits<double>::infinity(), 34);
    reads(get_df, "-1." + zeros, -std::numeric_limits<double>::infinity(), 35);
    reads(get_df, "0." + std::string(30, '0') + "1", 1.0 / -2147483648.0, 33); // 10^31 leaves the top bit
}

TEST(GetF, ThousandsOfDigitsGiveInfinity)
{
    const std::string digits = nines(2000);
    reads(get_f, digits, std::numeric_limits<float>::infinity(), 2000);
    reads(get_df, digits + "x", std::numeric_limits<double>::infinity(), 2000);
    reads(get_f, "-" + digits, -std::numeric_limits<float>::infinity(), 2001);
    reads(get_f, "0." + digits, std::numeric_limits<float>::infinity(), 2002);
    reads(get_f, "0." + std::string(2000, '0'), 0.0F, 2002);
}

TEST(GetF, ALineFullOfDigitsEndsAtItsEnd) { reads(get_f, nines(2047), std::numeric_limits<float>::infinity(), 2047); }

TEST(GetI, ReachesBothLimits)
{
    reads(get_i, "32767", 32767, 5);
    reads(get_i, "-32768", -32768, 6);
    reads(get_i, "+32767", 32767, 6);
    reads(get_i, "0", 0, 1);
    reads(get_i, "-0", 0, 2);
    reads(get_i, "0000000000000000000000000007", 7, 28);
}

TEST(GetI, PastALimitItFailsOnTheFirstDigit)
{
    refuses(get_i, "32768", 0);
    refuses(get_i, "40000", 0);
    refuses(get_i, "-32769", 1);
    refuses(get_i, "  +32768", 3);
}

TEST(GetI, NoLengthBringsItBackIntoTheRange)
{
    refuses(get_i, "18446744073709551616", 0); // 2^64
    refuses(get_i, "18446744073709551623", 0);
    refuses(get_i, "-18446744073709551623", 1);
    refuses(get_i, "1" + std::string(2000, '0'), 0);
    refuses(get_i, nines(2047), 0);
}

TEST(GetI, ASignNeedsADigitAtOnce)
{
    refuses(get_i, "- 5", 1);
    refuses(get_i, "-.5", 1);
    refuses(get_i, "+", 1);
    refuses(get_i, ".5", 0);
    refuses(get_i, "x", 0);
    refuses(get_i, "", 0);
}

TEST(GetI, StopsBehindTheLastDigit)
{
    reads(get_i, " 12 ,", 12, 3);
    reads(get_i, "12.5", 12, 2);
}

TEST(GetUi, ReachesBothLimits)
{
    reads(get_ui, "0", 0U, 1);
    reads(get_ui, "65535", 65535U, 5);
    reads(get_ui, " +65535 ", 65535U, 7);
}

TEST(GetUi, PastTheLimitItFailsOnTheFirstDigit)
{
    refuses(get_ui, "65536", 0);
    refuses(get_ui, " +65536", 2);
    refuses(get_ui, "4294967297", 0);           // 2^32 + 1
    refuses(get_ui, "18446744073709551617", 0); // 2^64 + 1
    refuses(get_ui, nines(2047), 0);
}

TEST(GetUi, KnowsNoMinus)
{
    refuses(get_ui, "-1", 0);
    refuses(get_ui, "-0", 0);
    refuses(get_ui, "+-1", 1);
    refuses(get_ui, "+ 1", 1);
}

TEST(GetUli, WrapsAroundAt64Bits)
{
    reads(get_uli, "18446744073709551615", std::uint64_t{18446744073709551615U}, 20);
    reads(get_uli, "18446744073709551616", std::uint64_t{0}, 20);
    reads(get_uli, "18446744073709551623", std::uint64_t{7}, 20);
    reads(get_uli, "1" + std::string(2000, '0'), std::uint64_t{0}, 2001);
}

TEST(GetUli, SkipsBlanksBehindTheNumber)
{
    reads(get_uli, " 44100 \t )", std::uint64_t{44100}, 9);
    reads(get_uli, "+7", std::uint64_t{7}, 2);
}

TEST(GetUli, KnowsNoMinus)
{
    refuses(get_uli, "-1", 0);
    refuses(get_uli, "+", 1);
    refuses(get_uli, "  x", 2);
}

TEST(GetLi, WrapsAroundAt64Bits)
{
    reads(get_li, "9223372036854775807", std::int64_t{9223372036854775807}, 19);
    reads(get_li, "-9223372036854775808", std::numeric_limits<std::int64_t>::min(), 20);
    reads(get_li, "9223372036854775808", std::numeric_limits<std::int64_t>::min(), 19);
    reads(get_li, "-18446744073709551617", std::int64_t{-1}, 21);
    reads(get_li, nines(2047), std::int64_t{-1}, 2047);
}

TEST(GetLi, SkipsBlanksBehindTheNumber) { reads(get_li, "-5  ;", std::int64_t{-5}, 4); }

TEST(GetLi, ASignNeedsADigitAtOnce)
{
    refuses(get_li, "- 5", 1);
    refuses(get_li, "+x", 1);
    refuses(get_li, "x", 0);
}

TEST(GetDb, GivesATruncatedAmplitude)
{
    reads(get_db, "0", 1.0F, 1);
    reads(get_db, "90", 31622.0F, 2);
    reads(get_db, "96", 63095.0F, 2);
}

TEST(GetDb, DropsTheFractionOfADecibel)
{
    reads(get_db, "90.9", 31622.0F, 4);
    reads(get_db, "0.999", 1.0F, 5);
    reads(get_db, "96.0", 63095.0F, 4);
}

TEST(GetDb, OutOfRangeItFailsJustBehindTheNumber)
{
    refuses(get_db, "96.001", 6);
    refuses(get_db, "97 ", 2);
    refuses(get_db, "-0.1)", 4);
    refuses(get_db, nines(2000), 2000);
    refuses(get_db, "x", 0);
}

class GetOctPc : public testing::Test {
  protected:
    void SetUp() override { reset_switches(); }
    void TearDown() override { reset_switches(); }

    static void reads_near(std::string_view text, double value, std::uint32_t pos)
    {
        const Scan<float> scanned = scan(get_oct_pc, text);
        EXPECT_TRUE(scanned.result) << text;
        EXPECT_NEAR(value, wide(scanned.value), 1e-4) << text;
        EXPECT_EQ(pos, scanned.pos) << text;
    }
};

TEST_F(GetOctPc, CountsSemitonesAboveOctaveFour)
{
    reads_near("8.00", 48.0, 4);
    reads_near("8.07", 55.0, 4);
    reads_near("4.00", 0.0, 4);
    reads_near("3.11", -1.0, 4);
    reads_near("0.00", -48.0, 4);
    reads_near(" +8.005 ", 48.5, 7);
}

TEST_F(GetOctPc, OneFractionDigitIsTens) { reads_near("8.1", 58.0, 3); }

TEST_F(GetOctPc, ThePointNeedsNoDigits) { reads_near("8.x", 48.0, 2); }

TEST_F(GetOctPc, ANegativeOctaveGivesTheNegatedResult)
{
    reads_near("-8.07", -55.0, 5);
    reads_near("-5.00", -12.0, 5);
}

TEST_F(GetOctPc, ForMidiItIsAnOctaveHigher)
{
    MKMIDI = true;
    reads_near("8.07", 67.0, 4);
    reads_near("4.00", 12.0, 4);
}

TEST_F(GetOctPc, ForMidiANegativeOctaveLosesItsSign)
{
    MKMIDI = true;
    reads_near("-8.07", 67.0, 5);
}

TEST_F(GetOctPc, ThePointFollowsTheOctaveAtOnce)
{
    refuses(get_oct_pc, "8", 1);
    refuses(get_oct_pc, "8 .07", 1);
    refuses(get_oct_pc, ".07", 0);
    refuses(get_oct_pc, "-.07", 1);
    refuses(get_oct_pc, "x", 0);
}

TEST_F(GetOctPc, TheOctaveHas16Bits)
{
    refuses(get_oct_pc, "32768.00", 0);
    refuses(get_oct_pc, nines(2000) + ".00", 0);
    reads_near("32767.00", 32767.0 * 12 - 48, 8);
}

TEST(IsLastVariable, IsEitherZ)
{
    EXPECT_TRUE(is_last_variable(line_of("z")));
    EXPECT_TRUE(is_last_variable(line_of("Z 5")));
    EXPECT_FALSE(is_last_variable(line_of(" z")));
    EXPECT_FALSE(is_last_variable(line_of("y")));
    EXPECT_FALSE(is_last_variable(line_of("")));
}

} // namespace
} // namespace orlo

#include "words/curve_letters.h"

#include "diag/messages.h"
#include "support.h"

namespace orlo {
namespace {

using test::line_of;

struct Specifier {
    int           result;
    float         curve;
    float         exponent;
    std::uint32_t pos;
};

Specifier read(std::string_view text, bool time_allowed = false)
{
    Input     in = line_of(text);
    Specifier s{0, -1.0F, -1.0F, 0};
    s.result = get_curve_type(in, s.curve, s.exponent, time_allowed);
    s.pos    = in.pos;
    return s;
}

void gives(std::string_view text, float curve, float exponent, std::uint32_t pos, bool time_allowed = false)
{
    const Specifier s = read(text, time_allowed);
    EXPECT_EQ(OK, s.result) << text;
    EXPECT_EQ(curve, s.curve) << text;
    EXPECT_EQ(exponent, s.exponent) << text;
    EXPECT_EQ(pos, s.pos) << text;
}

TEST(CurveType, HasALetterOfEitherCase)
{
    gives("f", 0.0F, 1.0F, 1);
    gives("e", 1.0F, 1.0F, 1);
    gives("l", 2.0F, 1.0F, 1);
    gives("s", 4.0F, 1.0F, 1);
    gives("c", 5.0F, 1.0F, 1);
    gives("F", 0.0F, 1.0F, 1);
    gives("E", 1.0F, 1.0F, 1);
    gives("L", 2.0F, 1.0F, 1);
    gives("S", 4.0F, 1.0F, 1);
    gives("C", 5.0F, 1.0F, 1);
}

TEST(CurveType, VHasAnExponent)
{
    gives("v2.5", 3.0F, 2.5F, 4);
    gives("V2.5)", 3.0F, 2.5F, 4);
    gives("v .5 3", 3.0F, 0.5F, 5);
    gives("v0.001", 3.0F, 1.0F / 1000.0F, 6);
}

TEST(CurveType, AnExponentIsAboveZero)
{
    for (const char *text : {"v0", "v-2", "v-0.001", "v", "vx", "v)", "v."})
        EXPECT_EQ(BAD_CURVE, read(text).result) << text;
    EXPECT_EQ(2U, read("v0 5").pos);
    EXPECT_EQ(3U, read("v-2 5").pos);
    EXPECT_EQ(1U, read("vx").pos);
}

TEST(CurveType, AnyOtherCharacterIsTheStraightLineAndStays)
{
    gives("x", 0.0F, 1.0F, 0);
    gives("5", 0.0F, 1.0F, 0);
    gives(")", 0.0F, 1.0F, 0);
    gives("", 0.0F, 1.0F, 0);
}

TEST(CurveType, BlanksBehindTheLetterAreSkipped)
{
    gives("e  5", 1.0F, 1.0F, 3);
    gives("e  ", 1.0F, 1.0F, 3);
    gives("  e", 0.0F, 1.0F, 2);
}

TEST(CurveType, AStarFollowsTheBeat)
{
    gives("e*", 101.0F, 1.0F, 2, true);
    gives("v2 *5", 103.0F, 2.0F, 4, true);
    gives("*", 100.0F, 1.0F, 1, true);
    gives("c\t* ", 105.0F, 1.0F, 3, true);
    gives("e", 1.0F, 1.0F, 1, true);
}

TEST(CurveType, AStarIsRefusedWhereThereIsNoTime)
{
    for (const char *text : {"e*", "*", "s  *"})
        EXPECT_EQ(BEAT_CURVE_NOT_HERE, read(text, false).result) << text;
    EXPECT_EQ(1U, read("e*").pos);
    EXPECT_EQ(3U, read("s  *").pos);
}

} // namespace
} // namespace orlo

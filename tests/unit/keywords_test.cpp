#include "words/keywords.h"

#include "base/conversions.h"
#include "diag/messages.h"
#include "events/block.h"
#include "events/pfields.h"
#include "events/section.h"
#include "lang/pfield.h"
#include "support.h"
#include "words/values.h"

namespace orlo {
namespace {

using test::line_of;

class Keywords : public testing::Test {
  protected:
    void SetUp() override { reset(); }
    void TearDown() override { reset(); }

    static void reset()
    {
        reset_block();
        reset_pfields();
        reset_conversions();
    }

    // reads a keyword: its code, and the position behind it
    static void reads(const char *text, std::int32_t code, std::uint32_t pos)
    {
        Input        in   = line_of(text);
        std::int32_t read = -1;
        EXPECT_TRUE(get_command(read, in)) << text;
        EXPECT_EQ(code, read) << text;
        EXPECT_EQ(pos, in.pos) << text;
    }

    static void refuses(const char *text)
    {
        Input        in   = line_of(text);
        std::int32_t code = -1;
        EXPECT_FALSE(get_command(code, in)) << text;
    }
};

TEST_F(Keywords, HaveTheirCodes)
{
    reads("ex", CMD_EX, 2);
    reads("te", CMD_TE, 2);
    reads("db", TYPE_DB, 2);
    reads("dv", CMD_DV, 2);
    reads("hz", TYPE_HZ, 2);
    reads("ho", CMD_HO, 2);
    reads("in", TYPE_IN, 2);
    reads("mo", CMD_MO, 2);
    reads("se", CMD_SE, 2);
    reads("no", TYPE_NO, 2);
    reads("op", TYPE_OP, 2);
    reads("pf", CMD_PF, 2);
    reads("od", TYPE_OD, 2);
    reads("re", TYPE_RE, 2);
    reads("rh", TYPE_RH, 2);
    reads("ra", CMD_RA, 2);
    reads("rd", CMD_RD, 2);
    reads("rs", CMD_RS, 2);
    reads("rw", CMD_RW, 2);
    reads("ms", CMD_MS, 2);
    reads("xx", TYPE_XX, 2);
    reads("s2", CMD_S2, 2);
    reads("tr", TYPE_TR, 2);
    reads("bn", TYPE_BN, 2);
    reads("sr", CMD_SR, 2);
}

TEST_F(Keywords, MayBeCapital)
{
    reads("MO(", CMD_MO, 2);
    reads("sE", CMD_SE, 2);
}

TEST_F(Keywords, AMarkIsOneCharacter)
{
    reads(">x", CMD_DIRECT, 1);
    reads("#define", CMD_DIRECTIVE, 1);
    reads("#const", CMD_CONSTANT, 1);
    reads("#Const", CMD_CONSTANT, 1);
    reads("$define", CMD_DIRECTIVE, 1);
    reads("$const", CMD_CONSTANT, 1);
}

TEST_F(Keywords, AnotherSecondLetterMovesNothing)
{
    reads("mx", -1, 0);
    reads("Rz", -1, 0);
}

TEST_F(Keywords, AnotherFirstLetterIsNone)
{
    refuses("zz");
    refuses("1");
    refuses("");
}

TEST_F(Keywords, XBehindAPitchTypeIsTaken)
{
    reads("nox", TYPE_NO, 3);
    EXPECT_TRUE(NX);
    reads("no", TYPE_NO, 2);
    EXPECT_FALSE(NX);
    reads("opx", TYPE_OP, 3);
    EXPECT_TRUE(NX);
}

TEST_F(Keywords, ADigitBehindATypeGoesToItsPField)
{
    ASSERT_TRUE(make_pfield_record(5));
    MAX_PFIELDS = 5;
    P_NO        = 5;
    reads("re7", TYPE_RE, 3);
    EXPECT_EQ(7, RE_FW[3]);
    reads("bn6", TYPE_BN, 3);
    EXPECT_EQ(6, FFT_SZ[3]);
    P_NO = 2;
    reads("re0", TYPE_RE, 3);
    EXPECT_EQ(0, RE_FW[0]);
    EXPECT_EQ(7, RE_FW[3]);
}

TEST_F(Keywords, WithoutADigitBnTakesItsOwnAndReNone)
{
    ASSERT_TRUE(make_pfield_record(4));
    MAX_PFIELDS = 4;
    P_NO        = 4;
    RE_FW[2]    = 5;
    reads("re", TYPE_RE, 2);
    EXPECT_EQ(5, RE_FW[2]);
    reads("bn", TYPE_BN, 2);
    EXPECT_EQ(FFT_SZ_DEFAULT, FFT_SZ[2]);
}

TEST_F(Keywords, ADigitAboveSevenIsRefused)
{
    refuses("re8");
    refuses("bn8");
    refuses("re99999");
}

TEST_F(Keywords, ADigitWithoutAPFieldGoesNowhere)
{
    reads("re3", TYPE_RE, 3); // no record
    ASSERT_TRUE(make_pfield_record(3));
    MAX_PFIELDS = 3;
    for (const std::int32_t number : {1, 4}) {
        P_NO = number;
        reads("re3", TYPE_RE, 3);
        EXPECT_EQ(0, RE_FW[0]);
        EXPECT_EQ(0, RE_FW[1]);
    }
}

TEST_F(Keywords, HaveTheirPlaces)
{
    EXPECT_TRUE(is_command(line_of("ra")));
    EXPECT_TRUE(is_command(line_of("#")));
    EXPECT_FALSE(is_command(line_of("od")));
    EXPECT_TRUE(is_out_type(line_of("od")));
    EXPECT_FALSE(is_out_type(line_of("ra")));
    EXPECT_TRUE(is_gcommand(line_of("te")));
    EXPECT_TRUE(is_gcommand(line_of(">")));
    EXPECT_TRUE(is_gcommand(line_of("#")));
    EXPECT_FALSE(is_gcommand(line_of("ra")));
    EXPECT_TRUE(is_input_code(TYPE_RH));
    EXPECT_FALSE(is_input_code(CMD_RA));
    EXPECT_TRUE(is_pfield(line_of("p4")));
    EXPECT_FALSE(is_pfield(line_of("px")));
    EXPECT_FALSE(is_pfield(line_of("x4")));
}

TEST_F(Keywords, ATypeOfOutputIsNoneOfInput)
{
    IN_TYPE     = TYPE_HZ;
    Input in    = line_of("1");
    float value = 5.0F;
    EXPECT_FALSE(get_input_type(value, in));
    EXPECT_EQ(0U, in.pos);
    EXPECT_FALSE(in_limits('1'));
}

} // namespace
} // namespace orlo

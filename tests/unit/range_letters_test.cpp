#include "words/range_letters.h"

#include "support.h"

namespace orlo {
namespace {

using test::line_of;

TEST(RangeLetter, ChoosesADistributionInEitherCase)
{
    for (const RangeLetter &row : range_letters) {
        const char small[]   = {row.letter, '1'};
        const char capital[] = {static_cast<char>(row.letter - 'a' + 'A'), '1'};
        for (const char *text : {small, capital}) {
            Input in = line_of({text, 2});
            EXPECT_TRUE(is_rrange_type(*text)) << *text;
            EXPECT_EQ(static_cast<int>(row.range), get_rrange_type(in)) << *text;
            EXPECT_EQ(1U, in.pos) << *text;
        }
    }
}

TEST(RangeLetter, IsUniformWithoutOne)
{
    for (const char *text : {"1", "z", " g", ""}) {
        Input in = line_of(text);
        EXPECT_FALSE(is_rrange_type(*text)) << text;
        EXPECT_EQ(static_cast<int>(Range::uniform), get_rrange_type(in)) << text;
        EXPECT_EQ(0U, in.pos) << text;
    }
}

} // namespace
} // namespace orlo

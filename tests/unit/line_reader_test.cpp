#include "input/line_reader.h"

#include "support.h"

namespace orlo {
namespace {

using test::line_of;

TEST(GetC, TakesTheCharacterAtThePosition)
{
    Input in = line_of("p4");
    EXPECT_EQ('p', get_c(in));
    EXPECT_EQ('4', peek(in));
    EXPECT_EQ('4', get_c(in));
    EXPECT_EQ(2U, in.pos);
}

TEST(GetC, MovesPastTheEndOfTheLine)
{
    Input in = line_of("");
    EXPECT_EQ('\0', get_c(in));
    EXPECT_EQ(1U, in.pos);
}

} // namespace
} // namespace orlo

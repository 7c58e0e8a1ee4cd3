#include "input/equations.h"

#include "diag/messages.h"
#include "support.h"

namespace orlo {
namespace {

using test::line_of;

TEST(Equation, MayHaveALineEndBetweenItems)
{
    Input  in    = line_of("[1\n+\n2]");
    double value = 0.0;
    EXPECT_EQ(OK, parse_vequation(value, in));
    EXPECT_EQ(3.0, value);
}

TEST(Equation, MayHaveNoVerticalTabBetweenItems)
{
    Input  in    = line_of("[1\v+ 2]");
    double value = 0.0;
    EXPECT_EQ(BAD_EQUATION_CHAR, parse_vequation(value, in));
}

} // namespace
} // namespace orlo

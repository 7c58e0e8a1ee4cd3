#include "input/macros.h"

#include "support.h"

namespace orlo {
namespace {

using test::screen_of;

TEST(PrintMacro, ShowsNameParametersAndBody)
{
    EXPECT_EQ("\n\tMACRO pat: \n\t\tARG 0: a\n\t\tARG 1: b\n\tBODY: $b $a ", screen_of([] {
                  print_macro({"pat", {"a", "b"}, "$b $a"});
              }));
}

TEST(PrintMacro, WithoutParametersShowsNone)
{
    EXPECT_EQ("\n\tMACRO two: \n\tBODY: 2 ", screen_of([] { print_macro({"two", {}, "2"}); }));
}

TEST(PrintMacro, KeepsTheLineEndsOfTheBody)
{
    EXPECT_EQ("\n\tMACRO m: \n\tBODY: 1\n%d 2 ", screen_of([] { print_macro({"m", {}, "1\n%d 2"}); }));
}

} // namespace
} // namespace orlo

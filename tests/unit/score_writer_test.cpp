#include "output/score_writer.h"

#include "support.h"

namespace orlo {
namespace {

using test::file_of;
using test::screen_of;

TEST(PrintCsound, WritesNothingOfAnEmptyList)
{
    Event *list = nullptr;
    EXPECT_EQ("", screen_of([&] { EXPECT_EQ("", file_of([&](std::FILE *file) { EXPECT_FALSE(print_csound(list, file, 3)); })); }));
}

} // namespace
} // namespace orlo

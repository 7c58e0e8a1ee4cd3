#include "input/include_pass.h"

#include "diag/messages.h"
#include "support.h"

namespace orlo {
namespace {

using test::file_of;
using test::screen_of;

// what is made of an input; included files go to the screen's messages
std::string combined(const std::string &input)
{
    std::string result;
    static_cast<void>(file_of([&](std::FILE *in) {
        ASSERT_EQ(input.size(), std::fwrite(input.data(), 1, input.size(), in));
        std::rewind(in);
        result = file_of([&](std::FILE *out) {
            std::uint32_t calls = 0;
            EXPECT_EQ(OK, parse_includes(in, out, calls));
        });
    }));
    return result;
}

// the input is read in blocks of 16384 bytes; a directive is found wherever it lies between two of them
TEST(IncludePass, FindsADirectiveBetweenTwoBlocks)
{
    const std::string directive = "#include |/dev/null|";
    for (std::size_t place = 16384 - directive.size() - 1; place <= 16385; ++place) {
        const std::string before(place, ' ');
        const std::string screen = screen_of([&] { EXPECT_EQ(before + "\nafter", combined(before + directive + "\nafter")); });
        EXPECT_EQ("\n\tOpening include file \"/dev/null\"...", screen) << place;
    }
}

TEST(IncludePass, FindsNoDirectiveInACommentThatOpensBetweenTwoBlocks)
{
    for (std::size_t place = 16380; place <= 16385; ++place) {
        const std::string text = std::string(place, ' ') + "/* #include |/dev/null| */";
        EXPECT_EQ("", screen_of([&] { EXPECT_EQ(text, combined(text)); })) << place;
    }
}

} // namespace
} // namespace orlo

#include "base/visible_text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using orlo::margin_under;
using orlo::visible_text;
using namespace std::string_literals;

const std::string UNKNOWN = "\uFFFD";

TEST(VisibleText, KeepsWhatPrints)
{
    const std::string text = "p4(op) ~ \u00A0\u00E9\u0660\u266F\u4E2D\U0001F3B5";
    EXPECT_EQ(text, visible_text(text));
    EXPECT_EQ("", visible_text(""));
}

TEST(VisibleText, ShowsControlCharactersAsTheirPictures)
{
    EXPECT_EQ("\u2400\u2407\u2409\u240A\u240D\u241B[2J\u241F\u2421", visible_text("\0\a\t\n\r\x1b[2J\x1f\x7f"s));
}

TEST(VisibleText, LetsLayoutThrough)
{
    EXPECT_EQ("a\n\tb\u240D", visible_text("a\n\tb\r", "\n\t"));
    EXPECT_EQ("\n\u2409", visible_text("\n\t", "\n"));
}

TEST(VisibleText, ReplacesTheSecondSetOfControlCharacters)
{
    EXPECT_EQ("\u007E" + UNKNOWN + UNKNOWN + UNKNOWN + "\u00A0", visible_text("\x7e\xc2\x80\xc2\x9b\xc2\x9f\xc2\xa0"));
    EXPECT_EQ(UNKNOWN + "2J", visible_text("\x9b"
                                           "2J")); // as one byte
}

TEST(VisibleText, ReplacesWhatSetsTheDirection)
{
    for (const char *character : {"\u061C", "\u200E", "\u200F", "\u202A", "\u202C", "\u202E", "\u2066", "\u2068", "\u2069"})
        EXPECT_EQ("a" + UNKNOWN + "b", visible_text("a"s + character + "b"));
    for (const char *character : {"\u061B", "\u061D", "\u200D", "\u2010", "\u2029", "\u202F", "\u2065", "\u206A"})
        EXPECT_EQ("a"s + character + "b", visible_text("a"s + character + "b"));
}

TEST(VisibleText, ReplacesEachByteThatIsNoUtf8)
{
    EXPECT_EQ(UNKNOWN, visible_text("\xff"));
    EXPECT_EQ(UNKNOWN + UNKNOWN, visible_text("\xc0\x9b"));               // overlong
    EXPECT_EQ(UNKNOWN + UNKNOWN + UNKNOWN, visible_text("\xed\xa0\x80")); // a surrogate
    EXPECT_EQ(UNKNOWN + UNKNOWN, visible_text("\xe2\x80"));               // cut off
    EXPECT_EQ(UNKNOWN + "a", visible_text("\xc3"
                                          "a"));
}

TEST(MarginUnder, CountsWhatIsShown)
{
    const std::string line = "a\xc3\xa9\x1b\xff\te";
    EXPECT_EQ("", margin_under(line, 0));
    EXPECT_EQ(" ", margin_under(line, 1));
    EXPECT_EQ(" ", margin_under(line, 2)); // inside of a character: where that begins
    EXPECT_EQ("  ", margin_under(line, 3));
    EXPECT_EQ("    ", margin_under(line, 5));
    EXPECT_EQ("    \t", margin_under(line, 6));
    EXPECT_EQ("    \t ", margin_under(line, 7));
    EXPECT_EQ("    \t ", margin_under(line, 100));
    EXPECT_EQ("", margin_under("", 1));
}

} // namespace

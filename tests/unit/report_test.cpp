#include "diag/report.h"

#include "base/switches.h"
#include "diag/messages.h"
#include "support.h"

#include <cstdlib>
#include <fcntl.h>
#include <limits>
#include <termios.h>
#include <unistd.h>

namespace orlo {
namespace {

using test::file_of;
using test::screen_of;

class Report : public testing::Test {
  protected:
    void SetUp() override { reset(); }
    void TearDown() override { reset(); }

    static void reset()
    {
        reset_switches();
        reset_report();
    }

    // the log of a call, whose screen must show the same
    template <class Call> static std::string log_of(Call call)
    {
        std::string screen;
        std::string log = file_of([&](std::FILE *file) {
            MKLOG  = true;
            fllog  = file;
            screen = screen_of(call);
        });
        reset();
        EXPECT_EQ(screen, log);
        return log;
    }

    static std::string buff_of(const char *line, unsigned column)
    {
        return file_of([&](std::FILE *file) { put_buff(file, line, column); });
    }
};

TEST_F(Report, TwoPercentSignsPrintOne)
{
    EXPECT_EQ("100%", screen_of([] { Mprintf("100%%"); }));
    EXPECT_EQ("%7%", screen_of([] { Mprintf("%%%d%%", 7); }));
}

TEST_F(Report, RealsHaveWidthSevenAndTwoDecimals)
{
    EXPECT_EQ("[   3.14]", screen_of([] { Mprintf("[%f]", 3.14159); }));
    EXPECT_EQ("[  -0.50]", screen_of([] { Mprintf("[%f]", -0.5F); }));
    EXPECT_EQ("[123456789.00]", screen_of([] { Mprintf("[%f]", 123456789.0); }));
}

TEST_F(Report, WhatIsNoNumberIsPrintedOneWay)
{
    EXPECT_EQ("[   -nan]", screen_of([] { Mprintf("[%f]", std::numeric_limits<double>::quiet_NaN()); }));
    EXPECT_EQ("[   -nan]", screen_of([] { Mprintf("[%f]", -std::numeric_limits<double>::quiet_NaN()); }));
    EXPECT_EQ("[   -nan]", screen_of([] { Mprintf("[%f]", std::numeric_limits<float>::quiet_NaN()); }));
}

TEST_F(Report, TheLongestRealIsPrintedWhole)
{
    const std::string text = screen_of([] { Mprintf("%f", std::numeric_limits<double>::max()); });
    EXPECT_EQ(309U + 3U, text.size());
    EXPECT_EQ("179769313486231570", text.substr(0, 18));
    EXPECT_EQ(".00", text.substr(309));
}

TEST_F(Report, WholeNumbersOfAnySizePrintPlainly)
{
    EXPECT_EQ("0 -12 9223372036854775807", screen_of([] { Mprintf("%d %d %d", 0, -12, std::numeric_limits<long>::max()); }));
    EXPECT_EQ("4294967295", screen_of([] { Mprintf("%d", 4294967295U); }));
}

TEST_F(Report, CharactersAndStringsAreCopied)
{
    EXPECT_EQ("<x> <two words> <>", screen_of([] { Mprintf("<%c> <%s> <%s>", 'x', "two words", ""); }));
}

TEST_F(Report, AStringIsNoFormat)
{
    EXPECT_EQ("%d%%", screen_of([] { Mprintf("%s", "%d%%"); }));
}

TEST_F(Report, AWidthIsPlainText)
{
    EXPECT_EQ("5d", screen_of([] { Mprintf("%5d"); }));
    EXPECT_EQ("5d 42", screen_of([] { Mprintf("%5d %d", 42); }));
    EXPECT_EQ(".3f", screen_of([] { Mprintf("%.3f"); }));
}

TEST_F(Report, AnUnknownConversionStandsForItselfAndTakesNoArgument)
{
    EXPECT_EQ("u x ld 7", screen_of([] { Mprintf("%u %x %ld %d", 7); }));
}

TEST_F(Report, APercentSignAtTheEndPrintsNothing)
{
    EXPECT_EQ("end", screen_of([] { Mprintf("end%"); }));
}

TEST_F(Report, TextOfAnyLengthArrivesWhole)
{
    for (const std::size_t length : {1023U, 1024U, 1025U, 2047U, 2048U, 5000U}) {
        std::string text;
        for (std::size_t i = 0; i < length; ++i)
            text.push_back(static_cast<char>('a' + i % 26));
        EXPECT_EQ(text + "|" + text, screen_of([&] { Mprintf("%s|%s", text.c_str(), text.c_str()); })) << length;
        EXPECT_EQ(text, screen_of([&] { Mprintf(text.c_str()); })) << length;
    }
}

TEST_F(Report, TheLogGetsEveryCharacterOfTheScreen)
{
    EXPECT_EQ("a   1.50 b 2 c x %\n", log_of([] { Mprintf("a%f b %d %s %c %%\n", 1.5, 2, "c", 'x'); }));
}

TEST_F(Report, TheLogGetsLongTextToo)
{
    const std::string text(5000, 'y');
    EXPECT_EQ(text, log_of([&] { Mprintf("%s", text.c_str()); }));
}

TEST_F(Report, AnOpenLogGetsNothingWithoutItsFlag)
{
    std::string screen;
    EXPECT_EQ("", file_of([&](std::FILE *file) {
                  fllog  = file;
                  screen = screen_of([] {
                      Mprintf("seen");
                      error_no(OUT_OF_MEMORY, 1, "x", 0);
                  });
              }));
    EXPECT_NE("", screen);
}

TEST_F(Report, TheCaretStandsUnderTheColumn)
{
    EXPECT_EQ("p4 xy\n^\n", buff_of("p4 xy", 0));
    EXPECT_EQ("p4 xy\n   ^\n", buff_of("p4 xy", 3));
    EXPECT_EQ("p4 xy\n    ^\n", buff_of("p4 xy", 4));
}

TEST_F(Report, TabsBeforeTheCaretStayTabs)
{
    EXPECT_EQ("\tp4\tx\n\t  \t^\n", buff_of("\tp4\tx", 4));
    EXPECT_EQ("\tp4\tx\n^\n", buff_of("\tp4\tx", 0)); // a tab at the column itself gets the caret
}

TEST_F(Report, ALineEndInsideTheLineIsShownAsL)
{
    EXPECT_EQ("oneLtwo\n     ^\n", buff_of("one\ntwo", 5));
    EXPECT_EQ("L\n^\n", buff_of("\n", 0));
}

TEST_F(Report, AColumnPastTheEndGivesBlanksWithoutACaret)
{
    EXPECT_EQ("p4\n  \n", buff_of("p4", 2));
    EXPECT_EQ("p4\n  \n", buff_of("p4", 3));
    EXPECT_EQ("a\tb\n \t \n", buff_of("a\tb", 4294967295U));
}

TEST_F(Report, AnEmptyLineGivesTwoLineEnds)
{
    EXPECT_EQ("\n\n", buff_of("", 0));
    EXPECT_EQ("\n\n", buff_of("", 9));
}

TEST_F(Report, ALongLineArrivesWhole)
{
    const std::string line(2047, 'z');
    EXPECT_EQ(line + "\n" + std::string(2000, ' ') + "^\n", buff_of(line.c_str(), 2000));
}

TEST_F(Report, AnErrorShowsItsLineAndTheCaret)
{
    EXPECT_EQ("\n\nERROR: Line 12: Yikes, out of memory!\np4 xy\n    ^\n", screen_of([] { error_no(32, 12, "p4 xy", 4); }));
}

TEST_F(Report, TheErrorOfAConstantWithoutMemoryShowsItsLine)
{
    EXPECT_EQ("\n\nERROR: Line 3: Yikes, not enough memory to allocate constant!\n#const a 1\n          \n",
              screen_of([] { error_no(102, 3, "#const a 1", 10); }));
}

TEST_F(Report, TheErrorOfTheTemporaryFileIsShort)
{
    EXPECT_EQ("\nERROR: Ouch! Can't open the temporary file (huh?).\n\n", screen_of([] { error_no(9, 7, "p4", 1); }));
}

TEST_F(Report, ShortErrorsShowNoLine)
{
    EXPECT_EQ("\nERROR: Comments seemed to be mismatched... reached EOF.\n\n", screen_of([] { error_no(3, 7, "p4", 1); }));
    EXPECT_EQ("\nERROR: P-fields don't match i-block header!\n\n", screen_of([] { error_no(4, 7, "p4", 1); }));
    EXPECT_EQ("\nERROR: Reached end-of-file before \"}\" was found.\n\n", screen_of([] { error_no(5, 7, "p4", 1); }));
    EXPECT_EQ("\nERROR: EOF reached: missing macro body end (#).\n\n", screen_of([] { error_no(8, 7, "p4", 1); }));
}

TEST_F(Report, ErrorsUpToNineWithoutATextAreShort)
{
    for (const int number : {-2147483647, -1, 0, 1, 2, 6, 7})
        EXPECT_EQ("\nERROR: Unspecified error...\n\n", screen_of([&] { error_no(number, 7, "p4", 1); })) << number;
}

TEST_F(Report, ErrorsAboveNineWithoutATextShowTheirLine)
{
    for (const int number : {66, 104, 998, 1001, 2000, 2147483647})
        EXPECT_EQ("\n\nERROR: Line 7: Unspecified error...\np4\n ^\n", screen_of([&] { error_no(number, 7, "p4", 1); })) << number;
}

TEST_F(Report, AFullyReportedErrorPrintsNothing)
{
    EXPECT_EQ("", screen_of([] { error_no(999, 7, "p4", 1); }));
    EXPECT_EQ("", log_of([] { error_no(999, 7, "p4", 1); }));
}

TEST_F(Report, AnErrorWhoseTextIsReportedShowsLineAndCaretAlone)
{
    EXPECT_EQ("p4\n ^\n", screen_of([] { error_no(1000, 7, "p4", 1); }));
}

TEST_F(Report, TheLogShowsErrorsWithTheirLine)
{
    EXPECT_EQ("\n\nERROR: Line 9: Invalid command.\np4\n^\n", log_of([] { error_no(20, 9, "p4", 0); }));
    EXPECT_EQ("p4\n^\n", log_of([] { error_no(1000, 9, "p4", 0); }));
    EXPECT_EQ("\nERROR: P-fields don't match i-block header!\n\n", log_of([] { error_no(4, 9, "p4", 0); }));
}

TEST_F(Report, LineNumbersOf64BitsAreShown)
{
    EXPECT_EQ("\n\nERROR: Line 5000000000: Invalid command.\n\n\n", screen_of([] { error_no(20, 5000000000UL, "", 0); }));
}

TEST_F(Report, ShortWarningsEndWithoutALineEnd)
{
    EXPECT_EQ("\nWARNING: P3 Duration < 0! (Event turned into rest...)", screen_of([] { warning_no(1, 7, "p3", 1); }));
    EXPECT_EQ("\nWARNING: I-block skipped! (i-no < 0)", screen_of([] { warning_no(2, 7, "p3", 1); }));
}

TEST_F(Report, WarningsUpToNineWithoutATextAreShort)
{
    for (const int number : {-1, 0, 3, 9})
        EXPECT_EQ("\nWARNING: Unspecified warning...", screen_of([&] { warning_no(number, 7, "p3", 1); })) << number;
}

TEST_F(Report, WarningsAboveNineShowTheirLine)
{
    EXPECT_EQ("\n\nWARNING: Line 7: Previous loop terminated.\np3\n ^\n", screen_of([] { warning_no(15, 7, "p3", 1); }));
    for (const int number : {13, 16, 18, 27, 29, 36, 1000})
        EXPECT_EQ("\n\nWARNING: Line 7: Unspecified warning...\np3\n ^\n", screen_of([&] { warning_no(number, 7, "p3", 1); }))
            << number;
}

TEST_F(Report, TheLogShowsWarningsWithTheirLine)
{
    EXPECT_EQ("\n\nWARNING: Line 7: Unspecified warning...\np3\n ^\n", log_of([] { warning_no(13, 7, "p3", 1); }));
    EXPECT_EQ("\nWARNING: I-block skipped! (i-no < 0)", log_of([] { warning_no(2, 7, "p3", 1); }));
}

TEST_F(Report, SuppressedWarningsOfAnyNumberAreSilent)
{
    SUPRESS = true;
    for (int number = -1; number <= 40; ++number)
        EXPECT_EQ("", screen_of([&] { warning_no(number, 7, "p3", 1); })) << number;
}

TEST_F(Report, ErrorsAndMessagesAreNeverSuppressed)
{
    SUPRESS = true;
    EXPECT_EQ("\nERROR: P-fields don't match i-block header!\n\n", screen_of([] { error_no(4, 7, "p3", 1); }));
    EXPECT_EQ("p3\n ^\n", screen_of([] { error_no(1000, 7, "p3", 1); }));
    EXPECT_EQ("notice", screen_of([] { Mprintf("notice"); }));
}

TEST_F(Report, AConversionWithoutAnArgumentStandsForItself)
{
    EXPECT_EQ("d", screen_of([] { Mprintf("%d"); }));
    EXPECT_EQ("7 s", screen_of([] { Mprintf("%d %s", 7); }));
}

TEST_F(Report, ACharacterBehindTextOfAnyLengthArrives)
{
    for (std::size_t length = 4606; length <= 4609; ++length) {
        const std::string text(length, 'w');
        EXPECT_EQ(text + "xy", screen_of([&] { Mprintf("%s%c%c", text.c_str(), 'x', 'y'); })) << length;
    }
}

TEST_F(Report, AnErrorBeforeTheLogIsOpenGoesToTheScreen)
{
    MKLOG = true;
    EXPECT_EQ("\n\nERROR: Line 4: Yikes, out of memory!\np4\n^\n", screen_of([] { error_no(OUT_OF_MEMORY, 4, "p4", 0); }));
}

TEST_F(Report, WhatIsSaidBeforeTheLogStartsIsItsBeginning)
{
    MKLOG = true;
    EXPECT_EQ("early", screen_of([] { Mprintf("early"); }));
    EXPECT_EQ("early", file_of([](std::FILE *file) {
                  start_log(file);
                  end_log();
              }));
}

TEST_F(Report, ARunHasNothingOfTheRunBeforeItInItsLog)
{
    MKLOG = true;
    EXPECT_EQ("early", screen_of([] { Mprintf("early"); }));
    reset_report();
    EXPECT_EQ("", file_of([](std::FILE *file) {
                  start_log(file);
                  end_log();
              }));
}

TEST_F(Report, ALogOnATerminalShowsControlCharactersAlsoWhereTheScreenIsNone)
{
    const int         master = posix_openpt(O_RDWR | O_NOCTTY);
    const char *const name   = master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0 ? ptsname(master) : nullptr;
    if (name == nullptr)
        GTEST_SKIP() << "no terminal can be made";
    std::FILE *terminal = fdopen(open(name, O_WRONLY | O_NOCTTY), "w");
    ASSERT_NE(nullptr, terminal);
    termios raw{};
    ASSERT_EQ(0, tcgetattr(fileno(terminal), &raw));
    cfmakeraw(&raw);
    ASSERT_EQ(0, tcsetattr(fileno(terminal), TCSANOW, &raw));
    MKLOG                    = true;
    const std::string screen = screen_of([terminal] {
        reset_report(); // the screen is that of the test
        start_log(terminal);
        error_no(INVALID_COMMAND, 9, "p\x1bz", 0);
        end_log();
    });
    ASSERT_EQ(0, std::fclose(terminal));
    std::string shown;
    char        text[200];
    for (ssize_t length; (length = read(master, text, sizeof text)) > 0;) // a terminal hands on what it has got so far
        shown.append(text, static_cast<std::size_t>(length));
    close(master);
    EXPECT_EQ("\n\nERROR: Line 9: Invalid command.\np\x1bz\n^\n", screen);
    EXPECT_EQ("\n\nERROR: Line 9: Invalid command.\np\xE2\x90\x9Bz\n^\n", shown);
}

} // namespace
} // namespace orlo

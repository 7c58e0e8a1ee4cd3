#include "diag/messages.h"

#include <gtest/gtest.h>

namespace orlo {
namespace {

struct Text {
    int         number;
    const char *text;
};

// the texts that no input brings to the screen
constexpr Text unseen_errors[] = {
    {4, "P-fields don't match i-block header!"},
    {9, "Ouch! Can't open the temporary file (huh?)."},
    {10, "\"i\" must be followed by a number"},
    {31, "Missing i-block terminator (})."},
    {32, "Yikes, out of memory!"},
    {33, "Premature end-of-file!"},
    {56, "EX command: Equation must be enclosed in []s."},
    {83, "Duplicate macro name?!"},
    {87, "Wrong number of arguments in macro call."},
    {89, "Macro body exceeds maximum size."},
    {90, "Macro name exceeds memory allocation."},
    {92, "Not a macro command."},
    {93, "You must precede the \"oc\" (octave-class) mode with the \"pc\" mode."},
    {94, "\"oc\" (octave-class) mode must be the last input mode in p-field!"},
    {95, "duplicate \"oc\" (octave-class) mode found (can only have one in a p-field)"},
    {101, "Error in \"const\" statement."},
    {102, "Yikes, not enough memory to allocate constant!"},
    {113, "Error in \"#endif\" Statement. \n(N.B. #if and #endif must be isolated to their own lines\n"
          "with no other data than whitespace.)"},
    {154, "\"te\" term5, error getting curve type."},
    {200, "Not implemented yet..."},
};

constexpr Text unseen_warnings[] = {
    {23, "Is this a duplicate macro name?!"},
    {25, "Is this a duplicate constant name?!"},
};

TEST(Messages, TextsThatNoInputBringsUp)
{
    for (const Text &error : unseen_errors)
        EXPECT_STREQ(error.text, error_text(error.number)) << error.number;
    for (const Text &warning : unseen_warnings)
        EXPECT_STREQ(warning.text, warning_text(warning.number)) << warning.number;
}

TEST(Messages, TheFirstAndTheLastTextAreFound)
{
    EXPECT_STREQ("Comments seemed to be mismatched... reached EOF.", error_text(3));
    EXPECT_STREQ("Expecting a digit or decimal point in floating-point number.", error_text(500));
    EXPECT_STREQ("P3 Duration < 0! (Event turned into rest...)", warning_text(1));
    EXPECT_STREQ("This tempo change is quite long. Is that okay?", warning_text(35));
}

TEST(Messages, NumbersWithoutATextHaveTheDefault)
{
    for (const int number : {-2147483647 - 1, -1, 0, 2, 6, 7, 66, 104, 110, 127, 160, 499, 501, 999, 1000, 2147483647})
        EXPECT_STREQ("Unspecified error...", error_text(number)) << number;
    for (const int number : {-2147483647 - 1, 0, 3, 9, 13, 16, 17, 18, 27, 28, 29, 36, 2147483647})
        EXPECT_STREQ("Unspecified warning...", warning_text(number)) << number;
}

} // namespace
} // namespace orlo

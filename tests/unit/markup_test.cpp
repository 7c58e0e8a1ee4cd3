#include "base/markup.h"

#include "base/json.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace orlo::view {
namespace {

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

const std::string UNKNOWN = "\xEF\xBF\xBD";

std::string json_number(double value)
{
    std::string out;
    put_json_number(out, value);
    return out;
}

std::string json_text(std::string_view text)
{
    std::string out;
    put_json_text(out, text);
    return out;
}

std::string coordinate(std::int64_t value)
{
    std::string out;
    put_tenths(out, value);
    return out;
}

TEST(Tenths, AreRounded)
{
    EXPECT_EQ(125, tenths(12.46));
    EXPECT_EQ(-125, tenths(-12.46));
}

TEST(Escaped, ReplacesWhatMarkupMeans)
{
    EXPECT_EQ("&lt;b a=&quot;1&quot; c=&#39;2&#39;&gt; &amp;amp;", escaped("<b a=\"1\" c='2'> &amp;"));
}

TEST(Escaped, KeepsUtf8OfEveryLength)
{
    const std::string text = "a \u00e9 \u266f \U0001d11e \n\t";
    EXPECT_EQ(text, escaped(text));
}

TEST(Escaped, ReplacesControlCharacters) { EXPECT_EQ(UNKNOWN + UNKNOWN + UNKNOWN, escaped(std::string("\0\x1b\x7f", 3))); }

TEST(Escaped, ReplacesBrokenUtf8)
{
    EXPECT_EQ(UNKNOWN + "a", escaped("\xC3"
                                     "a"));            // cut short
    EXPECT_EQ(UNKNOWN, escaped("\xE2"));               // at the end
    EXPECT_EQ(UNKNOWN, escaped("\x80"));               // begins in the middle
    EXPECT_EQ(UNKNOWN + UNKNOWN, escaped("\xC0\x80")); // overlong
    EXPECT_EQ(UNKNOWN + UNKNOWN + UNKNOWN, escaped("\xE0\x80\x80"));
    EXPECT_EQ(UNKNOWN + UNKNOWN + UNKNOWN, escaped("\xED\xA0\x80")); // a surrogate
    EXPECT_EQ(UNKNOWN + UNKNOWN + UNKNOWN + UNKNOWN, escaped("\xF0\x80\x80\x80"));
    EXPECT_EQ(UNKNOWN + UNKNOWN + UNKNOWN + UNKNOWN, escaped("\xF4\x90\x80\x80")); // beyond the last character
    EXPECT_EQ(UNKNOWN, escaped("\xFF"));
    EXPECT_EQ(UNKNOWN + UNKNOWN, escaped("\xEF\xBF\xBE\xEF\xBF\xBF")); // what XML does not hold
    EXPECT_EQ("\xED\x9F\xBF\xF4\x8F\xBF\xBF", escaped("\xED\x9F\xBF\xF4\x8F\xBF\xBF"));
}

TEST(JsonText, HoldsNothingThatEndsAScript) { EXPECT_EQ("\"\\u003c/script>\\u0022\\u005c\\u000a\"", json_text("</script>\"\\\n")); }

TEST(JsonText, ReplacesBrokenUtf8) { EXPECT_EQ("\"\u266f" + UNKNOWN + "\"", json_text("\u266f\xFF")); }

TEST(ShortNumber, IsShort)
{
    EXPECT_EQ("0.25", number_text(0.25));
    EXPECT_EQ("0", number_text(-0.0));
    EXPECT_EQ("1e+30", number_text(1e30));
    EXPECT_EQ("-3.14159", number_text(-3.14159265));
    EXPECT_EQ("3.1", number_text(3.14159265, 2));
    EXPECT_EQ("-0.30000000000000004", number_text(-0.1 - 0.2, 17));
    EXPECT_EQ("-nan", number_text(std::nan("")));
    EXPECT_EQ("-inf", number_text(-HUGE_VAL));
}

TEST(JsonNumber, GivesTheSameDoubleBack)
{
    EXPECT_EQ("0.1", json_number(0.1));
    EXPECT_EQ("0.30000000000000004", json_number(0.1 + 0.2));
    EXPECT_EQ("1e+300", json_number(1e300));
}

TEST(JsonNumber, NamesWhatIsNone) { EXPECT_EQ("null", json_number(NOT_A_NUMBER)); }

TEST(Tenths, HaveADecimalWhereTheyNeedOne)
{
    EXPECT_EQ("12.5", coordinate(125));
    EXPECT_EQ("12", coordinate(120));
    EXPECT_EQ("-0.1", coordinate(-1));
    EXPECT_EQ("0", coordinate(0));
    EXPECT_EQ("-3", coordinate(-30));
}

TEST(Shortened, CountsCharactersNotBytes)
{
    EXPECT_EQ("\u266f\u266f\u266f", shortened("\u266f\u266f\u266f", 3));
    EXPECT_EQ("\u266f\u266f\u2026", shortened("\u266f\u266f\u266f\u266f", 3));
    EXPECT_EQ("\u2026", shortened("ab", 1));
    EXPECT_EQ("", shortened("", 1));
}

TEST(CountText, PartsThousands)
{
    EXPECT_EQ("0", count_text(0));
    EXPECT_EQ("999", count_text(999));
    EXPECT_EQ("1,000", count_text(1000));
    EXPECT_EQ("50,000,000", count_text(50'000'000));
}

TEST(Counted, KnowsOneFromMany)
{
    EXPECT_EQ("1 event", counted(1, "event"));
    EXPECT_EQ("0 events", counted(0, "event"));
    EXPECT_EQ("1,002 events", counted(1002, "event"));
}

} // namespace
} // namespace orlo::view

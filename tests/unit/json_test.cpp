#include "base/json.h"

#include "support.h"

#include <bit>
#include <charconv>
#include <limits>
#include <random>

namespace orlo {
namespace {

using test::file_of;

std::string text_of(std::string_view text)
{
    std::string out;
    put_json_text(out, text);
    return out;
}

template <class Number> std::string number_of(Number value)
{
    std::string out;
    put_json_number(out, value);
    return out;
}

// the document that a call makes
template <class Call> std::string document_of(Call call)
{
    return file_of([&call](std::FILE *file) {
        JsonWriter json{file};
        call(json);
        EXPECT_TRUE(json.finish());
    });
}

TEST(Json, TextsAreQuoted)
{
    EXPECT_EQ(R"("")", text_of(""));
    EXPECT_EQ(R"("p4 c,e 'g")", text_of("p4 c,e 'g"));
    EXPECT_EQ(R"("\u0022\u005c/")", text_of("\"\\/"));
    EXPECT_EQ(R"("\u003cp>")", text_of("<p>")); // which would end the script of a page
}

TEST(Json, ControlCharactersAreNamed)
{
    EXPECT_EQ(R"("\u0000\u0009\u000a\u000d\u001b\u001f ")", text_of(std::string_view{"\0\t\n\r\x1b\x1f ", 7}));
    EXPECT_EQ(R"("\u007f\u0080\u009b\u202e")", text_of("\x7f\xc2\x80\xc2\x9b\xe2\x80\xae")); // no terminal gets them either
}

TEST(Json, CharactersStayAndBytesThatAreNoneAreReplaced)
{
    EXPECT_EQ("\"\xc3\xa9 \xf0\x9d\x84\x9e\"", text_of("\xc3\xa9 \xf0\x9d\x84\x9e"));
    EXPECT_EQ("\"a\xef\xbf\xbd\xef\xbf\xbd!\"", text_of("a\xff\xc3!"));
    EXPECT_EQ("\"\xef\xbf\xbd\"", text_of("\xc3"));
}

TEST(Json, WhatIsUtf8)
{
    for (const std::string_view text : {"", "plain", "\xc3\xa9", "\xf0\x9d\x84\x9e", "\xe2\x82\xac end", "\x7f"})
        EXPECT_TRUE(is_utf8(text)) << text;
    for (const std::string_view text : {"\xff", "a\x80", "\xc3", "\xe2\x82", "\xc0\xaf", "\xed\xa0\x80", "\xf4\x90\x80\x80"})
        EXPECT_FALSE(is_utf8(text)) << text_of(text);
    EXPECT_TRUE(is_utf8({"\0", 1}));
}

TEST(Json, NumbersAreAsShortAsTheyCanBe)
{
    EXPECT_EQ("0.1", number_of(0.1F));
    EXPECT_EQ("0.1", number_of(0.1));
    EXPECT_EQ("0.10000000149011612", number_of(static_cast<double>(0.1F)));
    EXPECT_EQ("3", number_of(3.0));
    EXPECT_EQ("0", number_of(0.0F));
}

TEST(Json, MinusZeroKeepsItsSign)
{
    EXPECT_EQ("-0.0", number_of(-0.0F));
    EXPECT_EQ("-0.0", number_of(-0.0));
}

TEST(Json, InAPlainNumberWhatIsNoneIsNull)
{
    EXPECT_EQ("null", number_of(std::numeric_limits<double>::quiet_NaN()));
    EXPECT_EQ("null", number_of(-std::numeric_limits<float>::infinity()));
}

template <class Real, class Bits> void expect_same_bits(Bits bits)
{
    const Real value = std::bit_cast<Real>(bits);
    if (value - value != 0)
        return;
    const std::string text = number_of(value);
    Real              read{};
    std::from_chars(text.data(), text.data() + text.size(), read);
    EXPECT_EQ(bits, std::bit_cast<Bits>(read)) << text;
}

TEST(Json, NumbersAreReadBackToTheBit)
{
    std::mt19937_64 draw{1};
    for (int i = 0; i < 20000; ++i) {
        expect_same_bits<float>(static_cast<std::uint32_t>(draw()));
        expect_same_bits<double>(static_cast<std::uint64_t>(draw()));
    }
    expect_same_bits<float>(1U); // the smallest there is
    expect_same_bits<double>(std::uint64_t{1});
}

TEST(JsonWriter, PutsCommasWhereTheyBelong)
{
    EXPECT_EQ("{\"a\":[],\"b\":[1,[2],{}],\"c\":{\"d\":true,\"e\":false}}\n", document_of([](JsonWriter &json) {
                  json.begin_object();
                  json.key("a");
                  json.begin_array();
                  json.end_array();
                  json.key("b");
                  json.begin_array();
                  json.number(std::int64_t{1});
                  json.begin_array();
                  json.number(std::int64_t{2});
                  json.end_array();
                  json.begin_object();
                  json.end_object();
                  json.end_array();
                  json.key("c");
                  json.begin_object();
                  json.key("d");
                  json.truth(true);
                  json.key("e");
                  json.truth(false);
                  json.end_object();
                  json.end_object();
              }));
}

TEST(JsonWriter, NumbersThatAreNoneAreTexts)
{
    constexpr double infinite = std::numeric_limits<double>::infinity();
    EXPECT_EQ(R"(["nan","inf","-inf","inf",-0.0,-9223372036854775808])"
              "\n",
              document_of([](JsonWriter &json) {
                  json.begin_array();
                  json.number(std::numeric_limits<double>::quiet_NaN());
                  json.number(infinite);
                  json.number(-infinite);
                  json.number(std::numeric_limits<float>::infinity());
                  json.number(-0.0F);
                  json.number(std::numeric_limits<std::int64_t>::min());
                  json.end_array();
              }));
}

TEST(JsonWriter, ATextThatIsNoUtf8IsAnObjectWithItsBytes)
{
    EXPECT_EQ(R"(["x",{"hex":"6eff0a"},{"hex":"80"},"y"])"
              "\n",
              document_of([](JsonWriter &json) {
                  json.begin_array();
                  json.text("x");
                  json.text("n\xff\n");
                  json.text("\x80");
                  json.text("y");
                  json.end_array();
              }));
}

TEST(JsonWriter, LongDocumentsAreWrittenInPieces)
{
    constexpr int COUNT = 20000; // some times what is gathered
    const auto    text  = document_of([](JsonWriter &json) {
        json.begin_array();
        for (int i = 0; i < COUNT; ++i)
            json.text("twelve bytes");
        json.end_array();
    });
    EXPECT_EQ(std::size_t{COUNT} * 15 - 1 + 3, text.size());
    EXPECT_EQ("[\"twelve bytes\",\"twelve", text.substr(0, 23));
    EXPECT_EQ("\"twelve bytes\"]\n", text.substr(text.size() - 16));
}

TEST(JsonWriter, WhatIsLostIsTold)
{
    for (const int count : {1, 20000}) { // lost at the end, or before
        std::FILE *full = std::fopen("/dev/full", "w");
        ASSERT_NE(nullptr, full);
        JsonWriter json{full};
        json.begin_array();
        for (int i = 0; i < count; ++i)
            json.text("twelve bytes");
        json.end_array();
        EXPECT_FALSE(json.finish());
        static_cast<void>(std::fclose(full));
    }
}

} // namespace
} // namespace orlo

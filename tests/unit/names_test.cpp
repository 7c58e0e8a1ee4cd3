#include "input/names.h"

#include "support.h"

namespace orlo {
namespace {

struct Record {
    std::string name;
    int         value;
};

std::string name_of(int i)
{
    std::string name = "n";
    name += std::to_string(i);
    return name;
}

TEST(Names, BeginWithALetter)
{
    std::size_t pos = 1;
    EXPECT_EQ("aZ_09", take_name("$aZ_09-b", pos));
    EXPECT_EQ(6U, pos);
    for (const char *text : {"_a", "9", "", "\xE4"}) {
        pos = 0;
        EXPECT_EQ("", take_name(text, pos)) << text;
        EXPECT_EQ(0U, pos) << text;
    }
}

TEST(Names, AreTheirCharactersAlone)
{
    for (int c = -128; c < 128; ++c)
        EXPECT_EQ(is_letter(static_cast<char>(c)) || is_digit(static_cast<char>(c)) || c == '_', is_name_char(static_cast<char>(c)))
            << c;
}

TEST(NameTable, FindsEachOfThousands)
{
    NameTable<Record> table{};
    EXPECT_EQ(nullptr, find_named(table, name_of(0)));
    for (int i = 0; i < 5000; ++i)
        EXPECT_TRUE(add_named(table, {name_of(i), i}));
    for (int i = 0; i < 5000; ++i) {
        const Record *found = find_named(table, name_of(i));
        ASSERT_NE(nullptr, found) << i;
        EXPECT_EQ(i, found->value);
    }
    EXPECT_EQ(nullptr, find_named(table, name_of(5000)));
    EXPECT_EQ(nullptr, find_named(table, ""));
}

TEST(NameTable, RefusesANameThatItHas)
{
    NameTable<Record> table{};
    EXPECT_TRUE(add_named(table, {"a", 1}));
    EXPECT_FALSE(add_named(table, {"a", 2}));
    EXPECT_TRUE(add_named(table, {"A", 3}));
    EXPECT_EQ(1, find_named(table, "a")->value);
    EXPECT_EQ(3, find_named(table, "A")->value);
}

TEST(NameTable, ARemovedNameCanBeAddedAgain)
{
    NameTable<Record> table{};
    remove_named(table, "a");
    for (int round = 0; round < 3; ++round) {
        EXPECT_TRUE(add_named(table, {"a", round}));
        EXPECT_TRUE(add_named(table, {"b", round}));
        remove_named(table, "a");
        EXPECT_EQ(nullptr, find_named(table, "a"));
        EXPECT_EQ(round, find_named(table, "b")->value);
        remove_named(table, "b");
        EXPECT_EQ(0U, table.records);
    }
}

} // namespace
} // namespace orlo

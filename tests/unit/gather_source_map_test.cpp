#include "gather/source_map.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <initializer_list>
#include <ostream>
#include <random>
#include <string>
#include <vector>

namespace orlo::gather {
namespace {

// Origin of one character.
struct Origin {
    std::uint64_t begin;
    std::uint64_t end;
    std::int32_t  call;

    bool operator==(const Origin &other) const = default;
};

void PrintTo(const Origin &origin, std::ostream *out) { *out << origin.begin << ".." << origin.end << '/' << origin.call; }

using Origins = std::vector<Origin>;

Origins origins(const TextMap &text)
{
    Origins found;
    for (std::size_t i = 0; i < text.stretches.size(); ++i) {
        const Stretch    &stretch = text.stretches[i];
        const std::size_t end     = i + 1 < text.stretches.size() ? text.stretches[i + 1].column : text.length;
        EXPECT_EQ(found.size(), stretch.column);
        EXPECT_TRUE(stretch.anew || stretch.end - stretch.begin == end - stretch.column) << i;
        for (std::uint64_t at = stretch.begin; found.size() < end; ++at)
            found.push_back(stretch.anew ? Origin{stretch.begin, stretch.end, stretch.call} : Origin{at, at + 1, stretch.call});
    }
    EXPECT_EQ(text.length, found.size());
    return found;
}

// a text that is copied from the combined input
TextMap copied(std::uint64_t begin, std::size_t length, std::int32_t call = NONE)
{
    TextMap text;
    text.stretches.push_back({0, begin, begin + length, call, false});
    text.length = length;
    return text;
}

TextMap joined(std::initializer_list<TextMap> parts)
{
    TextMap text;
    for (const TextMap &part : parts)
        append(text, part);
    return text;
}

TEST(TextMap, APartOfATextKeepsItsOrigins)
{
    const TextMap text = joined({copied(10, 4), copied(50, 3, 1), copied(14, 2)});
    EXPECT_EQ((Origins{{13, 14, NONE}, {50, 51, 1}, {51, 52, 1}, {52, 53, 1}, {14, 15, NONE}}), origins(part_of(text, 3, 8)));
    EXPECT_EQ(origins(text), origins(part_of(text, 0, text.length)));
    EXPECT_EQ(origins(text), origins(part_of(text, 0, 1000)));
    EXPECT_EQ((Origins{{51, 52, 1}}), origins(part_of(text, 5, 6)));
}

TEST(TextMap, APartMayBeEmpty)
{
    const TextMap text = copied(10, 4);
    for (const TextMap &part : {part_of(text, 2, 2), part_of(text, 4, 9), part_of(text, 9, 12), part_of({}, 0, 3)}) {
        EXPECT_EQ(0U, part.length);
        EXPECT_TRUE(part.stretches.empty());
    }
}

TEST(TextMap, APartMayComeThroughACall)
{
    const TextMap text = joined({copied(10, 1), copied(50, 1, 1)});
    EXPECT_EQ((Origins{{10, 11, 7}, {50, 51, 7}}), origins(part_of(text, 0, 2, 7)));
}

TEST(TextMap, TextsThatFollowEachOtherAreOneStretch)
{
    EXPECT_EQ(1U, joined({copied(10, 2), copied(12, 3)}).stretches.size());
    EXPECT_EQ(1U, joined({copied(10, 2, 1), {}, copied(12, 3, 1)}).stretches.size());
    EXPECT_EQ(2U, joined({copied(10, 2), copied(13, 3)}).stretches.size());
    EXPECT_EQ(2U, joined({copied(10, 2), copied(12, 3, 1)}).stretches.size());
    EXPECT_EQ(2U, joined({as_number(copied(10, 2)), copied(12, 3)}).stretches.size());
    EXPECT_EQ(2U, joined({copied(8, 2), as_number(copied(10, 2))}).stretches.size());
}

TEST(TextMap, ANumberComesFromAllOfItsText)
{
    EXPECT_EQ((Origins{{10, 14, NONE}}), origins(as_number(copied(10, 4))));
    EXPECT_EQ((Origins{{10, 40, 2}}), origins(as_number(joined({copied(10, 2, 2), copied(90, 3, 5), copied(38, 2, 2)}))));
    EXPECT_EQ((Origins{}), origins(as_number({})));
    EXPECT_EQ((Origins{{20, 22, NONE}}), origins(as_number(joined({copied(20, 2), copied(5, 3)})))); // which goes back
    EXPECT_EQ((Origins{{20, 22, NONE}}), origins(as_number(joined({copied(20, 2), copied(30, 3, 1)}))));
}

TEST(TextMap, ASpliceReplacesAPart)
{
    const auto spliced = [](std::size_t begin, std::size_t end, const TextMap &inner) {
        TextMap text = copied(10, 4);
        splice(text, begin, end, inner);
        return origins(text);
    };
    const TextMap inner = copied(50, 2, 1);
    EXPECT_EQ((Origins{{50, 51, 1}, {51, 52, 1}, {11, 12, NONE}, {12, 13, NONE}, {13, 14, NONE}}), spliced(0, 1, inner));
    EXPECT_EQ((Origins{{10, 11, NONE}, {50, 51, 1}, {51, 52, 1}, {13, 14, NONE}}), spliced(1, 3, inner));
    EXPECT_EQ((Origins{{10, 11, NONE}, {11, 12, NONE}, {12, 13, NONE}, {50, 51, 1}, {51, 52, 1}}), spliced(3, 4, inner));
    EXPECT_EQ((Origins{{50, 51, 1}, {51, 52, 1}}), spliced(0, 4, inner));
    EXPECT_EQ((Origins{{10, 11, NONE}, {13, 14, NONE}}), spliced(1, 3, {}));
    EXPECT_EQ((Origins{}), spliced(0, 4, {}));
    EXPECT_EQ(origins(copied(10, 4)), spliced(2, 2, {}));
}

// Many splices, of text and of numbers, against the same done with a list of characters.
TEST(TextMap, AnySplicesKeepEveryCharactersOrigin)
{
    std::mt19937 draw{17};
    const auto   below = [&draw](std::size_t bound) { return static_cast<std::size_t>(draw()) % bound; };
    for (int round = 0; round < 200; ++round) {
        TextMap text  = copied(0, 40);
        Origins plain = origins(text);
        for (int i = 0; i < 30; ++i) {
            const std::size_t begin = below(text.length + 1);
            const std::size_t end   = begin + below(text.length - begin + 1);
            TextMap           inner = part_of(text, below(20), 20 + below(20), below(2) == 0 ? NONE : static_cast<std::int32_t>(i));
            if (below(4) == 0)
                inner = as_number(inner);
            if (below(4) == 0)
                append(inner, copied(1000, 1 + below(5)));
            const Origins put = origins(inner);
            splice(text, begin, end, inner);
            plain.erase(plain.begin() + static_cast<std::ptrdiff_t>(begin), plain.begin() + static_cast<std::ptrdiff_t>(end));
            plain.insert(plain.begin() + static_cast<std::ptrdiff_t>(begin), put.begin(), put.end());
            ASSERT_EQ(plain, origins(text)) << round << ", " << i;
        }
    }
}

// maps of a run

bool same(const Place &a, const Place &b) { return a.file == b.file && a.begin == b.begin && a.end == b.end && a.call == b.call; }

std::string text_of(const Place &place)
{
    return std::to_string(place.file) + ": " + std::to_string(place.begin) + ".." + std::to_string(place.end) +
           (place.call == NONE ? "" : " through " + std::to_string(place.call));
}

void expect_place(const Place &expected, const Place &found)
{
    EXPECT_TRUE(same(expected, found)) << "expected " << text_of(expected) << ", found " << text_of(found);
}

// a piece without includes, whose first line is read
SourceMap piece_of(std::string_view text)
{
    SourceMap map;
    map.open("piece", true);
    map.copy_continues(0, 0);
    map.add_text(text);
    if (!text.empty())
        map.read_line(0, std::min(text.find('\n'), text.size() - 1) + 1);
    return map;
}

// "ab#include |x|cd\n", where x is "1\n2"
SourceMap piece_with_include()
{
    SourceMap map;
    map.open("piece", true);
    map.copy_continues(0, 0);
    map.add_text("ab#include |x|cd\n");
    map.include_met(2, 14);
    map.open("x", true);
    map.copy_continues(2, 0);
    map.add_text("1\n2");
    map.leave();
    map.copy_continues(5, 14); // the combined input is "ab1\n2cd\n"
    return map;
}

TEST(SourceMap, PlacesAreThoseOfTheFile)
{
    SourceMap map = piece_of("p4 1 2\np5 3\n");
    EXPECT_TRUE(map.has_lines());
    expect_place({0, 3, 4, NONE}, map.place_of(3, 4));
    expect_place({0, 3, 6, NONE}, map.place_of(3, 6));
    expect_place({0, 3, 3, NONE}, map.place_of(3, 3));
    map.read_line(7, 5);
    expect_place({0, 10, 11, NONE}, map.place_of(3, 4));
}

TEST(SourceMap, AnEndOfALineIsAPlaceWithoutText)
{
    SourceMap map = piece_of("p4 1");
    expect_place({0, 4, 4, NONE}, map.place_of(4, 4));
    map.read_line(4, 0); // an empty line
    expect_place({0, 4, 4, NONE}, map.place_of(0, 0));
}

TEST(SourceMap, BeforeAnyLineThereIsNoPlace)
{
    SourceMap map;
    EXPECT_FALSE(map.has_lines());
    EXPECT_EQ(NONE, map.place_of(0, 0).file);
    EXPECT_EQ(NONE, map.last_include().file);
}

TEST(SourceMap, AnIncludedFileHasPlacesOfItsOwn)
{
    SourceMap map = piece_with_include();
    map.read_line(0, 4); // "ab1\n"
    expect_place({0, 1, 2, NONE}, map.place_of(1, 2));
    expect_place({1, 0, 1, NONE}, map.place_of(2, 3));
    map.read_line(4, 4); // "2cd\n"
    expect_place({1, 2, 3, NONE}, map.place_of(0, 1));
    expect_place({0, 14, 16, NONE}, map.place_of(1, 3));
    expect_place({0, 2, 14, NONE}, map.files()[1].included);
    expect_place({0, 2, 14, NONE}, map.last_include());
    EXPECT_EQ(NONE, map.files()[0].included.file);
}

TEST(SourceMap, WhatBeginsInAnIncludedFileAndEndsBehindItIsLifted)
{
    SourceMap map = piece_with_include();
    map.read_line(0, 4);
    expect_place({0, 1, 14, NONE}, map.place_of(1, 3)); // "b" and all of the include
    map.read_line(4, 4);
    expect_place({0, 2, 15, NONE}, map.place_of(0, 2));
}

TEST(SourceMap, AFileThatIsNotThereIsNotCopied)
{
    SourceMap map;
    map.open("piece", true);
    map.copy_continues(0, 0);
    map.add_text("#include |none|\n");
    map.include_met(0, 15);
    map.open("none", false);
    map.add_text("\n");
    ASSERT_EQ(2U, map.files().size());
    EXPECT_FALSE(map.files()[1].found);
    EXPECT_EQ("", map.files()[1].text);
    EXPECT_EQ("#include |none|\n\n", map.files()[0].text);
}

TEST(SourceMap, AnEmptyIncludeTakesNoPlace)
{
    SourceMap map;
    map.open("piece", true);
    map.copy_continues(0, 0);
    map.add_text("#include |x|cd\n");
    map.include_met(0, 12);
    map.open("x", true);
    map.copy_continues(0, 0);
    map.add_text("");
    map.leave();
    map.copy_continues(0, 12);
    map.read_line(0, 3);
    expect_place({0, 12, 13, NONE}, map.place_of(0, 1));
}

// calls. In all of them the piece is "#define m #xy#\n$m+$m\n", whose second line is read.

constexpr std::string_view MACRO = "#define m #xy#\n$m+$m\n";

SourceMap piece_with_macro()
{
    SourceMap map = piece_of(MACRO);
    map.read_line(15, 6);
    return map;
}

TextMap body_of_m() { return copied(11, 2); }

std::int32_t call_m(SourceMap &map, std::size_t begin)
{
    const std::int32_t call = map.call(CallKind::macro, "m", 0, 0.0, begin, begin + 2, body_of_m());
    map.replace(begin, begin + 2, 2);
    return call;
}

TEST(SourceMap, TextOfAMacroIsThatOfItsBodyThroughTheCall)
{
    SourceMap          map  = piece_with_macro();
    const std::int32_t call = call_m(map, 0); // "xy+$m"
    expect_place({0, 11, 12, call}, map.place_of(0, 1));
    expect_place({0, 12, 13, call}, map.place_of(1, 2));
    expect_place({0, 11, 13, call}, map.place_of(0, 2));
    expect_place({0, 17, 18, NONE}, map.place_of(2, 3));
    expect_place({0, 15, 17, NONE}, map.calls()[static_cast<std::size_t>(call)].place);
}

TEST(SourceMap, PlacesOfDifferentCallsAreLiftedToTheLine)
{
    SourceMap map = piece_with_macro();
    call_m(map, 0);
    call_m(map, 3);                                      // "xy+xy"
    expect_place({0, 15, 18, NONE}, map.place_of(1, 3)); // "$m+"
    expect_place({0, 15, 20, NONE}, map.place_of(1, 4)); // "$m+$m"
    expect_place({0, 11, 13, 1}, map.place_of(3, 5));
}

TEST(SourceMap, ACallInABodyLeadsThroughBoth)
{
    SourceMap map = piece_of("#define a #<$b>#\n#define b #1#\n$a 2\n");
    map.read_line(31, 5);
    const std::int32_t outer = map.call(CallKind::macro, "a", 0, 0.0, 0, 2, copied(11, 4)); // "<$b>"
    const std::int32_t inner = map.call(CallKind::macro, "b", 1, 0.0, 1, 3, copied(28, 1));
    map.replace(1, 3, 1);
    map.replace(0, 2, 3); // "<1> 2"
    expect_place({0, 28, 29, inner}, map.place_of(1, 2));
    expect_place({0, 12, 14, outer}, map.calls()[static_cast<std::size_t>(inner)].place);
    expect_place({0, 31, 33, NONE}, map.calls()[static_cast<std::size_t>(outer)].place);
    expect_place({0, 11, 14, outer}, map.place_of(0, 2)); // "<$b" of the body
    expect_place({0, 31, 35, NONE}, map.place_of(1, 5));  // "$a 2" of the line
}

TEST(SourceMap, AnArgumentIsTheTextOfTheCall)
{
    SourceMap map = piece_of("$m(12 3) x\n"); // of #define m(v) #<$v>#, which stood at 100
    map.take_argument("v", 3, 5);
    map.take_argument("w", 6, 7);
    const std::int32_t call = map.call(CallKind::macro, "m", 0, 0.0, 0, 8, copied(0, 4));
    ASSERT_NE(nullptr, map.argument("v"));
    EXPECT_EQ((Origins{{3, 4, NONE}, {4, 5, NONE}}), origins(*map.argument("v")));
    EXPECT_EQ((Origins{{6, 7, NONE}}), origins(*map.argument("w")));
    EXPECT_EQ(nullptr, map.argument("u"));
    const std::int32_t inner = map.call(CallKind::argument, "v", NONE, 0.0, 1, 3, *map.argument("v"));
    EXPECT_EQ(nullptr, map.argument("v")); // not of the argument's own text
    map.replace(1, 3, 2);                  // "<12>"
    map.replace(0, 8, 4);
    expect_place({0, 3, 5, inner}, map.place_of(1, 3));
    expect_place({0, 1, 3, call}, map.calls()[static_cast<std::size_t>(inner)].place);
    EXPECT_EQ(nullptr, map.argument("v"));
}

TEST(SourceMap, EveryDigitOfANumberComesFromAllOfItsText)
{
    SourceMap          map  = piece_of("p4 ~[1 + 99] 2\n");
    const std::int32_t call = map.call(CallKind::equation, "", NONE, 100.0, 3, 12, as_number(part_of(map.line(), 3, 12)));
    map.replace(3, 12, 3); // "p4 100 2"
    for (std::size_t column = 3; column < 6; ++column)
        expect_place({0, 3, 12, call}, map.place_of(column, column + 1));
    expect_place({0, 3, 12, call}, map.place_of(3, 6));
    expect_place({0, 13, 14, NONE}, map.place_of(7, 8));
}

TEST(SourceMap, ANameWithoutATextLeavesNothing)
{
    SourceMap map = piece_of("p4 $m 2\n");
    map.call(CallKind::macro, "m", 0, 0.0, 3, 5, {});
    map.replace(3, 5, 0); // "p4  2"
    expect_place({0, 2, 3, NONE}, map.place_of(2, 3));
    expect_place({0, 5, 6, NONE}, map.place_of(3, 4));
}

TEST(SourceMap, ALineThatIsReadForgetsTheCallsOfTheOneBefore)
{
    SourceMap map = piece_with_macro();
    map.call(CallKind::macro, "m", 0, 0.0, 0, 2, body_of_m()); // an error in it: it is never replaced
    map.read_line(0, 15);
    expect_place({0, 0, 7, NONE}, map.place_of(0, 7));
}

TEST(SourceMap, JoinOfAPlaceAndNoneIsThePlace)
{
    const SourceMap map = piece_of("p4\n");
    const Place     place{0, 1, 2, NONE};
    expect_place(place, map.join(place, {}));
    expect_place(place, map.join({}, place));
    EXPECT_EQ(NONE, map.join({}, {}).file);
    expect_place({0, 0, 2, NONE}, map.join(place, {0, 0, 1, NONE}));
}

TEST(SourceMap, JoinAcrossACallAndAnIncludeIsLiftedToWhatTheyShare)
{
    SourceMap map = piece_with_include();
    map.read_line(4, 4);                                                                  // "2cd\n"
    const std::int32_t call = map.call(CallKind::macro, "m", 0, 0.0, 0, 1, copied(2, 1)); // "2" is a call whose body is "1"
    map.replace(0, 1, 1);
    expect_place({1, 0, 1, call}, map.place_of(0, 1));
    expect_place({0, 2, 15, NONE}, map.place_of(0, 2)); // the include and "c"
    expect_place({0, 0, 14, NONE}, map.join({0, 0, 1, NONE}, map.place_of(0, 1)));
}

TEST(SourceMap, JoinOfTwoIncludesIsLiftedToBoth)
{
    SourceMap map;
    map.open("piece", true);
    map.copy_continues(0, 0);
    map.add_text("#include |x|#include |y|\n");
    std::uint64_t to = 0;
    for (const std::uint64_t begin : {0U, 12U}) {
        map.include_met(begin, begin + 12);
        map.open(begin == 0 ? "x" : "y", true);
        map.copy_continues(to, 0);
        map.add_text("12");
        map.leave();
        map.copy_continues(to += 2, begin + 12);
    }
    map.read_line(0, 5); // "1212\n"
    expect_place({1, 0, 2, NONE}, map.place_of(0, 2));
    expect_place({2, 0, 2, NONE}, map.place_of(2, 4));
    expect_place({0, 0, 24, NONE}, map.place_of(1, 3));
}

// positions

std::string text_of(const Position &position)
{
    return std::to_string(position.line) + ":" + std::to_string(position.byte) + ":" + std::to_string(position.utf16);
}

std::string position_in(std::string_view text, std::uint64_t byte)
{
    SourceMap map = piece_of(text);
    map.index_files();
    return text_of(map.position(0, byte));
}

TEST(SourceMap, PositionsCountLinesAndBytes)
{
    EXPECT_EQ("0:0:0", position_in("ab\ncd\n", 0));
    EXPECT_EQ("0:2:2", position_in("ab\ncd\n", 2));
    EXPECT_EQ("1:0:0", position_in("ab\ncd\n", 3));
    EXPECT_EQ("1:1:1", position_in("ab\ncd\n", 4));
    EXPECT_EQ("2:0:0", position_in("ab\ncd\n", 6));
    EXPECT_EQ("2:0:0", position_in("ab\ncd\n", 1000)); // behind the text
    EXPECT_EQ("0:0:0", position_in("", 0));
    EXPECT_EQ("1:1:1", position_in("\nab", 2));
}

TEST(SourceMap, PositionsCountUtf16Units)
{
    constexpr std::string_view text = "a\xc3\xa9\xe2\x82\xac\xf0\x9d\x84\x9e!\n\xc3\xa9!\n"; // of 1, 2, 3 and 4 bytes
    EXPECT_EQ("0:1:1", position_in(text, 1));
    EXPECT_EQ("0:3:2", position_in(text, 3));
    EXPECT_EQ("0:6:3", position_in(text, 6));
    EXPECT_EQ("0:10:5", position_in(text, 10));
    EXPECT_EQ("0:11:6", position_in(text, 11));
    EXPECT_EQ("1:2:1", position_in(text, 14));
}

TEST(SourceMap, AByteThatIsNoUtf8IsAUnitOfItsOwn)
{
    constexpr std::string_view text =
        "\xff\xc3(\xe2\x82\n\x80!"; // a byte that begins none, cut characters, one without a beginning
    for (std::uint64_t byte = 0; byte < 5; ++byte)
        EXPECT_EQ("0:" + std::to_string(byte) + ":" + std::to_string(byte), position_in(text, byte));
    EXPECT_EQ("1:1:1", position_in(text, 7));
}

TEST(SourceMap, ALongTextIsCountedAsAShortOneIs)
{
    std::mt19937                              draw{5};
    constexpr std::array<std::string_view, 7> pieces{"a", "\xc3\xa9", "\xe2\x82\xac", "\xf0\x9d\x84\x9e", "\xff", "\xf0\x9d", "\n"};
    std::string                               text;
    std::vector<Position>                     expected; // of each piece's beginning
    std::vector<std::size_t>                  bytes;
    Position                                  at{};
    for (int i = 0; i < 20000; ++i) {
        const std::string_view piece = pieces[draw() % (i % 1000 < 600 ? pieces.size() - 1 : pieces.size())];
        expected.push_back(at);
        bytes.push_back(text.size());
        text += piece;
        at.byte += piece.size();
        at.utf16 += piece == "\xf0\x9d\x84\x9e" || piece == "\xf0\x9d" ? 2U : 1U; // two bytes of a character that is cut are two
        if (piece == "\n")
            at = {at.line + 1, 0, 0};
    }
    SourceMap map = piece_of(text);
    map.index_files();
    for (std::size_t i = 0; i < bytes.size(); ++i)
        ASSERT_EQ(text_of(expected[i]), text_of(map.position(0, bytes[i]))) << i;
}

TEST(SourceMap, APieceMayBeginInsideItsFile)
{
    SourceMap map;
    map.skip_in_piece(100, 5);
    map.open("piece.csd", true);
    map.copy_continues(0, 100); // 5 lines stand before the piece
    map.add_text("te(60)\ni1 \xc3\xa9!\n");
    map.read_line(7, 8);
    const Place place = map.place_of(3, 6);
    expect_place({0, 110, 113, NONE}, place);
    map.index_files();
    EXPECT_EQ("6:3:3", text_of(map.position(0, place.begin)));
    EXPECT_EQ("6:5:4", text_of(map.position(0, place.begin + 2)));
    EXPECT_EQ("5:0:0", text_of(map.position(0, 100)));
    EXPECT_EQ("5:0:0", text_of(map.position(0, 3))); // not in the piece
}

} // namespace
} // namespace orlo::gather

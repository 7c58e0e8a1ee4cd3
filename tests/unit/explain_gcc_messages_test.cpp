// Messages of pieces as they are gathered; what a run gathers is shown by cases.

#include "explain/gcc_messages.h"

#include <gtest/gtest.h>

#include <utility>

namespace orlo::explain {
namespace {

// a file as a piece has it
void add_file(Piece &piece, const char *name, const char *text)
{
    piece.source.open(name, true);
    piece.source.copy_continues(0, 0);
    piece.source.add_text(text);
}

void add(Piece &piece, Severity severity, const char *text, const Place &place)
{
    Diagnostic &diagnostic = piece.diagnostics.emplace_back();
    diagnostic.severity    = severity;
    diagnostic.text        = text;
    diagnostic.place       = place;
}

std::string messages(Piece &piece)
{
    piece.source.index_files();
    return gcc_messages(piece, Hints{});
}

TEST(GccMessages, NothingIsSaidOfNothing)
{
    Piece piece;
    EXPECT_EQ("", messages(piece));
    add_file(piece, "a", "1\n");
    EXPECT_EQ("", messages(piece));
}

TEST(GccMessages, EachHasItsKindAndPlace)
{
    Piece piece;
    add_file(piece, "a", "12\n34\n");
    add(piece, Severity::error, "one", {0, 4, 5, NONE});
    add(piece, Severity::warning, "two", {0, 0, 1, NONE});
    add(piece, Severity::note, "three", {0, 2, 2, NONE});
    EXPECT_EQ("a:2:2: error: one\na:1:1: warning: two\na:1:3: note: three\n", messages(piece));
}

TEST(GccMessages, WithoutAPlaceThePieceIsNamed)
{
    Piece piece;
    add(piece, Severity::error, "nameless", {});
    EXPECT_EQ("error: nameless\n", messages(piece));
    add_file(piece, "a", "");
    EXPECT_EQ("a: error: nameless\n", messages(piece));
}

TEST(GccMessages, CallsLeadToAPlaceAndThenIncludes)
{
    Piece piece;
    add_file(piece, "a", "#include |b|\n");
    piece.source.include_met(0, 12);
    add_file(piece, "b", "\n$m 1\n");
    piece.source.include_met(3, 4);
    add_file(piece, "c", "~[1]\n");
    piece.source.leave();
    piece.source.copy_continues(0, 1);
    piece.source.read_line(0, 5);
    const std::int32_t outer = piece.source.call(CallKind::macro, "m", 0, 0.0, 0, 2, {});
    piece.source.replace(0, 2, 0);
    add(piece, Severity::error, "deep", {2, 0, 4, outer}); // its text is that of another file, seen through the call
    EXPECT_EQ("c:1:1: error: deep\n"
              "b:2:1: note: in the call of macro \"m\"\n"
              "a:1:1: note: included here\n",
              messages(piece));
    piece.diagnostics.clear();
    add(piece, Severity::warning, "file", {2, 0, 1, NONE});
    EXPECT_EQ("c:1:1: warning: file\n"
              "b:2:3: note: included here\n"
              "a:1:1: note: included here\n",
              messages(piece));
}

TEST(GccMessages, EveryKindOfCallIsNamed)
{
    constexpr std::pair<CallKind, const char *> kinds[] = {{CallKind::macro, "in the call of macro \"n\""},
                                                           {CallKind::argument, "in the argument \"n\""},
                                                           {CallKind::constant, "in the constant \"n\""},
                                                           {CallKind::equation, "in an equation"},
                                                           {CallKind::time, "in a time"}};
    for (const auto &[kind, text] : kinds) {
        Piece piece;
        add_file(piece, "a", "12\n");
        piece.source.read_line(0, 3);
        add(piece, Severity::note, "x", {0, 0, 1, piece.source.call(kind, "n", NONE, 0.0, 1, 2, {})});
        EXPECT_EQ(std::string{"a:1:1: note: x\na:1:2: note: "} + text + "\n", messages(piece));
    }
}

TEST(GccMessages, FurtherPlacesComeLast)
{
    Piece piece;
    add_file(piece, "a", "12\n");
    add(piece, Severity::error, "again", {0, 1, 2, NONE});
    piece.diagnostics.back().related.push_back({"defined here", {0, 0, 1, NONE}});
    EXPECT_EQ("a:1:2: error: again\na:1:1: note: defined here\n", messages(piece));
}

TEST(GccMessages, EachIsOneLine)
{
    Piece piece;
    add_file(piece, "a\nb", "12\n");
    add(piece, Severity::error, "one\ntwo", {0, 0, 1, NONE});
    piece.diagnostics.back().related.push_back({"three\nfour", {}});
    EXPECT_EQ("a b:1:1: error: one two\na b: note: three four\n", messages(piece));
}

} // namespace
} // namespace orlo::explain

// What is found behind the first error of a piece: number of the error, line, whether it was found by looking further.

#include "driver/recovery.h"

#include "diag/messages.h"
#include "gathered.h"

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <vector>

namespace orlo {
namespace {

struct Found {
    int           number;
    std::uint64_t line; // from 1; 0 for an error without a place
    bool          recovered;

    bool operator==(const Found &other) const = default;
};

void PrintTo(const Found &found, std::ostream *out)
{
    *out << "error " << found.number << " in line " << found.line << (found.recovered ? ", recovered" : "");
}

using Errors = std::vector<Found>;

Errors errors_of(const std::string &text)
{
    const test::Folder folder;
    gather::Piece      piece;
    const int          status = test::explain(folder.write("piece", text), piece);
    Errors             errors;
    for (const gather::Diagnostic &diagnostic : piece.diagnostics)
        if (diagnostic.severity == Severity::error) {
            const bool          placed = diagnostic.place.file != gather::NONE;
            const std::uint64_t line   = placed ? piece.source.position(diagnostic.place.file, diagnostic.place.begin).line + 1 : 0;
            errors.push_back({diagnostic.number, line, diagnostic.recovered});
        }
    EXPECT_EQ(errors.empty() ? 0 : 1, status);
    return errors;
}

std::string block(const char *sections) { return "i1 = 3 0 1 {\n" + std::string{sections} + "}\n"; }

const std::string GOOD    = block("p2 1\np3 1\n");
const std::string BAD     = block("p2 1\np3 y\n"); // in its third line of four
constexpr int     BAD_NUM = OUT_OF_BOUNDS;

TEST(Recovery, AGoodPieceIsNotLookedAtAgain) { EXPECT_EQ(Errors{}, errors_of(GOOD + GOOD)); }

TEST(Recovery, EveryLaterBlockIsLookedAt)
{
    EXPECT_EQ((Errors{{BAD_NUM, 3, false}}), errors_of(BAD + GOOD));
    EXPECT_EQ((Errors{{BAD_NUM, 3, false}, {BAD_NUM, 11, true}, {BAD_NUM, 15, true}}), errors_of(BAD + GOOD + BAD + BAD + GOOD));
}

TEST(Recovery, TheRestOfABlockWithAnErrorSaysNothing)
{
    EXPECT_EQ((Errors{{BAD_NUM, 3, false}, {BAD_NUM, 9, true}}), errors_of(block("p2 1\np3 y ? y\np9 [\n") + "\n" + BAD));
}

TEST(Recovery, AMissingEndOfABlockIsMadeUpForByTheNextHeader)
{
    const std::string open = "i1 = 3 0 1 {\np2 1\np3 y\n";
    EXPECT_EQ((Errors{{BAD_NUM, 3, false}}), errors_of(open + GOOD));
    EXPECT_EQ((Errors{{BAD_NUM, 3, false}, {BAD_NUM, 6, true}}), errors_of(open + BAD));
    EXPECT_EQ((Errors{{BAD_NUM, 3, false}, {BAD_NUM, 6, true}}), errors_of(open + "  i 12\t= 3 0 1 {\np2 1\np3 y\n}\n"));
    EXPECT_EQ((Errors{{BAD_NUM, 3, false}, {BAD_NUM, 6, true}, {BAD_NUM, 9, true}}), errors_of(open + open + open));
}

TEST(Recovery, WhatOnlyLooksLikeAHeaderIsNone)
{
    for (const char *line : {"i1\n", "in 3\n", "i = 3\n", "x i1 = 3\n", "i1 2 = 3\n", "/* i1 = 3 */\n"})
        EXPECT_EQ((Errors{{BAD_NUM, 3, false}, {BAD_NUM, 8, true}}),
                  errors_of(block(("p2 1\np3 y\n" + std::string{line}).c_str()) + BAD))
            << line;
}

TEST(Recovery, ABraceInACommentEndsNoBlock)
{
    for (const char *comment : {"; }\n", "/* } */\n", "/* /* } */ } */\n"})
        EXPECT_EQ((Errors{{BAD_NUM, 3, false}, {BAD_NUM, 8, true}}),
                  errors_of(block(("p2 1\np3 y\n" + std::string{comment}).c_str()) + BAD))
            << comment;
}

TEST(Recovery, WhatStandsBehindAnEndOnItsLineIsNoBlock) // as in a run, which drops it
{
    EXPECT_EQ((Errors{{BAD_NUM, 1, false}, {BAD_NUM, 2, true}}),
              errors_of("i1 = 3 0 1 { p2 1 p3 y } i2 = 3 0 1 { p2 1 p3 y }\ni3 = 3 0 1 { p2 1 p3 y }\n"));
}

TEST(Recovery, AfterAnErrorBetweenBlocksTheNextOneIsLookedAt)
{
    EXPECT_EQ((Errors{{TE_BAD_TERM1, 1, false}, {BAD_NUM, 4, true}}), errors_of("te(x)\n" + BAD));
    EXPECT_EQ((Errors{{BAD_NUM, 3, false}, {TE_BAD_TERM1, 5, true}, {BAD_NUM, 8, true}}), errors_of(BAD + "te(x)\n" + BAD));
}

TEST(Recovery, AnErrorInsideAnExpansionIsPlacedInItsText)
{
    const std::string wrong = block("p2 1\np3 $wrong\n");
    EXPECT_EQ((Errors{{BAD_NUM, 1, false}, {BAD_NUM, 1, true}, {BAD_NUM, 12, true}}),
              errors_of("#define wrong #y#\n" + wrong + wrong + BAD));
    EXPECT_EQ((Errors{{BAD_NUM, 1, false}, {BAD_NUM, 5, true}}),
              errors_of("#define wrong #y }#\ni1 = 3 0 1 {\np2 1 p3 $wrong\n" + BAD.substr(0, 13) + "p2 1 p3 y\n}\n"));
}

TEST(Recovery, AnExpansionThatFailsIsPassedOver)
{
    EXPECT_EQ(2U, errors_of(block("p2 1\np3 $none\n") + BAD).size());
    EXPECT_EQ(3U, errors_of(BAD + block("p2 1\np3 $none\n") + BAD).size());
    EXPECT_EQ(2U, errors_of(block("p2 1\np3 ~none\n") + BAD).size());
}

TEST(Recovery, WhatIsMissingAtTheEndIsTold)
{
    EXPECT_EQ((Errors{{BAD_NUM, 3, false}}), errors_of("i1 = 3 0 1 {\np2 1\np3 y\n"));
    EXPECT_EQ(2U, errors_of(BAD + "i1 = 3 0 1 {\np2 1\np3 1\n").size());
    EXPECT_EQ(2U, errors_of(BAD + "i1 = 3 0 1").size());
    EXPECT_EQ(2U, errors_of(BAD + "te(60) /* open\n").size());
}

TEST(Recovery, ErrorsAreBounded)
{
    for (const int blocks : {MOST_ERRORS - 1, MOST_ERRORS, MOST_ERRORS + 1, 3 * MOST_ERRORS}) {
        std::string text;
        for (int i = 0; i < blocks; ++i)
            text += BAD;
        const Errors errors = errors_of(text);
        ASSERT_EQ(static_cast<std::size_t>(std::min(blocks, MOST_ERRORS)), errors.size());
        EXPECT_EQ((Found{BAD_NUM, 3 + 4 * (errors.size() - 1), true}), errors.back());
    }
}

TEST(Recovery, ErrorsBetweenBlocksAreBounded)
{
    std::string text;
    for (int i = 0; i < 3 * MOST_ERRORS; ++i)
        text += "te(x)\n";
    EXPECT_EQ(static_cast<std::size_t>(MOST_ERRORS), errors_of(text).size());
}

} // namespace
} // namespace orlo

#include "explain/options.h"

#include "support.h"

#include <initializer_list>
#include <vector>

namespace orlo::explain {
namespace {

using test::screen_of;

struct Line {
    Task        task;
    Options     options;
    std::string screen;
};

Line read(std::initializer_list<const char *> arguments)
{
    std::vector<const char *> words{"orlo-explain"};
    words.insert(words.end(), arguments);
    Line line{};
    line.screen = screen_of([&] { line.task = read_options(static_cast<int>(words.size()), words.data(), line.options); });
    return line;
}

std::string refusal(std::initializer_list<const char *> arguments)
{
    const Line line = read(arguments);
    EXPECT_EQ(Task::refuse, line.task);
    constexpr std::string_view lead = "orlo-explain: ";
    constexpr std::string_view tail = "\nTry 'orlo-explain --help'.\n";
    EXPECT_TRUE(line.screen.starts_with(lead) && line.screen.ends_with(tail)) << line.screen;
    return line.screen.substr(lead.size(), line.screen.size() - lead.size() - tail.size());
}

TEST(ExplainOptions, APieceAloneIsExplainedInFull)
{
    const Line line = read({"in.orlo"});
    EXPECT_EQ(Task::explain, line.task);
    EXPECT_EQ("in.orlo", line.options.piece);
    EXPECT_EQ("-", line.options.out);
    EXPECT_FALSE(line.options.midi);
    EXPECT_TRUE(line.options.events);
    EXPECT_EQ(Format::json, line.options.format);
    EXPECT_EQ("", line.screen);
}

TEST(ExplainOptions, HintsAreAFormatOfTheirOwn)
{
    EXPECT_EQ(Format::hints, read({"--hints", "in"}).options.format);
    EXPECT_EQ(Format::gcc, read({"--hints", "--format=gcc", "in"}).options.format);
    EXPECT_EQ(Task::list_hints, read({"--list-hints"}).task);
    EXPECT_EQ("no option '--hint'", refusal({"--hint", "in"}));
}

TEST(ExplainOptions, StandInAnyOrder)
{
    for (const auto &line : {read({"-m", "--no-events", "--format=gcc", "-o", "x", "in"}),
                             read({"in", "-ox", "--format=json", "--format=gcc", "--no-events", "-m"})}) {
        EXPECT_EQ(Task::explain, line.task);
        EXPECT_EQ("in", line.options.piece);
        EXPECT_EQ("x", line.options.out);
        EXPECT_TRUE(line.options.midi);
        EXPECT_FALSE(line.options.events);
        EXPECT_EQ(Format::gcc, line.options.format);
    }
}

TEST(ExplainOptions, NothingBehindTwoDashesIsAnOption)
{
    const Line line = read({"-m", "--", "-o"});
    EXPECT_EQ(Task::explain, line.task);
    EXPECT_EQ("-o", line.options.piece);
    EXPECT_EQ("one PIECE at a time: '-m', '--'", refusal({"--", "-m", "--"}));
}

TEST(ExplainOptions, ADashAloneIsAName)
{
    EXPECT_EQ("-", read({"-"}).options.piece);
    EXPECT_EQ("-", read({"-o", "-", "in"}).options.out);
}

TEST(ExplainOptions, TheFirstQuestionIsAnswered)
{
    EXPECT_EQ(Task::help, read({"-h"}).task);
    EXPECT_EQ(Task::help, read({"in", "--help", "--wrong"}).task);
    EXPECT_EQ(Task::version, read({"-V"}).task);
    EXPECT_EQ(Task::version, read({"--version", "-h"}).task);
}

TEST(ExplainOptions, WhatIsWrongIsSaid)
{
    EXPECT_EQ("no PIECE", refusal({}));
    EXPECT_EQ("no PIECE", refusal({"-m"}));
    EXPECT_EQ("no PIECE", refusal({"--"}));
    EXPECT_EQ("the name of PIECE is empty", refusal({""}));
    EXPECT_EQ("one PIECE at a time: 'a', 'b'", refusal({"a", "b"}));
    EXPECT_EQ("one PIECE at a time: 'a', ''", refusal({"a", ""}));
    EXPECT_EQ("no option '-x'", refusal({"-x", "in"}));
    EXPECT_EQ("no option '-mo'", refusal({"-mo", "in"}));
    EXPECT_EQ("no option '--events'", refusal({"--events", "in"}));
    EXPECT_EQ("no option '--format'", refusal({"--format", "gcc", "in"}));
    EXPECT_EQ("--format is json or gcc, not 'xml'", refusal({"--format=xml", "in"}));
    EXPECT_EQ("--format is json or gcc, not ''", refusal({"--format=", "in"}));
    EXPECT_EQ("-o needs a name", refusal({"in", "-o"}));
    EXPECT_EQ("-o needs a name", refusal({"in", "-o", ""}));
}

TEST(ExplainOptions, TheHelpNamesEveryOption)
{
    const std::string help = help_text();
    for (const char *option : {"--format=json", "--format=gcc", "-h, --help", "-m ", "--no-events", "-o FILE", "-V, --version"})
        EXPECT_NE(std::string::npos, help.find(option)) << option;
}

} // namespace
} // namespace orlo::explain

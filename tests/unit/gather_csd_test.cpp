#include "gather/csd.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace orlo::gather {
namespace {

constexpr std::string_view BEFORE = "<CsoundSynthesizer>\n<CsInstruments>\ninstr 1\nendin\n</CsInstruments>\n";
constexpr std::string_view AFTER  = "</CsScore>\n</CsoundSynthesizer>\n";

std::string document(std::string_view tag, std::string_view score)
{
    return std::string{BEFORE} + std::string{tag} + std::string{score} + std::string{AFTER};
}

// the score, or what is wrong
std::string score_of(std::string_view text)
{
    CsdScore          score;
    const std::string fault = find_csd_score(text, score);
    if (!fault.empty())
        return "fault: " + fault;
    EXPECT_EQ(static_cast<std::uint64_t>(std::count(text.data(), text.data() + score.begin, '\n')), score.line);
    return std::string{text.substr(score.begin, score.end - score.begin)};
}

std::string score_with(std::string_view tag) { return score_of(document(tag, "te(60)\n")); }

TEST(ExplainCsd, TheScoreStandsBetweenTheTags)
{
    CsdScore          score;
    const std::string text = document("<CsScore bin=\"orlo\">\n", "te(60)\ni1 = 3\n");
    EXPECT_EQ("", find_csd_score(text, score));
    EXPECT_EQ(6U, score.line);
    EXPECT_EQ("te(60)\ni1 = 3\n", text.substr(score.begin, score.end - score.begin));
}

TEST(ExplainCsd, AnEmptyScoreIsOne) { EXPECT_EQ("", score_of(document("<CsScore bin=\"orlo\">\n", ""))); }

TEST(ExplainCsd, TheProgramMayHaveAFolderAndOptions)
{
    for (const char *tag :
         {"<CsScore bin=\"orlo\">\n", "  <CsScore bin=\"orlo\">\n", "\t<CsScore  bin=\"/usr/local/bin/orlo\" >\n",
          "<CsScore bin=\"orlo -s\">\n", "<CsScore bin=\"../build/ci/orlo -s -x trace\">\n", "<CsScore bin=\"orlo\t-t\">\n",
          "<CsScore bin=\"C:\\Music\\orlo.exe\">\n", "<CsScore other=\"x\" bin=\"orlo\">\n", "<CsScore bin=\"orlo\"> te(1)\n"})
        EXPECT_EQ("te(60)\n", score_with(tag)) << tag;
}

TEST(ExplainCsd, AnotherProgramsScoreIsNone)
{
    for (const char *tag : {"<CsScore>\n", "<CsScore bin=\"perl\">\n", "<CsScore bin=\"orlo-view\">\n", "<CsScore bin=\"\">\n",
                            "<CsScore bin=\"orlo/\">\n", "<CsScore bin=\"my-orlo\">\n", "<CsScore bin='orlo'>\n",
                            "<CsScore bin=\"/usr/bin/env orlo\">\n", "<CsScore>\n; bin=\"orlo\"\n"})
        EXPECT_EQ("fault: its <CsScore> does not name orlo as its program", score_with(tag)) << tag;
}

TEST(ExplainCsd, AMissingTagIsAFault)
{
    EXPECT_EQ("fault: it has no <CsScore>", score_of(BEFORE));
    EXPECT_EQ("fault: it has no <CsScore>", score_of(std::string{BEFORE} + "; <CsScore bin=\"orlo\">\n"));
    EXPECT_EQ("fault: its </CsScore> is missing", score_of(std::string{BEFORE} + "<CsScore bin=\"orlo\">\nte(60)\n"));
    EXPECT_EQ("fault: its </CsScore> is missing", score_of(std::string{BEFORE} + "<CsScore bin=\"orlo\">"));
}

TEST(ExplainCsd, LinesMayEndWithAReturn)
{
    std::string text;
    for (const char c : document("<CsScore bin=\"orlo\">\n", "te(60)\n"))
        text += c == '\n' ? "\r\n" : std::string{c};
    EXPECT_TRUE(is_csd(text));
    EXPECT_EQ("te(60)\r\n", score_of(text));
}

TEST(ExplainCsd, ADocumentMayBeginBehindOtherText)
{
    const std::string text = document("<CsScore bin=\"orlo\">\n", "te(60)\n");
    for (const char *before : {"", "\n\n", "; a comment\n", "<!-- a comment -->\n", "text with <CsoundSynthesizer> in it\n"}) {
        EXPECT_TRUE(is_csd(before + text)) << before;
        EXPECT_EQ("te(60)\n", score_of(before + text)) << before;
    }
    EXPECT_TRUE(is_csd("  <CsoundSynthesizer>"));
}

TEST(ExplainCsd, WhatStandsBeforeTheDocumentIsNotLookedAt)
{
    const std::string text = document("<CsScore bin=\"orlo\">\n", "te(60)\n");
    EXPECT_EQ("te(60)\n", score_of("<CsScore>\nan example\n</CsScore>\n" + text));
}

TEST(ExplainCsd, ATagInAComment)
{
    EXPECT_EQ("; </CsScore>\nte(60)\n", score_of(document("<CsScore bin=\"orlo\">\n", "; </CsScore>\nte(60)\n")));
}

TEST(ExplainCsd, AnInputOfOrloIsNoDocument)
{
    for (const char *text : {"", "te(60)\n", "; <CsoundSynthesizer>\n", "<CsScore bin=\"orlo\">\n</CsScore>\n"})
        EXPECT_FALSE(is_csd(text)) << text;
}

} // namespace
} // namespace orlo::gather

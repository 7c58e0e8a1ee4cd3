// Which p-field holds the pitches: the rules that the man page states, with numbers on both sides of each.

#include "score/pitch.h"
#include "score/score_reader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using namespace orlo::score;

Score recognised(const std::string &text)
{
    Score score;
    read_score(text, {}, score);
    recognise_pitch(score);
    return score;
}

// p4 of one event each
Pitch kind_of_values(std::initializer_list<const char *> values)
{
    std::string text;
    int         start = 0;
    for (const char *value : values)
        text += "i1 " + std::to_string(start++) + " 1 " + value + "\n";
    return recognised(text).pitch;
}

TEST(Pitch, IsPitchClassBelowTwelveHundredths)
{
    EXPECT_EQ(kind_of_values({"3.00", "15.11"}), Pitch::pch);
    EXPECT_EQ(kind_of_values({"8.115", "7"}), Pitch::pch);
    EXPECT_NE(kind_of_values({"2.99", "8.04"}), Pitch::pch);
    EXPECT_NE(kind_of_values({"16.01", "8.04"}), Pitch::pch);
    EXPECT_NE(kind_of_values({"8.12", "8.04"}), Pitch::pch);
    EXPECT_EQ(kind_of_values({"8", "9"}), Pitch::none); // no fraction anywhere
}

TEST(Pitch, IsOctaveNearTwelfths)
{
    EXPECT_EQ(kind_of_values({"8.25", "8.67"}), Pitch::oct);
    EXPECT_EQ(kind_of_values({"8.25", "4.29"}), Pitch::none);
    EXPECT_EQ(kind_of_values({"8.25", "8.29"}), Pitch::oct); // from 5 to 12 anything is
    EXPECT_EQ(kind_of_values({"8.29", "12.1"}), Pitch::none);
}

TEST(Pitch, IsHertzNearSemitones)
{
    EXPECT_EQ(kind_of_values({"440", "220"}), Pitch::hertz);
    EXPECT_EQ(kind_of_values({"261.6", "392"}), Pitch::hertz);
    EXPECT_EQ(kind_of_values({"440", "450"}), Pitch::none);
    EXPECT_EQ(kind_of_values({"440", "450.5"}), Pitch::hertz);
    EXPECT_EQ(kind_of_values({"40", "45.5"}), Pitch::none);
    EXPECT_EQ(kind_of_values({"440", "440"}), Pitch::none);
    EXPECT_EQ(kind_of_values({"10", "15.7"}), Pitch::none);
    EXPECT_EQ(kind_of_values({"440.5", "20001"}), Pitch::none);
}

TEST(Pitch, IsKeyWhenWhole)
{
    EXPECT_EQ(kind_of_values({"0", "127"}), Pitch::key);
    EXPECT_EQ(kind_of_values({"0", "128"}), Pitch::none);
    EXPECT_EQ(kind_of_values({"1", "24"}), Pitch::key);
    EXPECT_EQ(kind_of_values({"1", "23"}), Pitch::none);
    EXPECT_EQ(kind_of_values({"60.5", "61"}), Pitch::none);
}

TEST(Pitch, AllowsOneNumberInTwenty)
{
    std::string text;
    for (int i = 0; i < 19; ++i)
        text += "i1 " + std::to_string(i) + " 1 8.0" + std::to_string(i % 10) + "\n";
    EXPECT_EQ(recognised(text + "i1 19 1 0\n").pitch, Pitch::pch);
    EXPECT_EQ(recognised(text + "i1 19 1 0\ni1 20 1 0\n").pitch, Pitch::none);
}

TEST(Pitch, IsInTheFirstFieldOfTheBestKind)
{
    const Score first = recognised("i1 0 1 60 61\ni1 1 1 62 63\n");
    EXPECT_EQ(first.pitch_field, 4);
    const Score best = recognised("i1 0 1 60 440 8.5 8.01\ni1 1 1 62 220 8.25 8.02\n");
    EXPECT_EQ(best.pitch_field, 7);
    EXPECT_EQ(best.pitch, Pitch::pch);
    const Score none = recognised("i1 0 1 .1\n");
    EXPECT_EQ(none.pitch_field, 0);
    const Score durations = recognised("i1 0 8.01\ni1 1 8.02 60\n");
    EXPECT_EQ(durations.pitch_field, 0);
}

TEST(Pitch, MayDifferByInstrument)
{
    const Score score =
        recognised("i1 0 1 440\ni1 1 1 220\ni2 0 1 80.5 8.07\ni2 1 1 81.3 8.00\ni2 1 1 82.3 8.00\ni3 0 1 60\ni3 1 1 62\n");
    ASSERT_EQ(score.pitches.size(), 3U);
    EXPECT_EQ(score.pitches[0].pitch, Pitch::hertz);
    EXPECT_EQ(score.pitches[1].field, 5);
    EXPECT_EQ(score.pitches[2].pitch, Pitch::none); // keys alone are too weak a sign
    EXPECT_EQ(score.pitch_field, 5);                // of most events
    EXPECT_NEAR(key_of(score, score.events[0]), 69, 1e-9);
    EXPECT_NEAR(key_of(score, score.events[2]), 67, 1e-9);
    EXPECT_TRUE(std::isnan(key_of(score, score.events[5])));
}

TEST(Pitch, IsNotJudgedByInstrumentWhenThereAreTooMany)
{
    std::string text = "i1 0 1 440\ni1 1 1 220\n";
    for (int i = 2; i <= 30'000; ++i)
        text.append("i").append(std::to_string(i)).append(" 0 1 -1\n");
    EXPECT_TRUE(recognised(text).pitches.empty());
}

TEST(Pitch, HasHeights)
{
    Score score;
    read_score("i1 0 1 8.09\ni1 0 1 8.75\ni1 0 1 440\ni1 0 1 69\ni1 0 1 -5\ni1 0 1 1e30\n", {}, score);
    const auto height = [&](Pitch pitch, std::size_t event) {
        score.pitch_field = 4;
        score.pitch       = pitch;
        return key_of(score, score.events[event]);
    };
    EXPECT_NEAR(height(Pitch::pch, 0), 69, 1e-9);
    EXPECT_NEAR(height(Pitch::oct, 1), 69, 1e-9);
    EXPECT_NEAR(height(Pitch::hertz, 2), 69, 1e-9);
    EXPECT_EQ(height(Pitch::key, 3), 69);
    EXPECT_TRUE(std::isnan(height(Pitch::none, 3)));
    EXPECT_TRUE(std::isnan(height(Pitch::hertz, 4)));
    EXPECT_TRUE(std::isnan(height(Pitch::key, 5)));
}

TEST(Pitch, HasNames)
{
    for (const char *name : {"none", "pch", "oct", "hz", "key"}) {
        Pitch pitch = Pitch::none;
        EXPECT_TRUE(find_pitch(name, pitch));
        EXPECT_STREQ(pitch_name(pitch), name);
    }
    Pitch pitch = Pitch::none;
    EXPECT_FALSE(find_pitch("cps", pitch));
}

} // namespace

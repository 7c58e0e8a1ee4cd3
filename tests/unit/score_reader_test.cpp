// Readers of scores and MIDI files: values that a roll does not show, and limits that files of a sensible size do not reach.

#include "score/files.h"
#include "score/midi_reader.h"
#include "score/score_reader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>

namespace {

using namespace orlo::score;

Score score_of(std::string_view text, const Limits &limits = {})
{
    Score score;
    read_score(text, limits, score);
    return score;
}

std::vector<double> field_of(const Score &score, int field)
{
    std::vector<double> values;
    for (const Event &event : score.events)
        values.push_back(field_value(score, event, field));
    return values;
}

std::vector<double> starts_of(const Score &score)
{
    std::vector<double> starts;
    for (const Event &event : score.events)
        starts.push_back(event.start);
    return starts;
}

TEST(ScoreReader, KeepsFieldsAsTheyAreWritten)
{
    const Score score = score_of("i1.5 .5 -2 1e3 \"x\" -.25\n");
    ASSERT_EQ(score.events.size(), 1U);
    const Event &event = score.events[0];
    EXPECT_EQ(event.fields, 6);
    EXPECT_EQ(field_value(score, event, 1), 1.5);
    EXPECT_EQ(field_value(score, event, 3), -2);
    EXPECT_EQ(event.duration, 2);
    EXPECT_EQ(field_value(score, event, 4), 1000);
    EXPECT_TRUE(std::isnan(field_value(score, event, 5)));
    EXPECT_EQ(field_value(score, event, 6), -.25);
    EXPECT_TRUE(std::isnan(field_value(score, event, 7)));
    EXPECT_TRUE(std::isnan(field_value(score, event, 0)));
    EXPECT_EQ(score.field_names, (std::vector<std::string>{"p1", "p2", "p3", "p4", "p5", "p6"}));
    EXPECT_EQ(score.instruments, std::vector<std::string>{"1.5"});
    EXPECT_EQ(event.line, 1);
}

// values as Csound's own reader gives them for the same text
TEST(ScoreReader, CarriesAndRampsAsCsoundDoes)
{
    const Score score = score_of("i1 0 1 5 6\ni2 0 1 9\ni1 + . 7\ni1 ^+2 2 8 !\ni1 . . 3\n i1 ^-1 1\n4\ni1 20 1 100 6\n"
                                 "i1 22 1 np4 pp4\ni1 24 1 1 2\n");
    EXPECT_EQ(starts_of(score), (std::vector<double>{0, 0, 1, 3, 3, 2, 20, 22, 24}));
    EXPECT_EQ(field_of(score, 4), (std::vector<double>{5, 9, 7, 8, 3, 4, 100, 1, 1}));
    const std::vector<double> p5 = field_of(score, 5);
    EXPECT_EQ(p5[2], 6);
    EXPECT_TRUE(std::isnan(p5[3]));
    EXPECT_EQ(p5[7], 100);
    const Score ramps = score_of("i1 0 1 1\ni1 4 1 <\ni1 2 1 <\ni1 8 1 5\n");
    EXPECT_EQ(field_of(ramps, 4), (std::vector<double>{1, 3, 2, 5}));
}

// seconds and the ramp between them as Csound's own reader gives them
TEST(ScoreReader, TurnsBeatsIntoSecondsAsCsoundDoes)
{
    const Score score = score_of("t 0 60 4 120\ni1 0 1 1\ni1 2 1 <\ni1 6 1 2\ni1 8 1 2\n");
    EXPECT_EQ(starts_of(score), (std::vector<double>{0, 1.75, 4, 5}));
    EXPECT_EQ(score.events[0].duration, .9375);
    EXPECT_EQ(score.events[1].duration, .6875);
    EXPECT_EQ(score.events[2].duration, .5);
    EXPECT_EQ(field_value(score, score.events[1], 4), 1.4375);
    EXPECT_EQ(score.end, 5.5);
}

TEST(ScoreReader, KeepsTimesInOrderHoweverSteepATempoIs)
{
    const Score rounded = score_of("t 0 .001 1 1000000\ni1 .9999999 1e-12\n"); // its end is rounded to before its start
    ASSERT_EQ(rounded.events.size(), 1U);
    EXPECT_EQ(rounded.events[0].duration, 0);
    const Score near = score_of("t 0 60 4.9e-324 .001 1.4e-323 1000000\ni1 0 4.9e-324\ni1 4.9e-324 9.8e-324\ni1 1 1\n");
    ASSERT_EQ(near.events.size(), 3U);
    EXPECT_EQ(starts_of(near)[0], 0);
    EXPECT_GE(starts_of(near)[1], 0);
    EXPECT_NEAR(starts_of(near)[2], .00006, 1e-12);
    for (const Event &event : near.events)
        EXPECT_TRUE(event.duration >= 0 && event.duration < 1e-3);
}

TEST(ScoreReader, TakesNumbersUpToTheLargest)
{
    const Score score =
        score_of("i1 0 1 1e300 -1e300\ni1 0 1 < <\ni1 1 1 < <\ni1 2 1 -1e300 1e300\ni2 0 1 1.0000001e300 -1.7e308\n");
    EXPECT_EQ(field_value(score, score.events[1], 4), 1e300);
    EXPECT_EQ(field_value(score, score.events[2], 4), 0);
    EXPECT_EQ(field_value(score, score.events[3], 5), 1e300);
    EXPECT_TRUE(std::isnan(field_value(score, score.events[4], 4)));
    EXPECT_TRUE(std::isnan(field_value(score, score.events[4], 5)));
    ASSERT_EQ(score.troubles.size(), 2U);
    EXPECT_EQ(score.troubles[0].text, "p4 is beyond 1e300, and left out");
    EXPECT_EQ(score.troubles[1].line, 5);
}

TEST(ScoreReader, CarriesNothingFromASectionWhoseEventsWereLeftOut)
{
    const Score score = score_of("i1 0 -1e12 5\ni1 1e12 1 6\ns\ni1 0 1 .\n");
    EXPECT_EQ(score.events.size(), 2U); // the third would start after 1e12 seconds
    ASSERT_EQ(score.troubles.size(), 2U);
    EXPECT_EQ(score.troubles[0].text, "p4 can't be carried: no event before it has one");
    EXPECT_EQ(score.troubles[1].text, "an event beyond 1e12 seconds is left out");
}

TEST(ScoreReader, DropsInstrumentsWithoutEvents)
{
    const Score score = score_of("i3 x 1\ni\"a\" 0 1\ni4 0\ni2 0 1\n");
    EXPECT_EQ(score.instruments, (std::vector<std::string>{"\"a\"", "2"}));
    EXPECT_EQ(score.events[1].instrument, 1);
}

TEST(ScoreReader, ReadsAsManyFieldsAsItMay)
{
    const Limits limits{1000, 8};
    const Score  at = score_of("i1 0 1 2\ni1 1 1 2\n", limits);
    EXPECT_EQ(at.values.size(), 8U);
    EXPECT_TRUE(at.troubles.empty());
    for (const char *text : {"i1 0 1 2\ni1 1 1 2\ni1 2 1 2\n", "i1 0 1 2\ni1 1 1 2 3\ni1 2 1\n", "i1 0 1 2 3\ni1 1\ni1 1\n"}) {
        const Score past = score_of(text, limits);
        EXPECT_LE(past.values.size(), 8U);
        ASSERT_EQ(past.troubles.size(), 1U) << text;
        EXPECT_EQ(past.troubles[0].text, "more than 8 p-fields: the rest of the score is left out");
    }
}

TEST(ScoreReader, TellsOnceThatThereAreTooManyFields)
{
    const Score past = score_of("i1 0 1 2\ni1 1 1 2\ni1 2 1 2 3 4 5\n", {1000, 9});
    EXPECT_EQ(past.events.size(), 2U);
    ASSERT_EQ(past.troubles.size(), 1U);
}

TEST(ScoreReader, FillsAsManyRampsAndReferencesAsItMay)
{
    const Limits limits{1000, 1000, 3};
    const Score  at = score_of("i1 0 1 1\ni1 1 1 <\ni1 2 1 np4\ni1 3 1 pp4\ns\ni1 0 1 <\n", limits);
    EXPECT_EQ(at.events.size(), 5U);
    const Score past = score_of("i1 0 1 < < < <\n", limits);
    EXPECT_TRUE(past.events.empty());
    ASSERT_EQ(past.troubles.size(), 1U);
    EXPECT_EQ(past.troubles[0].text, "more than 3 ramps and references in one section: the rest of the score is left out");
    const Score carried = score_of("i1 0 1 < <\ni1 + 1\ni1 + 1\n", limits);
    EXPECT_EQ(carried.events.size(), 1U);
}

TEST(ScoreReader, RefersToEventsOfOneInstrumentAlone)
{
    const Score score = score_of("i1 0 1 pp4\ni1 1 1 np4\ni2 2 1 5\ni2 3 1 pp9999\n");
    EXPECT_EQ(score.troubles.size(), 3U);
    EXPECT_TRUE(std::isnan(field_value(score, score.events[1], 4)));
}

std::string midi_file(const std::string &track)
{
    using namespace std::string_literals;
    return "MThd\0\0\0\6\0\0\0\1\1\xe0"s + "MTrk\0\0\0"s + static_cast<char>(track.size()) + track;
}

TEST(MidiReader, ReadsAsManyNotesAsItMay)
{
    using namespace std::string_literals;
    const std::string bytes = midi_file("\0\x90\x3c\x40\x0a\x3c\0\0\x3d\x41\x0a\x3d\0\0\xff\x2f\0"s);
    Score             at;
    EXPECT_TRUE(read_midi(bytes, {1000, 10}, at));
    EXPECT_EQ(at.events.size(), 2U);
    EXPECT_TRUE(at.troubles.empty());
    EXPECT_EQ(field_of(at, 1), (std::vector<double>{1, 1}));
    EXPECT_EQ(field_of(at, 4), (std::vector<double>{60, 61}));
    EXPECT_EQ(field_of(at, 5), (std::vector<double>{64, 65}));
    EXPECT_DOUBLE_EQ(at.events[1].start, 10 / 960.0);
    EXPECT_EQ(at.field_names[4], "velocity");
    Score past;
    EXPECT_TRUE(read_midi(bytes, {1000, 9}, past));
    EXPECT_EQ(past.events.size(), 1U);
    ASSERT_EQ(past.troubles.size(), 1U);
    EXPECT_EQ(past.troubles[0].text, "track 1: more than 1 notes: the rest is left out");
}

TEST(Door, LetsNothingInThatIsOutOfBounds)
{
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    Score            score;
    score.values = {1, 0, 1, -LARGEST_VALUE, none, std::nextafter(LARGEST_VALUE, HUGE_VAL), -HUGE_VAL};
    for (const double time : {0.0, 1.0, LARGEST_TIME}) {
        EXPECT_TRUE(enters(score, {0, 5, 0, time, 0, 1}, "")) << time;
        EXPECT_TRUE(enters(score, {0, 5, 0, 0, time, 1}, "")) << time;
    }
    EXPECT_TRUE(score.troubles.empty());
    for (const double time : {-4.9e-324, std::nextafter(LARGEST_TIME, HUGE_VAL), HUGE_VAL, -HUGE_VAL, none}) {
        EXPECT_FALSE(enters(score, {0, 5, 0, time, 0, 1}, "")) << time;
        EXPECT_FALSE(enters(score, {0, 5, 0, 0, time, 1}, "")) << time;
    }
    EXPECT_EQ(score.troubles.size(), 10U);
    EXPECT_TRUE(enters(score, {0, 7, 0, 0, 1, 4}, "track 3: "));
    ASSERT_EQ(score.troubles.size(), 12U);
    EXPECT_EQ(score.troubles[10].text, "track 3: p6 is beyond 1e300, and left out");
    EXPECT_EQ(score.troubles[11].text, "track 3: p7 is beyond 1e300, and left out");
    EXPECT_EQ(score.values[3], -LARGEST_VALUE);
    EXPECT_TRUE(std::isnan(score.values[5]) && std::isnan(score.values[6]));
}

// a track of rests of 2^28 - 1 ticks, each 16.777215 seconds, and a note
std::string long_track(int rests)
{
    using namespace std::string_literals;
    std::string track = "\0\xff\x51\3\xff\xff\xff"s;
    for (int i = 0; i < rests; ++i)
        track += "\xff\xff\xff\x7f\xc0\0"s;
    track += "\0\x90\x3c\x40\1\x3c\0\0\xff\x2f\0"s;
    const auto size = track.size();
    return "MThd\0\0\0\6\0\0\0\1\0\1MTrk\0\0"s + static_cast<char>(size / 256) + static_cast<char>(size % 256) + track;
}

TEST(MidiReader, TakesTimesUpToTheLargest)
{
    Score at;
    EXPECT_TRUE(read_midi(long_track(222), {}, at));
    ASSERT_EQ(at.events.size(), 1U);
    EXPECT_NEAR(at.events[0].start, 222 * 268435455.0 * 16.777215, 1);
    EXPECT_TRUE(at.troubles.empty());
    Score past;
    EXPECT_TRUE(read_midi(long_track(223), {}, past));
    EXPECT_TRUE(past.events.empty() && past.values.empty() && past.instruments.empty());
    ASSERT_EQ(past.troubles.size(), 1U);
    EXPECT_EQ(past.troubles[0].text, "track 1: an event beyond 1e12 seconds is left out");
}

TEST(MidiReader, TellsNoWrongCountOfTracksWhenNotesAreLeftOut)
{
    using namespace std::string_literals;
    std::string bytes = midi_file("\0\x90\x3c\x40\x0a\x3c\0\0\x3d\x41\x0a\x3d\0\0\xff\x2f\0"s);
    bytes[11]         = 3; // tracks
    Score past;
    EXPECT_TRUE(read_midi(bytes, {1000, 9}, past));
    EXPECT_EQ(past.troubles.size(), 1U);
}

TEST(MidiReader, ReadsAsManyTracksAsAHeaderCanTell)
{
    using namespace std::string_literals;
    std::string bytes = "MThd\0\0\0\6\0\1\xff\xff\1\xe0"s;
    for (int i = 0; i < 65535; ++i)
        bytes += "MTrk\0\0\0\4\0\xff\x2f\0"s;
    Score at;
    EXPECT_TRUE(read_midi(bytes, {}, at));
    EXPECT_TRUE(at.troubles.empty());
    Score past;
    EXPECT_TRUE(read_midi(bytes + "MTrk\0\0\0\4\0\xff\x2f\0"s, {}, past));
    ASSERT_EQ(past.troubles.size(), 1U);
    EXPECT_EQ(past.troubles[0].text, "what stands behind 65535 tracks is left out");
}

TEST(MidiReader, SurvivesEveryShorterFile)
{
    using namespace std::string_literals;
    const std::string bytes = midi_file("\0\x90\x3c\x40\x0a\x3c\0\0\xff\x51\3\1\2\3\0\xf0\1\xf7\0\xff\x2f\0"s);
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        Score score;
        EXPECT_EQ(read_midi(std::string_view{bytes}.substr(0, length), {}, score), length >= 14) << length;
        EXPECT_FALSE(score.troubles.empty() && length > 0) << length;
    }
}

TEST(Files, ReadsAsManyBytesAsItMay)
{
    const std::string name = testing::TempDir() + "/view-bytes";
    std::ofstream{name} << "12345678";
    std::string bytes;
    EXPECT_EQ(read_file(name, 8, bytes), "");
    EXPECT_EQ(bytes, "12345678");
    EXPECT_EQ(read_file(name, 7, bytes), "it has more than 7 bytes");
    EXPECT_EQ(read_file("/dev/zero", 100'000, bytes), "it has more than 100000 bytes");
    EXPECT_EQ(read_file("/dev/null", 0, bytes), "");
    EXPECT_EQ(bytes, "");
    std::remove(name.c_str());
}

TEST(Files, KnowsKinds)
{
    EXPECT_EQ(kind_of("a.orlo", ""), Kind::orlo);
    EXPECT_EQ(kind_of("a.orlo", "MThd"), Kind::midi);
    EXPECT_EQ(kind_of("a", "; i1 = 3\n i 12 ="), Kind::orlo);
    EXPECT_EQ(kind_of("a", "I1=4"), Kind::orlo);
    EXPECT_EQ(kind_of("a", "i1 0 1 = 4\ni\ni- = 1\ni1"), Kind::score);
    EXPECT_EQ(kind_of("a", ""), Kind::score);
}

} // namespace

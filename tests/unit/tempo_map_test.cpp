#include "events/tempo_map.h"

#include "base/clock.h"
#include "base/switches.h"
#include "events/block.h"
#include "support.h"

#include <cmath>
#include <limits>

namespace orlo {
namespace {

using test::screen_of;
using test::wide;

class TempoMap : public testing::Test {
  protected:
    void SetUp() override { reset(); }
    void TearDown() override { reset(); }

    static void reset()
    {
        reset_tempos();
        reset_clock();
        reset_switches();
        reset_block();
    }

    static void add(float stime, float etime, float stempo, float etempo, float type = 0.0F, float vcurve = 1.0F)
    {
        ASSERT_TRUE(add_tempo({stime, stempo, etime, etempo, type, vcurve}));
    }
};

TEST_F(TempoMap, IsSixtyEverywhereAtTheStart)
{
    for (const float beat : {-5.0F, 0.0F, 0.5F, 10000.0F})
        EXPECT_EQ(60.0, find_tempo(beat)) << beat;
}

TEST_F(TempoMap, ASegmentMovesFromItsStartToItsEnd)
{
    add(0.0F, 8.0F, 60.0F, 120.0F);
    EXPECT_EQ(60.0, find_tempo(-1.0F));
    EXPECT_EQ(60.0, find_tempo(0.0F));
    EXPECT_EQ(75.0, find_tempo(2.0F));
    EXPECT_EQ(90.0, find_tempo(4.0F));
    EXPECT_EQ(120.0, find_tempo(8.0F));
    EXPECT_EQ(120.0, find_tempo(100.0F));
}

TEST_F(TempoMap, ASegmentFollowsItsCurve)
{
    add(0.0F, 8.0F, 60.0F, 120.0F, 2.0F);
    EXPECT_NEAR(60.0 + 60.0 * std::sqrt(0.5), find_tempo(4.0F), 1e-5);
    add(0.0F, 8.0F, 60.0F, 120.0F, 3.0F, 3.0F);
    EXPECT_EQ(67.5, find_tempo(4.0F));
    add(0.0F, 8.0F, 60.0F, 120.0F, 1.9F); // the code is a whole number
    EXPECT_EQ(75.0, find_tempo(4.0F));
}

TEST_F(TempoMap, ASegmentWithoutLengthIsAStep)
{
    add(4.0F, 4.0F, 100.0F, 150.0F);
    EXPECT_EQ(60.0, find_tempo(3.999F));
    EXPECT_EQ(150.0, find_tempo(4.0F));
    EXPECT_EQ(150.0, find_tempo(5.0F));
}

TEST_F(TempoMap, TheLastSegmentThatHasStartedCounts)
{
    add(4.0F, 8.0F, 100.0F, 200.0F);
    add(6.0F, 10.0F, 300.0F, 400.0F);
    EXPECT_EQ(125.0, find_tempo(5.0F));
    EXPECT_EQ(300.0, find_tempo(6.0F));
    EXPECT_EQ(350.0, find_tempo(8.0F));
    EXPECT_EQ(0, curtempo(-3.0F));
    EXPECT_EQ(0, curtempo(3.9F));
    EXPECT_EQ(1, curtempo(4.0F));
    EXPECT_EQ(1, curtempo(5.9F));
    EXPECT_EQ(2, curtempo(6.0F));
    EXPECT_EQ(2, curtempo(1e6F));
}

TEST_F(TempoMap, ALookupDoesNotSort)
{
    add(8.0F, 8.0F, 80.0F, 80.0F);
    add(4.0F, 4.0F, 40.0F, 40.0F);
    EXPECT_EQ(60.0, find_tempo(5.0F)); // stopped by the segment at 8
    EXPECT_EQ(40.0, find_tempo(9.0F));
}

TEST_F(TempoMap, BeforeTheFirstSegmentNoOtherCounts)
{
    add(-2.0F, -2.0F, 90.0F, 90.0F);
    EXPECT_EQ(0, curtempo(-1.0F));
    EXPECT_EQ(1, curtempo(0.0F));
}

TEST_F(TempoMap, ALookupLeavesTheTempoAlone)
{
    add(0.0F, 8.0F, 90.0F, 90.0F);
    EXPECT_EQ(90.0, find_tempo(1.0F));
    EXPECT_EQ(60.0F, TEMPO);
}

TEST_F(TempoMap, BeatsBecomeSecondsAtTheTempoOfTheirStart)
{
    add(0.0F, 8.0F, 60.0F, 120.0F);
    CBEATS = 4.0F;
    EXPECT_EQ(static_cast<float>(60.0 / 90.0 * 100.0), to_tempo(100.0F));
    EXPECT_EQ(90.0F, TEMPO);
    CBEATS = 8.0F;
    EXPECT_EQ(0.5F, to_tempo(1.0F));
    EXPECT_EQ(-1.0F, to_tempo(-2.0F));
    EXPECT_EQ(120.0F, TEMPO);
}

TEST_F(TempoMap, SecondsAreComputedIn64Bits)
{
    add(0.0F, 1.0F, 70.0F, 70.0F);
    int differing = 0;
    for (float beats = 1.0F; beats <= 100.0F; beats += 1.0F) {
        EXPECT_EQ(static_cast<float>(60.0 / 70.0 * wide(beats)), to_tempo(beats)) << beats;
        differing += to_tempo(beats) != 60.0F / 70.0F * beats ? 1 : 0;
    }
    EXPECT_GT(differing, 0);
}

TEST_F(TempoMap, AConversionCanBeTraced)
{
    SHOW_TEMPOS = true;
    add(0.0F, 8.0F, 60.0F, 120.0F);
    CBEATS = 4.0F;
    EXPECT_EQ("\n  > Beat    4.00 Tempo =   90.00 Val =    1.50 (bts)    1.00 (secs)",
              screen_of([] { EXPECT_EQ(1.0F, to_tempo(1.5F)); }));
    SHOW_TEMPOS = false;
    EXPECT_EQ("", screen_of([] { EXPECT_EQ(1.0F, to_tempo(1.5F)); }));
}

TEST_F(TempoMap, ASegmentAtZeroReplacesTheFirst)
{
    add(4.0F, 8.0F, 100.0F, 100.0F);
    add(0.0F, 2.0F, 30.0F, 40.0F);
    EXPECT_EQ(2, TOT_TEMPOS);
    EXPECT_EQ(30.0F, TEMPO_LIST[0].stempo);
    EXPECT_EQ(100.0F, TEMPO_LIST[1].stempo);
}

TEST_F(TempoMap, HoldsFiftySegments)
{
    for (int i = 1; i < 50; ++i)
        add(static_cast<float>(i), static_cast<float>(i), 60.0F, static_cast<float>(i));
    EXPECT_EQ(50, TOT_TEMPOS);
    EXPECT_FALSE(add_tempo({50.0F, 60.0F, 50.0F, 60.0F, 0.0F, 1.0F}));
    EXPECT_EQ(50, TOT_TEMPOS);
    EXPECT_EQ(49.0, find_tempo(1000.0F));
    EXPECT_EQ(49, curtempo(1000.0F));
    EXPECT_TRUE(add_tempo({0.0F, 70.0F, 0.0F, 70.0F, 0.0F, 1.0F})); // still replaces the first
    EXPECT_EQ(70.0, find_tempo(0.5F));
}

TEST_F(TempoMap, ARunStartsWithTheFirstMap)
{
    add(0.0F, 8.0F, 90.0F, 90.0F);
    add(8.0F, 9.0F, 90.0F, 100.0F);
    reset_tempos();
    EXPECT_EQ(1, TOT_TEMPOS);
    EXPECT_EQ(60.0, find_tempo(8.5F));
    EXPECT_EQ(0.0F, TEMPO_LIST[1].stime);
}

TEST_F(TempoMap, AnOverlapIsWarnedOf)
{
    add(0.0F, 4.0F, 60.0F, 60.0F);
    add(2.0F, 6.0F, 90.0F, 90.0F);
    add(6.0F, 7.0F, 90.0F, 90.0F);
    add(6.5F, 7.0F, 90.0F, 90.0F);
    EXPECT_EQ("\nWARNING: Tempo #2 conflicts with previous tempo's end time!"
              "\nWARNING: Tempo #4 conflicts with previous tempo's end time!",
              screen_of(check_tempos));
}

TEST_F(TempoMap, TouchingSegmentsAreNoOverlap)
{
    add(0.0F, 4.0F, 60.0F, 60.0F);
    add(4.0F, 6.0F, 90.0F, 90.0F);
    EXPECT_EQ("", screen_of(check_tempos));
}

TEST_F(TempoMap, AnOverlapIsTestedWithTheSegmentBeforeAlone)
{
    add(0.0F, 100.0F, 60.0F, 60.0F);
    add(2.0F, 3.0F, 90.0F, 90.0F);
    add(4.0F, 6.0F, 90.0F, 90.0F);
    EXPECT_EQ("\nWARNING: Tempo #2 conflicts with previous tempo's end time!", screen_of(check_tempos));
}

TEST_F(TempoMap, IsListedWithALetterForEachCurve)
{
    add(0.0F, 1.0F, 60.0F, 61.0F, 0.0F);
    for (int code = 1; code < 6; ++code)
        add(static_cast<float>(code), 9.0F, 60.0F, 61.0F, static_cast<float>(code), 2.5F);
    EXPECT_EQ("\n  Stored Tempos (There are 6 defs):"
              "\n\t1: Stime    0.00, Etime    1.00, Stempo   60.00, Etempo   61.00, Type F"
              "\n\t2: Stime    1.00, Etime    9.00, Stempo   60.00, Etempo   61.00, Type E"
              "\n\t3: Stime    2.00, Etime    9.00, Stempo   60.00, Etempo   61.00, Type L"
              "\n\t4: Stime    3.00, Etime    9.00, Stempo   60.00, Etempo   61.00, Type U, Vcurve =    2.50"
              "\n\t5: Stime    4.00, Etime    9.00, Stempo   60.00, Etempo   61.00, Type S"
              "\n\t6: Stime    5.00, Etime    9.00, Stempo   60.00, Etempo   61.00, Type X\n",
              screen_of(print_tempos));
}

TEST_F(TempoMap, TheFirstMapIsListedAsE)
{
    EXPECT_EQ("\n  Stored Tempos (There are 1 defs):"
              "\n\t1: Stime    0.00, Etime    0.00, Stempo   60.00, Etempo   60.00, Type E\n",
              screen_of(print_tempos));
}

TEST_F(TempoMap, ATempoIsFromOneTo4000)
{
    for (const float tempo : {1.0F, 60.0F, 4000.0F})
        EXPECT_TRUE(good_tempo(tempo)) << tempo;
    for (const float tempo : {0.9999F, 0.0F, -60.0F, 4000.5F, std::numeric_limits<float>::infinity(), std::nanf("")})
        EXPECT_FALSE(good_tempo(tempo)) << tempo;
}

TEST_F(TempoMap, ATimeIsFromZeroTo10000)
{
    for (const float beats : {0.0F, 0.001F, 10000.0F})
        EXPECT_TRUE(good_time(beats)) << beats;
    for (const float beats : {-0.001F, 10000.5F, -std::numeric_limits<float>::infinity(), std::nanf("")})
        EXPECT_FALSE(good_time(beats)) << beats;
}

} // namespace
} // namespace orlo

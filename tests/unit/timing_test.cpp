#include "events/timing.h"

#include "diag/messages.h"
#include "diag/report.h"
#include "events/tempo_map.h"
#include "words/keywords.h"
#include "support.h"

#include <cmath>
#include <vector>

namespace orlo {
namespace {

using test::draws_of;
using test::line_of;
using test::screen_of;
using test::wide;

class Timing : public testing::Test {
  protected:
    void SetUp() override { reset(); }
    void TearDown() override
    {
        FreeListNodes(list);
        FreeQNodes(queue);
        reset();
    }

    static void reset()
    {
        STIME = SBEAT = BEATS = ETIME = CBEATS = LAST_VAL = MAX_DEV = MAX_DEV2 = 0.0F;
        EVENTS = EVENT_NO = 0;
        P_NO              = 0;
        IN_TYPE           = TYPE_RE;
        OUT_TYPE          = TYPE_RE;
        IN_LOOP = NX = IS_FUSED = WROTE_DATA = 0;
        MAX_PFIELDS                          = 5;
        LUT                                  = nullptr;
        PFACTOR                              = 1.0F;
        TEMPO                                = 60.0F;
        TOT_TEMPOS                           = 1;
        TEMPO_LIST[0]                        = {0.0F, 60.0F, 0.0F, 60.0F, 1.0F, 0.0F};
        SUPRESS                              = 0;
    }

    // events of equal time spans, the cursor before the first of them
    void fill(int count, float span)
    {
        std::int32_t fused = 0;
        for (int i = 0; i < count; ++i)
            ASSERT_EQ(1, InsertBegTime(list, MAX_PFIELDS, fused, span, 0.0F, static_cast<float>(i)));
        cursor = list;
        LUT    = list;
    }

    // the duration that a p3 value gives an event of a time span
    float p3(float value, float span, const char *screen = "")
    {
        FreeListNodes(list);
        fill(1, span);
        EXPECT_EQ(screen, screen_of([&] { store_p3(cursor, in, value); })) << value;
        return list->dur;
    }

    std::vector<float> values() const
    {
        std::vector<float> all;
        const Event       *event = list;
        do {
            event = event->next;
            all.push_back(event->pf[0]);
        } while (event != list);
        return all;
    }

    using Floats = std::vector<float>;

    Event     *list   = nullptr;
    Event     *cursor = nullptr;
    QueueNode *queue  = nullptr;
    Input      in     = line_of("p3 x");
};

struct P3 {
    float  value;
    P3Code code;
    double amount;
};

TEST_F(Timing, P3CodesAreClosedBelowAndOpenAbove)
{
    constexpr P3 expected[] = {
        {0.0F, P3Code::factor, 0.0},      {0.5F, P3Code::factor, 0.5},         {199.99F, P3Code::factor, 199.99},
        {200.0F, P3Code::longer, 0.0},    {201.0F, P3Code::longer, 1.0},       {299.99F, P3Code::longer, 99.99},
        {300.0F, P3Code::shorter, 0.0},   {300.5F, P3Code::shorter, 0.5},      {399.99F, P3Code::shorter, 99.99},
        {400.0F, P3Code::beats, 0.0},     {402.0F, P3Code::beats, 2.0},        {999.99F, P3Code::beats, 599.99},
        {1000.0F, P3Code::seconds, 0.0},  {1002.5F, P3Code::seconds, 2.5},     {1e9F, P3Code::seconds, 999999000.0},
        {-0.5F, P3Code::factor, -0.5},    {-199.99F, P3Code::factor, -199.99}, {-201.0F, P3Code::longer, -1.0},
        {-300.5F, P3Code::shorter, -0.5}, {-400.25F, P3Code::beats, -0.25},    {-1002.5F, P3Code::seconds, -2.5},
    };
    for (const P3 &e : expected) {
        P3Code code{};
        EXPECT_NEAR(e.amount, wide(extract_p3val(code, e.value)), std::abs(e.amount) * 1e-6) << e.value;
        EXPECT_EQ(e.code, code) << e.value;
    }
}

TEST_F(Timing, AP3FactorMultipliesTheTimeSpan)
{
    EXPECT_EQ(0.5F, p3(0.5F, 1.0F));
    EXPECT_EQ(-3.0F, p3(-1.0F, 3.0F));
    EXPECT_EQ(0.0F, p3(0.0F, 3.0F));
    EXPECT_FLOAT_EQ(399.98F, p3(199.99F, 2.0F));
}

TEST_F(Timing, P3From200IsAddedToTheTimeSpan)
{
    EXPECT_EQ(2.0F, p3(201.0F, 1.0F));
    EXPECT_EQ(3.0F, p3(200.0F, 3.0F));
    EXPECT_EQ(2.0F, p3(-201.0F, 3.0F));
}

TEST_F(Timing, P3From300IsTakenOffAndWarnsWhenTheEventSounds)
{
    EXPECT_EQ(0.5F, p3(300.5F, 1.0F, "\nWARNING: P3 Duration < 0! (Event turned into rest...)"));
    EXPECT_EQ(-0.5F, p3(301.5F, 1.0F));
    EXPECT_EQ(0.0F, p3(301.0F, 1.0F));
    SUPRESS = 1;
    EXPECT_EQ(0.5F, p3(300.5F, 1.0F));
}

TEST_F(Timing, P3From400IsInBeatsOfTheTempo)
{
    TEMPO = 120.0F;
    EXPECT_EQ(1.0F, p3(402.0F, 7.0F));
    EXPECT_EQ(-0.5F, p3(-401.0F, 7.0F));
}

TEST_F(Timing, P3From1000IsInSeconds)
{
    TEMPO = 120.0F;
    EXPECT_EQ(2.5F, p3(1002.5F, 7.0F));
    EXPECT_EQ(-2.0F, p3(-1002.0F, 7.0F));
}

TEST_F(Timing, P3IsMultipliedByTheFactor)
{
    PFACTOR = 4.0F;
    EXPECT_EQ(10.0F, p3(1002.5F, 7.0F));
    EXPECT_EQ(2.0F, p3(0.5F, 1.0F));
}

TEST_F(Timing, P3GoesToTheNextEventAndMarksTheSection)
{
    fill(2, 1.0F);
    EXPECT_EQ(P3Code::seconds, store_p3(cursor, in, 1005.0F));
    EXPECT_EQ(list->next, cursor);
    EXPECT_EQ(1, WROTE_DATA);
    EXPECT_EQ(P3Code::factor, store_p3(cursor, in, 0.25F));
    EXPECT_EQ(list, cursor);
    EXPECT_EQ(5.0F, list->next->dur);
    EXPECT_EQ(0.25F, list->dur);
}

TEST_F(Timing, P3TakesTwoDraws)
{
    for (const float value : {0.5F, 201.0F, 402.0F, 1001.0F}) {
        fill(1, 1.0F);
        EXPECT_EQ(2, draws_of({3}, [&] { store_p3(cursor, in, value); })) << value;
        FreeListNodes(list);
    }
}

TEST_F(Timing, P3IsDeviatedByBothDeviationsInTurn)
{
    MAX_DEV  = 0.5F;
    MAX_DEV2 = 1.0F;
    fill(1, 1.0F);
    seed_draws(1);
    const float u1 = draw_uniform();
    const float u2 = draw_uniform();
    seed_draws(1);
    store_p3(cursor, in, 1010.0F);
    const float once = u1 * 5.0F - 2.5F + 10.0F;
    EXPECT_FLOAT_EQ(u2 * once - 0.5F * once + once, list->dur);
}

TEST_F(Timing, ABlockInBeatsIsFullExactlyAtItsEnd)
{
    SBEAT  = 8.0F;
    ETIME  = 4.0F;
    CBEATS = 11.999F;
    EXPECT_EQ(0, out_of_time());
    CBEATS = 12.0F;
    EXPECT_EQ(1, out_of_time());
    CBEATS = 12.5F;
    EXPECT_EQ(1, out_of_time());
}

TEST_F(Timing, ABlockInEventsIsFullByTheirNumber)
{
    EVENTS   = 4;
    CBEATS   = 1e9F;
    EVENT_NO = 3;
    EXPECT_EQ(0, out_of_time());
    EVENT_NO = 4;
    EXPECT_EQ(1, out_of_time());
    EVENT_NO = 5;
    EXPECT_EQ(1, out_of_time());
}

TEST_F(Timing, P2StandsStillWhenItHasNotGrown)
{
    P_NO   = 2;
    CBEATS = 5.0F;
    EXPECT_EQ(1, p2_stands_still(5.0F));
    EXPECT_EQ(1, p2_stands_still(6.0F));
    EXPECT_EQ(0, p2_stands_still(4.0F));
    EVENTS = 3;
    EXPECT_EQ(0, p2_stands_still(5.0F));
    EVENTS = 0;
    P_NO   = 4;
    EXPECT_EQ(0, p2_stands_still(5.0F));
}

TEST_F(Timing, AP2WithoutEndIsReported)
{
    in.line_no = 17;
    EXPECT_EQ("\n\nERROR: Line 17: P2 never reaches the end of the i-block!\n",
              screen_of([&] { EXPECT_EQ(TEXT_REPORTED, never_ends(in)); }));
}

TEST_F(Timing, PitchesAreRoundedToSemitones)
{
    for (const std::int32_t type : {std::int32_t{TYPE_NO}, std::int32_t{TYPE_OP}}) {
        IN_TYPE = type;
        NX      = 0;
        EXPECT_EQ(49.0F, adjust(48.5F)) << type;
        EXPECT_EQ(-2.0F, adjust(-2.5F)) << type;
        NX = 1;
        EXPECT_EQ(48.5F, adjust(48.5F)) << type;
    }
}

TEST_F(Timing, OtherTypesAreNotRounded)
{
    for (const std::int32_t type : {TYPE_RE, TYPE_IN, TYPE_DB, TYPE_OD, TYPE_RH, TYPE_HZ}) {
        IN_TYPE = type;
        EXPECT_EQ(48.5F, adjust(48.5F)) << type;
    }
}

TEST_F(Timing, ALoopOpensAndCloses)
{
    EXPECT_EQ(1, set_loop('<'));
    EXPECT_EQ(1, IN_LOOP);
    EXPECT_EQ(1, set_loop('>'));
    EXPECT_EQ(0, IN_LOOP);
}

TEST_F(Timing, ALoopDoesNotOpenTwice)
{
    IN_LOOP = 1;
    EXPECT_EQ(0, set_loop('<'));
    EXPECT_EQ(1, IN_LOOP);
}

TEST_F(Timing, ALoopDoesNotOpenInsideAChord)
{
    IS_FUSED = 1;
    EXPECT_EQ(0, set_loop('<'));
    EXPECT_EQ(0, IN_LOOP);
}

TEST_F(Timing, OnlyAnOpenLoopCloses)
{
    EXPECT_EQ(0, set_loop('>'));
    EXPECT_EQ(0, IN_LOOP);
}

TEST_F(Timing, AnyOtherMarkClosesALoop)
{
    IN_LOOP = 1;
    EXPECT_EQ(1, set_loop('}'));
    EXPECT_EQ(0, IN_LOOP);
    EXPECT_EQ(1, set_loop('}'));
}

TEST_F(Timing, ANewSectionStartsAfresh)
{
    fill(2, 1.0F);
    std::int32_t fused = 1;
    ASSERT_NE(0, InsertBegTime(list, 2, fused, 0.0F, 0.0F, 0.0F)); // an event with a code
    ASSERT_EQ(1, list->code + list->next->code);
    P_NO     = 4;
    EVENT_NO = 9;
    IN_TYPE  = TYPE_NO;
    OUT_TYPE = TYPE_HZ;
    IS_FUSED = IN_LOOP = WROTE_DATA = 1;
    PFACTOR                         = 2.0F;
    MAX_DEV                         = 0.5F;
    MAX_DEV2                        = 0.5F;
    STIME                           = 3.0F;
    CBEATS                          = 7.0F;
    TEMPO                           = 99.0F;
    reset_pfield(list);
    EXPECT_EQ(0U, EVENT_NO);
    EXPECT_EQ(TYPE_RE, IN_TYPE);
    EXPECT_EQ(TYPE_RE, OUT_TYPE);
    EXPECT_EQ(0, IS_FUSED);
    EXPECT_EQ(0, IN_LOOP);
    EXPECT_EQ(0, WROTE_DATA);
    EXPECT_EQ(1.0F, PFACTOR);
    EXPECT_EQ(0.0F, MAX_DEV2);
    EXPECT_EQ(0, list->code);
    EXPECT_EQ(0, list->next->code);
    EXPECT_EQ(0.5F, MAX_DEV); // the rest belongs to the run, or to p2
    EXPECT_EQ(3.0F, STIME);
    EXPECT_EQ(7.0F, CBEATS);
    EXPECT_EQ(99.0F, TEMPO);
}

TEST_F(Timing, P2StartsAtTheBlocksTempo)
{
    P_NO          = 2;
    TEMPO_LIST[0] = {0.0F, 60.0F, 20.0F, 120.0F, 0.0F, 1.0F};
    STIME         = 10.0F;
    SBEAT         = 10.0F;
    reset_pfield(nullptr);
    EXPECT_EQ(90.0F, TEMPO);
    EXPECT_EQ(10.0F, CBEATS);
    EXPECT_FLOAT_EQ(10.0F * 60.0F / 90.0F, STIME);
}

TEST_F(Timing, AStoredValueTakesOneDraw)
{
    P_NO = 4;
    fill(2, 1.0F);
    EXPECT_EQ(1, draws_of({3}, [&] { EXPECT_EQ(1, store_value(list, cursor, 5.0F)); }));
    EXPECT_EQ((Floats{5.0F, 0.0F}), values());
}

TEST_F(Timing, AStoredValueIsDeviatedByTheSumThenRounded)
{
    P_NO     = 4;
    IN_TYPE  = TYPE_NO;
    MAX_DEV  = 0.125F;
    MAX_DEV2 = 0.25F;
    fill(1, 1.0F);
    seed_draws(1); // 0.84
    EXPECT_EQ(1, store_value(list, cursor, 50.0F));
    EXPECT_EQ((Floats{56.0F}), values()); // 50 + 18.75 * (0.84 - 0.5) = 56.38
}

TEST_F(Timing, ANegativeNoteIsARest)
{
    P_NO    = 4;
    IN_TYPE = TYPE_NO;
    fill(2, 1.5F);
    EXPECT_EQ(1, store_value_or_rest(list, cursor, -1.0F));
    EXPECT_EQ(-1.5F, list->next->dur);
    EXPECT_EQ(1, store_value_or_rest(list, cursor, 1.0F));
    EXPECT_EQ(1.5F, list->dur);
}

TEST_F(Timing, ANegativeValueOfAnotherTypeIsNoRest)
{
    P_NO = 4;
    fill(1, 1.5F);
    for (const std::int32_t type : {TYPE_RE, TYPE_OP, TYPE_OD}) {
        IN_TYPE = type;
        EXPECT_EQ(1, store_value_or_rest(list, cursor, -1.0F));
        EXPECT_EQ(1.5F, list->dur) << type;
    }
}

TEST_F(Timing, AStartMovesTheBeatByItsValue)
{
    P_NO   = 2;
    STIME  = 3.0F;
    CBEATS = 8.0F;
    EXPECT_EQ(1, draws_of({3}, [&] { EXPECT_EQ(1, store_start(list, 2.0F, 1.25F)); }));
    EXPECT_EQ(10.0F, CBEATS);
    EXPECT_EQ(3.0F, list->start);
    EXPECT_EQ(8.0F, list->beat);
    EXPECT_EQ(1.25F, list->dur);
}

TEST_F(Timing, TheRestOfABlockRepeatsTheLastValue)
{
    P_NO   = 4;
    EVENTS = 4;
    fill(4, 1.0F);
    EXPECT_EQ(1, store_value(list, cursor, 1.0F));
    EXPECT_EQ(1, store_value(list, cursor, 2.0F));
    EVENT_NO = 2;
    LAST_VAL = 2.0F;
    EXPECT_EQ(OK, fill_to_end(list, cursor, nullptr, in));
    EXPECT_EQ((Floats{1.0F, 2.0F, 2.0F, 2.0F}), values());
    EXPECT_EQ(4U, EVENT_NO);
}

TEST_F(Timing, TheRestOfABlockRepeatsTheLastChord)
{
    P_NO   = 4;
    EVENTS = 3;
    fill(2, 1.0F);
    EXPECT_EQ(1, store_value(list, cursor, 1.0F));
    IS_FUSED = 1;
    EXPECT_EQ(1, store_value(list, cursor, 2.0F));
    EVENT_NO = 2;
    LAST_VAL = 2.0F;
    EXPECT_EQ(OK, fill_to_end(list, cursor, nullptr, in));
    EXPECT_EQ((Floats{1.0F, 2.0F, 1.0F, 2.0F}), values());
    EXPECT_EQ(4U, EVENTS);
    EXPECT_EQ(4U, EVENT_NO);
}

TEST_F(Timing, ALoopFillsTheRestOfABlock)
{
    P_NO   = 4;
    EVENTS = 3;
    fill(3, 1.0F);
    ASSERT_EQ(1, StoreInQ(queue, 0, 7.0F));
    ASSERT_EQ(1, StoreInQ(queue, 0, 8.0F));
    ASSERT_EQ(1, StoreInQ(queue, 1, 9.0F));
    EXPECT_EQ(OK, fill_to_end(list, cursor, queue, in));
    EXPECT_EQ((Floats{7.0F, 8.0F, 9.0F, 7.0F}), values());
    EXPECT_EQ(4U, EVENTS);
    EXPECT_EQ(4U, EVENT_NO);
}

TEST_F(Timing, AChordOfALoopIsCompletedPastTheEnd)
{
    P_NO   = 4;
    EVENTS = 2;
    fill(2, 1.0F);
    ASSERT_EQ(1, StoreInQ(queue, 0, 7.0F));
    ASSERT_EQ(1, StoreInQ(queue, 0, 8.0F));
    ASSERT_EQ(1, StoreInQ(queue, 1, 9.0F));
    ASSERT_EQ(1, StoreInQ(queue, 1, 10.0F));
    EXPECT_EQ(OK, fill_to_end(list, cursor, queue, in));
    EXPECT_EQ((Floats{7.0F, 8.0F, 9.0F, 10.0F}), values());
    EXPECT_EQ(4U, EVENTS);
    EXPECT_EQ(4U, EVENT_NO);
}

TEST_F(Timing, AFullBlockIsNotFilled)
{
    P_NO     = 4;
    EVENTS   = 2;
    EVENT_NO = 2;
    fill(2, 1.0F);
    LAST_VAL = 5.0F;
    EXPECT_EQ(OK, fill_to_end(list, cursor, nullptr, in));
    EXPECT_EQ((Floats{0.0F, 0.0F}), values());
}

TEST_F(Timing, AP2OfZeroCannotFillABlockInBeats)
{
    P_NO     = 2;
    ETIME    = 4.0F;
    LAST_VAL = 0.0F;
    EXPECT_EQ(ZERO_INTERVAL, fill_to_end(list, cursor, nullptr, in));
    EXPECT_EQ(nullptr, list);
}

TEST_F(Timing, AP2OfZeroFillsABlockInEvents)
{
    P_NO     = 2;
    EVENTS   = 3;
    LAST_VAL = 0.0F;
    EXPECT_EQ(OK, fill_to_end(list, cursor, nullptr, in));
    EXPECT_EQ(3U, EVENT_NO);
    EXPECT_EQ(0.0F, list->start);
}

TEST_F(Timing, ANegativeP2NeverFillsABlockInBeats)
{
    P_NO     = 2;
    ETIME    = 4.0F;
    LAST_VAL = -1.0F;
    EXPECT_NE("", screen_of([&] { EXPECT_EQ(TEXT_REPORTED, fill_to_end(list, cursor, nullptr, in)); }));
}

TEST_F(Timing, TheFirstNumbersOfRecordsAreCopied)
{
    float  a[]       = {0.25F, 9.0F};
    float  b[]       = {0.75F};
    float *records[] = {a, b};
    float  out[]     = {-1.0F, -1.0F, -1.0F};
    fix_percents(records, out, 2);
    EXPECT_EQ(0.25F, out[0]);
    EXPECT_EQ(0.75F, out[1]);
    EXPECT_EQ(-1.0F, out[2]);
}

TEST_F(Timing, TwoNumbersAreExchanged)
{
    float a = 1.0F;
    float b = 2.0F;
    swapf(a, b);
    EXPECT_EQ(2.0F, a);
    EXPECT_EQ(1.0F, b);
}

TEST_F(Timing, ALoopThatBeginsWithAChordMemberHasOneEventMore)
{
    fill(2, 1.0F);
    P_NO     = 4;
    EVENTS   = 2;
    EVENT_NO = 3;
    ASSERT_EQ(1, StoreInQ(queue, 0, 5.0F));
    queue->code = 1;
    EXPECT_EQ(OK, fill_to_end(list, cursor, queue, in));
    EXPECT_EQ(3U, EVENTS);
    EXPECT_EQ(3U, EVENT_NO); // which the event stored last was already
}

} // namespace
} // namespace orlo

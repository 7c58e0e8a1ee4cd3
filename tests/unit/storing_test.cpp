#include "events/storing.h"

#include "base/random.h"
#include "diag/messages.h"
#include "section_fixture.h"

#include <cmath>

namespace orlo {
namespace {

using test::draws_of;
using test::Floats;
using test::line_of;
using test::screen_of;
using test::wide;

class Storing : public test::SectionTest {
  protected:
    // the duration that a p3 value gives an event of a time span
    float p3(float value, float span, const char *screen = "")
    {
        FreeListNodes(list);
        fill(1, span);
        EXPECT_EQ(screen, screen_of([&] { store_p3(section, in, value); })) << value;
        return list->dur;
    }

    Input in = line_of("p3 x");
};

struct P3 {
    float  value;
    P3Code code;
    double amount;
};

TEST_F(Storing, P3CodesAreClosedBelowAndOpenAbove)
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

TEST_F(Storing, AP3FactorMultipliesTheTimeSpan)
{
    EXPECT_EQ(0.5F, p3(0.5F, 1.0F));
    EXPECT_EQ(-3.0F, p3(-1.0F, 3.0F));
    EXPECT_EQ(0.0F, p3(0.0F, 3.0F));
    EXPECT_FLOAT_EQ(399.98F, p3(199.99F, 2.0F));
}

TEST_F(Storing, P3From200IsAddedToTheTimeSpan)
{
    EXPECT_EQ(2.0F, p3(201.0F, 1.0F));
    EXPECT_EQ(3.0F, p3(200.0F, 3.0F));
    EXPECT_EQ(2.0F, p3(-201.0F, 3.0F));
}

TEST_F(Storing, P3From300IsTakenOffAndWarnsWhenTheEventSounds)
{
    EXPECT_EQ(0.5F, p3(300.5F, 1.0F, "\nWARNING: P3 Duration < 0! (Event turned into rest...)"));
    EXPECT_EQ(-0.5F, p3(301.5F, 1.0F));
    EXPECT_EQ(0.0F, p3(301.0F, 1.0F));
    SUPRESS = true;
    EXPECT_EQ(0.5F, p3(300.5F, 1.0F));
}

TEST_F(Storing, P3From400IsInBeatsOfTheTempo)
{
    TEMPO = 120.0F;
    EXPECT_EQ(1.0F, p3(402.0F, 7.0F));
    EXPECT_EQ(-0.5F, p3(-401.0F, 7.0F));
}

TEST_F(Storing, P3From1000IsInSeconds)
{
    TEMPO = 120.0F;
    EXPECT_EQ(2.5F, p3(1002.5F, 7.0F));
    EXPECT_EQ(-2.0F, p3(-1002.0F, 7.0F));
}

TEST_F(Storing, P3IsMultipliedByTheFactor)
{
    PFACTOR = 4.0F;
    EXPECT_EQ(10.0F, p3(1002.5F, 7.0F));
    EXPECT_EQ(2.0F, p3(0.5F, 1.0F));
}

TEST_F(Storing, P3GoesToTheNextEventAndMarksTheSection)
{
    fill(2);
    EXPECT_EQ(P3Code::seconds, store_p3(section, in, 1005.0F));
    EXPECT_EQ(list->next, section.cursor);
    EXPECT_TRUE(WROTE_DATA);
    EXPECT_EQ(P3Code::factor, store_p3(section, in, 0.25F));
    EXPECT_EQ(list, section.cursor);
    EXPECT_EQ(5.0F, list->next->dur);
    EXPECT_EQ(0.25F, list->dur);
}

TEST_F(Storing, P3TakesTwoDraws)
{
    for (const float value : {0.5F, 201.0F, 402.0F, 1001.0F}) {
        fill(1);
        EXPECT_EQ(2, draws_of({3}, [&] { store_p3(section, in, value); })) << value;
        FreeListNodes(list);
    }
}

TEST_F(Storing, P3IsDeviatedByBothDeviationsInTurn)
{
    MAX_DEV  = 0.5F;
    MAX_DEV2 = 1.0F;
    fill(1);
    seed_draws(1);
    const float u1 = draw_uniform();
    const float u2 = draw_uniform();
    seed_draws(1);
    store_p3(section, in, 1010.0F);
    const float once = u1 * 5.0F - 2.5F + 10.0F;
    EXPECT_FLOAT_EQ(u2 * once - 0.5F * once + once, list->dur);
}

TEST_F(Storing, PitchesAreRoundedToSemitones)
{
    for (const std::int32_t type : {std::int32_t{TYPE_NO}, std::int32_t{TYPE_OP}}) {
        IN_TYPE = type;
        NX      = false;
        EXPECT_EQ(49.0F, adjust(48.5F)) << type;
        EXPECT_EQ(-2.0F, adjust(-2.5F)) << type;
        NX = true;
        EXPECT_EQ(48.5F, adjust(48.5F)) << type;
    }
}

TEST_F(Storing, OtherTypesAreNotRounded)
{
    for (const std::int32_t type : {TYPE_RE, TYPE_IN, TYPE_DB, TYPE_OD, TYPE_RH, TYPE_HZ}) {
        IN_TYPE = type;
        EXPECT_EQ(48.5F, adjust(48.5F)) << type;
    }
}

TEST_F(Storing, AStoredValueTakesOneDraw)
{
    read_section(4);
    fill(2);
    EXPECT_EQ(1, draws_of({3}, [&] { EXPECT_TRUE(store_value(section, 5.0F)); }));
    EXPECT_EQ((Floats{5.0F, 0.0F}), values());
}

TEST_F(Storing, AStoredValueIsDeviatedByTheSumThenRounded)
{
    read_section(4);
    IN_TYPE  = TYPE_NO;
    MAX_DEV  = 0.125F;
    MAX_DEV2 = 0.25F;
    fill(1);
    seed_draws(1); // 0.84
    EXPECT_TRUE(store_value(section, 50.0F));
    EXPECT_EQ((Floats{56.0F}), values()); // 50 + 18.75 * (0.84 - 0.5) = 56.38
}

TEST_F(Storing, ANegativeNoteIsARest)
{
    read_section(4);
    IN_TYPE = TYPE_NO;
    fill(2, 1.5F);
    EXPECT_TRUE(store_value_or_rest(section, -1.0F));
    EXPECT_EQ(-1.5F, list->next->dur);
    EXPECT_TRUE(store_value_or_rest(section, 1.0F));
    EXPECT_EQ(1.5F, list->dur);
}

TEST_F(Storing, ANegativeValueOfAnotherTypeIsNoRest)
{
    read_section(4);
    fill(1, 1.5F);
    for (const std::int32_t type : {TYPE_RE, TYPE_OP, TYPE_OD}) {
        IN_TYPE = type;
        EXPECT_TRUE(store_value_or_rest(section, -1.0F));
        EXPECT_EQ(1.5F, list->dur) << type;
    }
}

TEST_F(Storing, AStartMovesTheBeatByItsValue)
{
    read_section(2);
    STIME  = 3.0F;
    CBEATS = 8.0F;
    EXPECT_EQ(1, draws_of({3}, [&] { EXPECT_TRUE(store_start(section, 2.0F, 1.25F)); }));
    EXPECT_EQ(10.0F, CBEATS);
    EXPECT_EQ(3.0F, list->start);
    EXPECT_EQ(8.0F, list->beat);
    EXPECT_EQ(1.25F, list->dur);
}

TEST_F(Storing, EveryPFieldIsStoredInItsPlace)
{
    read_section(2);
    EXPECT_EQ(OK, store_one(section, in, 2.0F, ZeroBy::value));
    EXPECT_EQ(OK, store_one(section, in, 3.0F, ZeroBy::value));
    EXPECT_EQ((Floats{2.0F, 3.0F}), all([](const Event &event) { return event.dur; }));
    EXPECT_EQ(5.0F, CBEATS);
    read_section(3);
    section.cursor = list;
    EXPECT_EQ(OK, store_one(section, in, 0.5F, ZeroBy::value));
    EXPECT_EQ((Floats{1.0F, 3.0F}), all([](const Event &event) { return event.dur; }));
    read_section(5);
    section.cursor = list;
    EXPECT_EQ(OK, store_one(section, in, 7.0F, ZeroBy::value));
    EXPECT_EQ((Floats{7.0F, 0.0F}), values(5));
}

TEST_F(Storing, AnIntervalOfZeroIsToldByItsValueOrItsSeconds)
{
    constexpr float TINY = 1e-45F; // no seconds at the highest tempo
    TEMPO_LIST[0]        = {0.0F, 4000.0F, 0.0F, 4000.0F, 1.0F, 0.0F};
    read_section(2);
    EXPECT_EQ(ZERO_INTERVAL, store_one(section, in, 0.0F, ZeroBy::value));
    EXPECT_EQ(ZERO_INTERVAL, store_one(section, in, TINY, ZeroBy::seconds));
    EXPECT_EQ(nullptr, list);
    EXPECT_EQ(OK, store_one(section, in, TINY, ZeroBy::value));
    EVENTS = 2; // a block given in events has room for chords of intervals
    EXPECT_EQ(OK, store_one(section, in, 0.0F, ZeroBy::value));
    EXPECT_EQ(2U, events().size());
}

TEST_F(Storing, TheLastValueIsStoredOnceMore)
{
    read_section(4);
    fill(3);
    LAST_VAL = 6.0F;
    EXPECT_TRUE(store_value(section, 5.0F));
    EXPECT_EQ(OK, store_last(section, in, ZeroBy::value));
    EXPECT_EQ((Floats{5.0F, 6.0F, 0.0F}), values());
    EXPECT_EQ(0U, EVENT_NO);
}

TEST_F(Storing, BehindAChordTheLastChordIsStoredOnceMore)
{
    read_section(4);
    fill(2);
    EVENTS   = 3;
    EVENT_NO = 2;
    EXPECT_TRUE(store_value(section, 5.0F));
    IS_FUSED = 1;
    EXPECT_TRUE(store_value(section, 6.0F));
    LAST_VAL = 6.0F;
    EXPECT_EQ(OK, store_last(section, in, ZeroBy::value));
    EXPECT_EQ((Floats{5.0F, 6.0F, 5.0F, 6.0F}), values());
    EXPECT_EQ(4U, EVENTS);
    EXPECT_EQ(3U, EVENT_NO);
}

} // namespace
} // namespace orlo

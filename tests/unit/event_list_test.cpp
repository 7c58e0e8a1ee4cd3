#include "events/event_list.h"

#include "section_fixture.h"

namespace orlo {
namespace {

using test::file_of;
using test::Floats;
using test::output_of;

class EventList : public test::SectionTest {
  protected:
    void add_member(float dur)
    {
        IS_FUSED = 1;
        add(dur, 99.0F, 99.0F);
    }

    void store(std::int32_t pfield, float value)
    {
        P_NO = pfield;
        ASSERT_TRUE(StorePfield(section, value));
    }

    void store_member(std::int32_t pfield, float value)
    {
        IS_FUSED = 1;
        store(pfield, value);
    }

    std::uint64_t repeat_chord(std::int32_t pfield)
    {
        std::uint64_t members = 99;
        P_NO                  = pfield;
        EXPECT_TRUE(DoListChord(section, members));
        return members;
    }

    // the window from the event behind the cursor on
    std::uint64_t window(float beats)
    {
        first = -1.0F;
        last  = -2.0F;
        return ListSize(first, last, section, beats);
    }

    std::uint64_t window_from(Event *cursor, float beats)
    {
        section.cursor = cursor;
        return window(beats);
    }

    Floats starts() const
    {
        return all([](const Event &event) { return event.start; });
    }
    Floats beats() const
    {
        return all([](const Event &event) { return event.beat; });
    }
    Floats durs() const
    {
        return all([](const Event &event) { return event.dur; });
    }
    Floats codes() const
    {
        return all([](const Event &event) { return event.code; });
    }

    float first = -1.0F; // of the last window, in beats
    float last  = -2.0F;
};

TEST_F(EventList, ANewEventIsAllZero)
{
    Event *event = GetListNode(128);
    ASSERT_NE(nullptr, event);
    EXPECT_EQ(0, event->code);
    EXPECT_EQ(0.0F, event->start);
    EXPECT_EQ(0.0F, event->dur);
    EXPECT_EQ(0.0F, event->beat);
    for (int i = 0; i < 125; ++i)
        EXPECT_EQ(0.0F, event->pf[i]) << i;
    FreeEvent(event);
}

TEST_F(EventList, OnlyTheFirstEventTakesTheStart)
{
    add(1.0F, 7.0F, 0.0F);
    add(1.0F, 50.0F, 1.0F);
    add(1.0F, 60.0F, 2.0F);
    EXPECT_EQ((Floats{7.0F, 8.0F, 9.0F}), starts());
    EXPECT_EQ((Floats{0.0F, 1.0F, 2.0F}), beats());
    EXPECT_EQ((Floats{1.0F, 1.0F, 1.0F}), durs());
    EXPECT_EQ((Floats{0.0F, 0.0F, 0.0F}), codes());
}

TEST_F(EventList, AnEventStartsWhenItsPredecessorIsOver)
{
    add(0.5F);
    add(2.0F);
    add(0.25F);
    add(1.0F);
    EXPECT_EQ((Floats{0.0F, 0.5F, 2.5F, 2.75F}), starts());
}

TEST_F(EventList, ARestAdvancesTimeByItsMagnitude)
{
    add(-2.0F, 1.0F);
    add(-0.5F);
    add(1.0F);
    EXPECT_EQ((Floats{1.0F, 3.0F, 3.5F}), starts());
    EXPECT_EQ((Floats{-2.0F, -0.5F, 1.0F}), durs());
}

TEST_F(EventList, AChordMemberSharesStartAndBeat)
{
    add(1.0F, 3.0F, 5.0F);
    add_member(0.5F);
    EXPECT_EQ((Floats{3.0F, 3.0F}), starts());
    EXPECT_EQ((Floats{5.0F, 5.0F}), beats());
    EXPECT_EQ((Floats{1.0F, 0.5F}), durs());
    EXPECT_EQ((Floats{0.0F, 1.0F}), codes());
    EXPECT_EQ(0, IS_FUSED);
}

TEST_F(EventList, AChordAdvancesTimeByItsLongestMember)
{
    add(1.0F);
    add_member(-4.0F);
    add_member(2.0F);
    add(1.0F);
    EXPECT_EQ((Floats{0.0F, 0.0F, 0.0F, 4.0F}), starts());
    add_member(0.25F);
    add(1.0F);
    EXPECT_EQ(5.0F, list->start);
}

TEST_F(EventList, AFirstEventIsNoChordMember)
{
    IS_FUSED = 1;
    add(1.0F, 3.0F, 2.0F);
    EXPECT_EQ((Floats{3.0F}), starts());
    EXPECT_EQ((Floats{2.0F}), beats());
    EXPECT_EQ((Floats{0.0F}), codes());
}

TEST_F(EventList, ANewListForgetsTheLastLength)
{
    add(9.0F);
    FreeListNodes(list);
    add(1.0F, 2.0F);
    add(1.0F);
    EXPECT_EQ((Floats{2.0F, 3.0F}), starts());
}

TEST_F(EventList, InsertingMarksTheSectionAsWritten)
{
    add(1.0F);
    EXPECT_TRUE(WROTE_DATA);
}

TEST_F(EventList, ValuesGoToTheHeadFirst)
{
    fill(3);
    store(4, 10.0F);
    EXPECT_TRUE(WROTE_DATA);
    store(4, 20.0F);
    EXPECT_EQ((Floats{10.0F, 20.0F, 0.0F}), values(4));
    EXPECT_EQ(list->next->next, section.cursor);
    EXPECT_EQ(section.cursor, LUT);
}

TEST_F(EventList, AValueBehindTheTailWrapsToTheHead)
{
    fill(2);
    for (const float value : {1.0F, 2.0F, 3.0F})
        store(5, value);
    EXPECT_EQ((Floats{3.0F, 2.0F}), values(5));
    EXPECT_EQ(list->next, section.cursor);
}

TEST_F(EventList, ValuesAreMultipliedByTheFactor)
{
    fill(2);
    PFACTOR = 0.5F;
    store(4, 10.0F);
    store_member(4, 3.0F);
    EXPECT_EQ((Floats{5.0F, 1.5F, 0.0F}), values(4));
}

TEST_F(EventList, AFusedValueMakesACopyBehindTheCursor)
{
    fill(2);
    store(4, 10.0F);
    section.cursor = list;
    store(5, 1.0F);
    store_member(5, 2.0F);
    EXPECT_EQ((Floats{10.0F, 10.0F, 0.0F}), values(4));
    EXPECT_EQ((Floats{1.0F, 2.0F, 0.0F}), values(5));
    EXPECT_EQ((Floats{0.0F, 1.0F, 0.0F}), codes());
    EXPECT_EQ((Floats{0.0F, 0.0F, 1.0F}), starts());
    EXPECT_EQ((Floats{1.0F, 1.0F, 1.0F}), durs());
    EXPECT_EQ((Floats{0.0F, 0.0F, 1.0F}), beats());
    EXPECT_EQ(list->next->next, section.cursor);
    EXPECT_EQ(list->next, LUT); // the base of the chord
    EXPECT_EQ(0, IS_FUSED);
}

TEST_F(EventList, ACopyBehindTheTailIsTheNewTail)
{
    fill(1);
    store(4, 1.0F);
    store_member(4, 2.0F);
    store_member(4, 3.0F);
    EXPECT_EQ((Floats{1.0F, 2.0F, 3.0F}), values(4));
    EXPECT_EQ(list, section.cursor);
    EXPECT_EQ(3.0F, list->pf[0]);
}

TEST_F(EventList, ALaterFieldTakesChordMembersAsEvents)
{
    fill(1);
    store(4, 1.0F);
    store_member(4, 2.0F);
    section.cursor = list;
    store(5, 7.0F);
    store(5, 8.0F);
    EXPECT_EQ((Floats{7.0F, 8.0F}), values(5));
    EXPECT_EQ((Floats{0.0F, 0.0F}), codes());
    EXPECT_EQ(list, LUT);
}

TEST_F(EventList, ACopyHasEverythingOfItsSource)
{
    Event *source = GetListNode(6);
    *source       = {1, 2.0F, -3.0F, 4.0F, source->pf, nullptr};
    for (int i = 0; i < 3; ++i)
        source->pf[i] = static_cast<float>(10 + i);
    Event *copy = CopyEvent(source, 6);
    ASSERT_NE(nullptr, copy);
    EXPECT_EQ(1, copy->code);
    EXPECT_EQ(2.0F, copy->start);
    EXPECT_EQ(-3.0F, copy->dur);
    EXPECT_EQ(4.0F, copy->beat);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(static_cast<float>(10 + i), copy->pf[i]) << i;
    EXPECT_NE(source->pf, copy->pf);
    FreeEvent(copy);
    FreeEvent(source);
}

TEST_F(EventList, ACopyOfThreeFieldsHasNoValues)
{
    Event *source = GetListNode(3);
    source->pf[0] = 5.0F;
    source->dur   = 2.0F;
    Event *copy   = CopyEvent(source, 3);
    ASSERT_NE(nullptr, copy);
    EXPECT_EQ(2.0F, copy->dur);
    EXPECT_EQ(0.0F, copy->pf[0]);
    FreeEvent(copy);
    FreeEvent(source);
}

TEST_F(EventList, ASingleValueIsRepeatedInTheNextEvent)
{
    fill(3);
    store(4, 5.0F);
    EXPECT_EQ(0U, repeat_chord(4));
    EXPECT_EQ((Floats{5.0F, 5.0F, 0.0F}), values(4));
    EXPECT_EQ(list->next->next, section.cursor);
}

TEST_F(EventList, AChordIsRepeatedInsideTheList)
{
    fill(3);
    for (const float value : {70.0F, 71.0F, 72.0F})
        store(5, value);
    section.cursor = list;
    store(4, 1.0F);
    store_member(4, 2.0F);
    store_member(4, 3.0F);
    EXPECT_EQ(2U, repeat_chord(4));
    EXPECT_EQ((Floats{1.0F, 2.0F, 3.0F, 1.0F, 2.0F, 3.0F, 0.0F}), values(4));
    EXPECT_EQ((Floats{70.0F, 70.0F, 70.0F, 71.0F, 71.0F, 71.0F, 72.0F}), values(5));
    EXPECT_EQ((Floats{0.0F, 1.0F, 1.0F, 0.0F, 1.0F, 1.0F, 0.0F}), codes());
    EXPECT_EQ((Floats{0.0F, 0.0F, 0.0F, 1.0F, 1.0F, 1.0F, 2.0F}), starts());
    EXPECT_EQ((Floats{0.0F, 0.0F, 0.0F, 1.0F, 1.0F, 1.0F, 2.0F}), beats());
    EXPECT_EQ(events()[5], section.cursor);
}

TEST_F(EventList, AChordRepeatedOnTheLastEventMovesTheTail)
{
    fill(2);
    store(4, 1.0F);
    store_member(4, 2.0F);
    EXPECT_EQ(1U, repeat_chord(4));
    EXPECT_EQ((Floats{1.0F, 2.0F, 1.0F, 2.0F}), values(4));
    EXPECT_EQ(list, section.cursor);
    EXPECT_EQ(2.0F, list->pf[0]);
}

TEST_F(EventList, AChordRepeatedAtTheTailGrowsInWholeSeconds)
{
    add(2.75F, 3.5F, 1.0F);
    section.cursor = list;
    store(5, 9.0F);
    section.cursor = list;
    store(4, 1.0F);
    store_member(4, 2.0F);
    EXPECT_EQ(1U, repeat_chord(4));
    EXPECT_EQ((Floats{1.0F, 2.0F, 1.0F, 2.0F}), values(4));
    EXPECT_EQ((Floats{9.0F, 9.0F, 9.0F, 9.0F}), values(5));
    EXPECT_EQ((Floats{2.75F, 2.75F, 2.0F, 2.0F}), durs());
    EXPECT_EQ((Floats{3.5F, 3.5F, 5.0F, 5.0F}), starts());
    EXPECT_EQ((Floats{1.0F, 1.0F, 1.0F, 1.0F}), beats());
    EXPECT_EQ((Floats{0.0F, 1.0F, 0.0F, 1.0F}), codes());
    EXPECT_EQ(list, section.cursor);
}

TEST_F(EventList, GrowingTakesMagnitudesOfTimes)
{
    add(-2.75F, -3.5F);
    section.cursor = list;
    LUT            = list;
    EXPECT_EQ(0U, repeat_chord(4));
    EXPECT_EQ((Floats{-2.75F, 2.0F}), durs());
    EXPECT_EQ((Floats{-3.5F, 5.0F}), starts());
}

TEST_F(EventList, GrowingTakesTheLengthOfTheChordAndTheStartOfTheTail)
{
    fill(2);
    list->next->dur = 4.9F;
    list->start     = 10.9F;
    store(4, 6.0F);
    store(5, 7.0F); // the cursor is at the tail, with the first event as the last chord
    LUT = list->next;
    EXPECT_EQ(0U, repeat_chord(4));
    EXPECT_EQ(14.0F, list->start);
    EXPECT_EQ(4.0F, list->dur);
    EXPECT_EQ((Floats{6.0F, 0.0F, 6.0F}), values(4));
    EXPECT_EQ((Floats{0.0F, 7.0F, 7.0F}), values(5));
}

TEST_F(EventList, GrowingCountsSecondsIn64Bits)
{
    add(5e9F, 1e10F);
    section.cursor = list;
    LUT            = list;
    EXPECT_EQ(0U, repeat_chord(4));
    EXPECT_EQ(5e9F, list->dur);
    EXPECT_EQ(1.5e10F, list->start);
}

TEST_F(EventList, AnInsertedEventIsTheCursor)
{
    fill(2);
    section.cursor = list->next;
    Event *event   = GetListNode(MAX_PFIELDS);
    event->pf[0]   = 8.0F;
    Event *before  = list;
    EXPECT_EQ(event, InsertEvent(event, section));
    EXPECT_EQ(event, section.cursor);
    EXPECT_EQ(before, list);
    EXPECT_EQ((Floats{0.0F, 8.0F, 0.0F}), values(4));
}

TEST_F(EventList, AnEventInsertedBehindTheTailIsTheTail)
{
    fill(2);
    Event *event = GetListNode(MAX_PFIELDS);
    EXPECT_EQ(event, InsertEvent(event, section));
    EXPECT_EQ(event, section.cursor);
    EXPECT_EQ(event, list);
    EXPECT_EQ(3U, events().size());
}

TEST_F(EventList, AWindowCountsUpToItsLimit)
{
    fill(5);
    EXPECT_EQ(3U, window(2.0F)); // beats 0, 1 and 2
    EXPECT_EQ(0.0F, first);
    EXPECT_EQ(2.0F, last);
    EXPECT_EQ(2U, window(1.999F));
    EXPECT_EQ(1.0F, last);
}

TEST_F(EventList, AWindowBeginsAtTheEventBehindTheCursor)
{
    fill(5);
    EXPECT_EQ(2U, window_from(list->next, 1.0F));
    EXPECT_EQ(1.0F, first);
    EXPECT_EQ(2.0F, last);
}

TEST_F(EventList, AWindowEndsWithTheList)
{
    fill(5);
    EXPECT_EQ(5U, window(1000.0F));
    EXPECT_EQ(4.0F, last);
    EXPECT_EQ(4U, window_from(list->next, 1000.0F));
    EXPECT_EQ(1.0F, first);
}

TEST_F(EventList, AWindowOfZeroCountsTheEventsOfOneBeat)
{
    add(1.0F, 0.0F, 3.0F);
    add_member(1.0F);
    add_member(1.0F);
    add(1.0F, 0.0F, 4.0F);
    EXPECT_EQ(3U, window_from(list, 0.0F));
    EXPECT_EQ(3.0F, first);
    EXPECT_EQ(3.0F, last);
}

TEST_F(EventList, AnEmptyListHasNoWindow)
{
    EXPECT_EQ(0U, window(5.0F));
    EXPECT_EQ(-1.0F, first);
    EXPECT_EQ(-2.0F, last);
}

TEST_F(EventList, StatisticsTellTheLatestEnd)
{
    add(10.0F, 2.0F, 1.0F);
    add_member(1.0F);
    add(1.0F, 0.0F, 3.5F);
    list->next->dur = 20.0F; // the first event sounds longest
    ListStats stats{-1.0, -1.0, -1.0, 99};
    GetListStats(list, stats);
    EXPECT_EQ(22.0, stats.end);
    EXPECT_EQ(20.0, stats.duration);
    EXPECT_EQ(2.5, stats.beats);
    EXPECT_EQ(3U, stats.count);
}

TEST_F(EventList, StatisticsAddIn64Bits)
{
    add(1.0F, 16777216.0F);
    ListStats stats{};
    GetListStats(list, stats);
    EXPECT_EQ(16777217.0, stats.end);
    EXPECT_EQ(1.0, stats.duration);
}

TEST_F(EventList, StatisticsOfNothingSetTheCountAlone)
{
    ListStats stats{-1.0, -2.0, -3.0, 99};
    GetListStats(nullptr, stats);
    EXPECT_EQ(0U, stats.count);
    EXPECT_EQ(-1.0, stats.duration);
    EXPECT_EQ(-2.0, stats.beats);
    EXPECT_EQ(-3.0, stats.end);
}

TEST_F(EventList, CodesAreCleared)
{
    add(1.0F);
    add_member(1.0F);
    add(1.0F);
    add_member(1.0F);
    ClearLFusedCode(list);
    EXPECT_EQ((Floats{0.0F, 0.0F, 0.0F, 0.0F}), codes());
    ClearLFusedCode(nullptr);
}

TEST_F(EventList, RestsAreTakenOutAnywhere)
{
    for (const float dur : {-1.0F, 0.0F, 5.0F, -2.0F, 6.0F, 0.0F})
        add(dur);
    EVENTS   = 6;
    EVENT_NO = 16;
    EXPECT_TRUE(RemoveRests(list));
    EXPECT_EQ((Floats{5.0F, 6.0F}), durs());
    EXPECT_EQ(6.0F, list->dur);
    EXPECT_EQ(2U, EVENTS);
    EXPECT_EQ(12U, EVENT_NO);
}

TEST_F(EventList, WithoutRestsNothingIsTakenOut)
{
    fill(3);
    EVENTS   = 3;
    EVENT_NO = 3;
    EXPECT_TRUE(RemoveRests(list));
    EXPECT_EQ(3U, events().size());
    EXPECT_EQ(3U, EVENTS);
    EXPECT_EQ(3U, EVENT_NO);
}

TEST_F(EventList, AllRestsLeaveAnEmptyList)
{
    for (const float dur : {0.0F, -1.0F, 0.0F})
        add(dur);
    EVENTS   = 17;
    EVENT_NO = 5;
    EXPECT_FALSE(RemoveRests(list));
    EXPECT_EQ(nullptr, list);
    EXPECT_EQ(0U, EVENTS);
    EXPECT_EQ(0U, EVENT_NO);
}

TEST_F(EventList, OneEventBetweenRestsIsARingOfItsOwn)
{
    for (const float dur : {0.0F, 3.0F, 0.0F})
        add(dur);
    EXPECT_TRUE(RemoveRests(list));
    EXPECT_EQ(list, list->next);
    EXPECT_EQ(3.0F, list->dur);
}

TEST_F(EventList, IsEmptyWhenItIsFreed)
{
    add(1.0F);
    FreeListNodes(list);
    EXPECT_EQ(nullptr, list);
    fill(3);
    FreeListNodes(list);
    EXPECT_EQ(nullptr, list);
    FreeListNodes(list);
    EXPECT_EQ(nullptr, list);
}

TEST_F(EventList, IsListedWithItsValuesOnTheStandardOutput)
{
    add(1.0F, 2.5F, 1.0F);
    section.cursor = list;
    store(4, 1.5F);
    section.cursor = list;
    store(5, -20.0F);
    store_member(5, 3.0F);
    std::string times;
    EXPECT_EQ("   1.5000\t -20.0000\t   1.5000\t   3.0000\t",
              output_of([&] { times = file_of([&](std::FILE *file) { TraverseList(list, file, MAX_PFIELDS); }); }));
    EXPECT_EQ("\nST   2.500\tD   1.000\tBT  1.000\tCODE 0\t"
              "\nST   2.500\tD   1.000\tBT  1.000\tCODE 1\t",
              times);
}

TEST_F(EventList, OfThreeFieldsIsListedWithoutValues)
{
    MAX_PFIELDS = 3;
    add(1.0F);
    std::string times;
    EXPECT_EQ("", output_of([&] { times = file_of([&](std::FILE *file) { TraverseList(list, file, MAX_PFIELDS); }); }));
    EXPECT_EQ("\nST   0.000\tD   1.000\tBT  0.000\tCODE 0\t", times);
}

TEST_F(EventList, OfNoEventsIsListedAsNothing)
{
    EXPECT_EQ("", output_of([&] { EXPECT_EQ("", file_of([&](std::FILE *file) { TraverseList(list, file, MAX_PFIELDS); })); }));
}

} // namespace
} // namespace orlo

#include "events/filling.h"

#include "diag/messages.h"
#include "events/storing.h"
#include "section_fixture.h"

namespace orlo {
namespace {

using test::Floats;
using test::line_of;
using test::screen_of;

class Filling : public test::SectionTest {
  protected:
    Input in = line_of("p3 x");
};

TEST_F(Filling, AP2WithoutEndIsReported)
{
    in.line_no = 17;
    EXPECT_EQ("\n\nERROR: Line 17: P2 never reaches the end of the i-block!\n",
              screen_of([&] { EXPECT_EQ(TEXT_REPORTED, never_ends(in)); }));
}

TEST_F(Filling, TheRestOfABlockRepeatsTheLastValue)
{
    read_section(4);
    EVENTS = 4;
    fill(4);
    EXPECT_TRUE(store_value(section, 1.0F));
    EXPECT_TRUE(store_value(section, 2.0F));
    EVENT_NO = 2;
    LAST_VAL = 2.0F;
    EXPECT_EQ(OK, fill_to_end(section, in));
    EXPECT_EQ((Floats{1.0F, 2.0F, 2.0F, 2.0F}), values());
    EXPECT_EQ(4U, EVENT_NO);
}

TEST_F(Filling, TheRestOfABlockRepeatsTheLastChord)
{
    read_section(4);
    EVENTS = 3;
    fill(2);
    EXPECT_TRUE(store_value(section, 1.0F));
    IS_FUSED = 1;
    EXPECT_TRUE(store_value(section, 2.0F));
    EVENT_NO = 2;
    LAST_VAL = 2.0F;
    EXPECT_EQ(OK, fill_to_end(section, in));
    EXPECT_EQ((Floats{1.0F, 2.0F, 1.0F, 2.0F}), values());
    EXPECT_EQ(4U, EVENTS);
    EXPECT_EQ(4U, EVENT_NO);
}

TEST_F(Filling, ALoopFillsTheRestOfABlock)
{
    read_section(4);
    EVENTS = 3;
    fill(3);
    ASSERT_TRUE(StoreInQ(section.queue, 0, 7.0F));
    ASSERT_TRUE(StoreInQ(section.queue, 0, 8.0F));
    ASSERT_TRUE(StoreInQ(section.queue, 1, 9.0F));
    EXPECT_EQ(OK, fill_to_end(section, in));
    EXPECT_EQ((Floats{7.0F, 8.0F, 9.0F, 7.0F}), values());
    EXPECT_EQ(4U, EVENTS);
    EXPECT_EQ(4U, EVENT_NO);
}

TEST_F(Filling, AChordOfALoopIsCompletedPastTheEnd)
{
    read_section(4);
    EVENTS = 2;
    fill(2);
    ASSERT_TRUE(StoreInQ(section.queue, 0, 7.0F));
    ASSERT_TRUE(StoreInQ(section.queue, 0, 8.0F));
    ASSERT_TRUE(StoreInQ(section.queue, 1, 9.0F));
    ASSERT_TRUE(StoreInQ(section.queue, 1, 10.0F));
    EXPECT_EQ(OK, fill_to_end(section, in));
    EXPECT_EQ((Floats{7.0F, 8.0F, 9.0F, 10.0F}), values());
    EXPECT_EQ(4U, EVENTS);
    EXPECT_EQ(4U, EVENT_NO);
}

TEST_F(Filling, AFullBlockIsNotFilled)
{
    read_section(4);
    EVENTS   = 2;
    EVENT_NO = 2;
    fill(2);
    LAST_VAL = 5.0F;
    EXPECT_EQ(OK, fill_to_end(section, in));
    EXPECT_EQ((Floats{0.0F, 0.0F}), values());
}

TEST_F(Filling, AP2OfZeroCannotFillABlockInBeats)
{
    read_section(2);
    ETIME    = 4.0F;
    LAST_VAL = 0.0F;
    EXPECT_EQ(ZERO_INTERVAL, fill_to_end(section, in));
    EXPECT_EQ(nullptr, list);
}

TEST_F(Filling, AP2OfZeroFillsABlockInEvents)
{
    read_section(2);
    EVENTS   = 3;
    LAST_VAL = 0.0F;
    EXPECT_EQ(OK, fill_to_end(section, in));
    EXPECT_EQ(3U, EVENT_NO);
    EXPECT_EQ(0.0F, list->start);
}

TEST_F(Filling, ANegativeP2NeverFillsABlockInBeats)
{
    read_section(2);
    ETIME    = 4.0F;
    LAST_VAL = -1.0F;
    EXPECT_NE("", screen_of([&] { EXPECT_EQ(TEXT_REPORTED, fill_to_end(section, in)); }));
}

TEST_F(Filling, ALoopThatBeginsWithAChordMemberHasOneEventMore)
{
    fill(2);
    read_section(4);
    EVENTS   = 2;
    EVENT_NO = 3;
    ASSERT_TRUE(StoreInQ(section.queue, 0, 5.0F));
    section.queue->code = 1;
    EXPECT_EQ(OK, fill_to_end(section, in));
    EXPECT_EQ(3U, EVENTS);
    EXPECT_EQ(3U, EVENT_NO); // which the event stored last was already
}

} // namespace
} // namespace orlo

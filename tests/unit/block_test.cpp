#include "events/block.h"

#include "section_fixture.h"

namespace orlo {
namespace {

using Block = test::SectionTest;

TEST_F(Block, ABlockInBeatsIsFullExactlyAtItsEnd)
{
    SBEAT  = 8.0F;
    ETIME  = 4.0F;
    CBEATS = 11.999F;
    EXPECT_FALSE(out_of_time());
    CBEATS = 12.0F;
    EXPECT_TRUE(out_of_time());
    CBEATS = 12.5F;
    EXPECT_TRUE(out_of_time());
}

TEST_F(Block, ABlockInEventsIsFullByTheirNumber)
{
    EVENTS   = 4;
    CBEATS   = 1e9F;
    EVENT_NO = 3;
    EXPECT_FALSE(out_of_time());
    EVENT_NO = 4;
    EXPECT_TRUE(out_of_time());
    EVENT_NO = 5;
    EXPECT_TRUE(out_of_time());
}

TEST_F(Block, P2StandsStillWhenItHasNotGrown)
{
    P_NO   = 2;
    CBEATS = 5.0F;
    EXPECT_TRUE(p2_stands_still(5.0F));
    EXPECT_TRUE(p2_stands_still(6.0F));
    EXPECT_FALSE(p2_stands_still(4.0F));
    EVENTS = 3;
    EXPECT_FALSE(p2_stands_still(5.0F));
    EVENTS = 0;
    P_NO   = 4;
    EXPECT_FALSE(p2_stands_still(5.0F));
}

TEST_F(Block, ALoopOpensAndCloses)
{
    EXPECT_TRUE(set_loop('<'));
    EXPECT_TRUE(IN_LOOP);
    EXPECT_TRUE(set_loop('>'));
    EXPECT_FALSE(IN_LOOP);
}

TEST_F(Block, ALoopDoesNotOpenTwice)
{
    IN_LOOP = true;
    EXPECT_FALSE(set_loop('<'));
    EXPECT_TRUE(IN_LOOP);
}

TEST_F(Block, ALoopDoesNotOpenInsideAChord)
{
    IS_FUSED = 1;
    EXPECT_FALSE(set_loop('<'));
    EXPECT_FALSE(IN_LOOP);
}

TEST_F(Block, OnlyAnOpenLoopCloses)
{
    EXPECT_FALSE(set_loop('>'));
    EXPECT_FALSE(IN_LOOP);
}

TEST_F(Block, AnyOtherMarkClosesALoop)
{
    IN_LOOP = true;
    EXPECT_TRUE(set_loop('}'));
    EXPECT_FALSE(IN_LOOP);
    EXPECT_TRUE(set_loop('}'));
}

TEST_F(Block, ANewSectionStartsAfresh)
{
    fill(2);
    IS_FUSED = 1;
    add(0.0F); // an event with a code
    ASSERT_EQ(1, list->code + list->next->code);
    P_NO       = 4;
    EVENT_NO   = 9;
    IN_TYPE    = TYPE_NO;
    OUT_TYPE   = TYPE_HZ;
    IS_FUSED   = 1;
    IN_LOOP    = true;
    WROTE_DATA = true;
    PFACTOR    = 2.0F;
    MAX_DEV    = 0.5F;
    MAX_DEV2   = 0.5F;
    STIME      = 3.0F;
    CBEATS     = 7.0F;
    TEMPO      = 99.0F;
    reset_pfield(list);
    EXPECT_EQ(0U, EVENT_NO);
    EXPECT_EQ(TYPE_RE, IN_TYPE);
    EXPECT_EQ(TYPE_RE, OUT_TYPE);
    EXPECT_EQ(0, IS_FUSED);
    EXPECT_FALSE(IN_LOOP);
    EXPECT_FALSE(WROTE_DATA);
    EXPECT_EQ(1.0F, PFACTOR);
    EXPECT_EQ(0.0F, MAX_DEV2);
    EXPECT_EQ(0, list->code);
    EXPECT_EQ(0, list->next->code);
    EXPECT_EQ(0.5F, MAX_DEV); // the rest belongs to the run, or to p2
    EXPECT_EQ(3.0F, STIME);
    EXPECT_EQ(7.0F, CBEATS);
    EXPECT_EQ(99.0F, TEMPO);
}

TEST_F(Block, P2StartsAtTheBlocksTempo)
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

TEST_F(Block, ARunStartsAfresh)
{
    I_NO     = 7;
    STIME    = 1.0F;
    SBEAT    = 2.0F;
    BEATS    = 3.0F;
    ETIME    = 4.0F;
    MAX_DEV  = 0.5F;
    EVENTS   = 5;
    P_NO     = 6;
    CBEATS   = 7.0F;
    LAST_VAL = 8.0F;
    IN_LOOP  = true;
    NX       = true;
    PFACTOR  = 9.0F;
    IS_FUSED = 1;
    fill(1); // the last event with a value
    reset_block();
    for (const float zero : {STIME, SBEAT, BEATS, ETIME, MAX_DEV, MAX_DEV2, CBEATS, LAST_VAL})
        EXPECT_EQ(0.0F, zero);
    for (const std::int32_t zero : {I_NO, P_NO, IS_FUSED})
        EXPECT_EQ(0, zero);
    for (const bool off : {IN_LOOP, NX, WROTE_DATA})
        EXPECT_FALSE(off);
    EXPECT_EQ(0U, EVENTS);
    EXPECT_EQ(0U, EVENT_NO);
    EXPECT_EQ(1.0F, PFACTOR);
    EXPECT_EQ(nullptr, LUT);
}

TEST_F(Block, ARunStartsWithoutPFields)
{
    ASSERT_TRUE(make_pfield_record(9));
    DID_P[3]   = true;
    DID_P[128] = true;
    reset_pfields();
    EXPECT_EQ(0, MAX_PFIELDS);
    EXPECT_FALSE(DID_P[3]);
    EXPECT_FALSE(DID_P[128]);
    EXPECT_EQ(nullptr, OUTS);
    EXPECT_EQ(nullptr, RE_FW);
    EXPECT_EQ(nullptr, FFT_SZ);
}

} // namespace
} // namespace orlo

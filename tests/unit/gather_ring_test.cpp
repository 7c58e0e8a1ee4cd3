// Values are numbered in the order in which a section makes them; what is looked at is which of them an event got.

#include "gather/ring.h"

#include <gtest/gtest.h>

#include <vector>

namespace orlo::gather {
namespace {

using Origins = std::vector<std::uint32_t>;

Ring ring_of(std::uint32_t events)
{
    Ring ring;
    ring.clear();
    for (std::uint32_t i = 0; i < events; ++i)
        ring.add_start(i);
    return ring;
}

Origins origins(Ring &ring, std::size_t events, std::size_t pfield)
{
    Origins found;
    ring.put_in_order();
    for (std::size_t i = 0; i < events; ++i)
        found.push_back(ring.origin(i, pfield));
    return found;
}

TEST(ExplainRing, StartsFollowEachOther)
{
    Ring ring = ring_of(3);
    EXPECT_EQ((Origins{0, 1, 2}), origins(ring, 3, 2));
}

TEST(ExplainRing, EverySectionBeginsAtTheFirstEvent)
{
    Ring ring = ring_of(3);
    for (const std::size_t pfield : {3U, 4U}) {
        ring.begin_section(pfield);
        for (std::uint32_t value = 0; value < 3; ++value)
            ring.store_next(value);
    }
    EXPECT_EQ((Origins{0, 1, 2}), origins(ring, 3, 3));
    EXPECT_EQ((Origins{0, 1, 2}), origins(ring, 3, 4));
}

TEST(ExplainRing, AMemberOfAChordIsACopyBehindItsEvent)
{
    Ring ring = ring_of(2);
    ring.begin_section(3);
    ring.store_next(0);
    ring.store_next(1);
    ring.begin_section(4); // p4 c,e g
    ring.store_next(0);
    ring.store_beside(1);
    ring.store_next(2);
    EXPECT_EQ((Origins{0, 1, 2}), origins(ring, 3, 4));
    EXPECT_EQ((Origins{0, 0, 1}), origins(ring, 3, 2));
    EXPECT_EQ((Origins{0, 0, 1}), origins(ring, 3, 3));
}

TEST(ExplainRing, AChordBehindTheLastEventMovesTheEnd)
{
    Ring ring = ring_of(2);
    ring.begin_section(4);
    ring.store_next(0);
    ring.store_next(1);
    ring.store_beside(2);
    ring.store_beside(3);
    ring.begin_section(5);
    for (std::uint32_t value = 10; value < 14; ++value)
        ring.store_next(value);
    EXPECT_EQ((Origins{0, 1, 2, 3}), origins(ring, 4, 4));
    EXPECT_EQ((Origins{0, 1, 1, 1}), origins(ring, 4, 2));
    EXPECT_EQ((Origins{10, 11, 12, 13}), origins(ring, 4, 5));
}

TEST(ExplainRing, ARepeatedChordGrowsBehindTheLastEvent)
{
    Ring ring = ring_of(1);
    ring.begin_section(4);
    ring.store_next(0);
    ring.begin_chord();
    ring.store_beside(1);
    ring.grow(2);
    EXPECT_EQ((Origins{0, 1, 2}), origins(ring, 3, 4));
    EXPECT_EQ((Origins{0, 0, 0}), origins(ring, 3, 2));
}

TEST(ExplainRing, WhatARepeatedChordAddsLastsAsTheChordDoes)
{
    Ring ring = ring_of(3);
    ring.begin_section(3);
    for (std::uint32_t value = 0; value < 3; ++value)
        ring.store_next(value);
    ring.begin_section(4); // a chord of the first event, repeated: at the third it adds a member behind the last
    ring.store_next(0);
    ring.begin_chord();
    ring.store_beside(1);
    ring.store_next(2);
    ring.store_next(3);
    ring.grow(4);
    EXPECT_EQ((Origins{0, 1, 2, 3, 4}), origins(ring, 5, 4));
    EXPECT_EQ((Origins{0, 0, 1, 2, 0}), origins(ring, 5, 3));
    EXPECT_EQ((Origins{0, 0, 1, 2, 2}), origins(ring, 5, 2));
}

TEST(ExplainRing, ChordsOfALaterSectionStandAmongThoseOfAnEarlierOne)
{
    Ring ring = ring_of(1);
    ring.begin_section(4); // p4 c,e
    ring.store_next(0);
    ring.store_beside(1);
    ring.begin_section(5); // p5 1,2 3: two events of the first, then the second
    ring.store_next(0);
    ring.store_beside(1);
    ring.store_next(2);
    EXPECT_EQ((Origins{0, 0, 1}), origins(ring, 3, 4));
    EXPECT_EQ((Origins{0, 1, 2}), origins(ring, 3, 5));
}

TEST(ExplainRing, BlocksHaveNothingOfTheOneBefore)
{
    Ring ring = ring_of(3);
    ring.begin_section(7);
    ring.store_next(0);
    ring.clear();
    ring.put_in_order(); // of no events
    ring.add_start(5);
    ring.begin_section(3);
    ring.store_next(6);
    EXPECT_EQ((Origins{5}), origins(ring, 1, 2));
    EXPECT_EQ((Origins{6}), origins(ring, 1, 3));
}

} // namespace
} // namespace orlo::gather

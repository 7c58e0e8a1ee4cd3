#include "gather/distinct.h"

#include <gtest/gtest.h>

#include <limits>

namespace orlo::gather {
namespace {

TEST(ExplainDistinct, AValueCountsOnce)
{
    Distinct distinct;
    EXPECT_EQ(0U, distinct.count());
    for (const float value : {1.0F, 2.0F, 1.0F, std::numeric_limits<float>::infinity(), -1.0F, 2.0F})
        distinct.add(value);
    EXPECT_EQ(4U, distinct.count());
}

TEST(ExplainDistinct, BothZerosAreOne)
{
    Distinct distinct;
    distinct.add(-0.0F);
    distinct.add(0.0F);
    EXPECT_EQ(1U, distinct.count());
}

TEST(ExplainDistinct, WhatIsNoNumberIsNoValue)
{
    Distinct distinct;
    distinct.add(std::numeric_limits<float>::quiet_NaN());
    distinct.add(std::bit_cast<float>(0xFFFFFFFFU));
    EXPECT_EQ(0U, distinct.count());
}

TEST(ExplainDistinct, CountsUpToItsBoundAndOneMore)
{
    Distinct distinct;
    for (const int last : {10000, 10001, 30000}) {
        distinct.clear();
        for (int round = 0; round < 2; ++round)
            for (int i = 1; i <= last; ++i)
                distinct.add(static_cast<float>(i) / 7);
        EXPECT_EQ(last > 10000 ? 10001U : 10000U, distinct.count()) << last;
    }
}

TEST(ExplainDistinct, ValuesWhosePlacesCollideAreToldApart)
{
    Distinct distinct;
    for (std::uint32_t i = 0; i < 10000; ++i) // neighbours in the first bits, and in the last
        distinct.add(std::bit_cast<float>(0x3F800000U + (i << 10U)));
    EXPECT_EQ(10000U, distinct.count());
}

TEST(ExplainDistinct, AClearedOneIsEmpty)
{
    Distinct distinct;
    distinct.add(1.0F);
    distinct.clear();
    EXPECT_EQ(0U, distinct.count());
    distinct.add(1.0F);
    EXPECT_EQ(1U, distinct.count());
}

} // namespace
} // namespace orlo::gather

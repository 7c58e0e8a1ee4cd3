#include "view/lanes.h"

#include "score_support.h"

#include <gtest/gtest.h>

#include <numeric>

namespace orlo::view {
namespace {

using test::add;
using test::empty_score;
using test::NONE;

std::size_t total(const Lane &lane) { return std::accumulate(lane.bins.begin(), lane.bins.end(), std::size_t{0}); }

TEST(Lanes, BeginWithP3AndCountWhatIsThere)
{
    Score score = empty_score(1);
    add(score, 0, 0, 1, {10, 8});
    add(score, 0, 1, 2, {30});
    add(score, 0, 2, 3, {20, NONE});
    const auto lanes = lanes_of(score);
    ASSERT_EQ(3U, lanes.size());
    EXPECT_EQ("p3", lanes[0].name);
    EXPECT_EQ(3, lanes[0].field);
    EXPECT_EQ(10, lanes[1].range.low);
    EXPECT_EQ(30, lanes[1].range.high);
    EXPECT_EQ(3U, lanes[1].count);
    EXPECT_EQ(1U, lanes[2].count); // one has no p5, which is not missing
    EXPECT_EQ(1U, lanes[2].missing);
    EXPECT_EQ(8, lanes[2].range.low);
}

TEST(Lanes, CanHoldNoNumberAtAll)
{
    Score score = empty_score(1);
    add(score, 0, 0, 1, {NONE});
    const Lane lane = lanes_of(score)[1];
    EXPECT_EQ(0U, lane.count);
    EXPECT_EQ(1U, lane.missing);
    EXPECT_EQ(0U, total(lane));
}

TEST(Lanes, TellOtherNamesToo)
{
    Score score = empty_score(1);
    add(score, 0, 0, 1, {64, 60});
    score.field_names[3] = "velocity";
    score.field_names[4] = "";
    const auto lanes     = lanes_of(score);
    EXPECT_EQ("p4 velocity", lanes[1].name);
    EXPECT_EQ("p5", lanes[2].name);
}

TEST(Lanes, CountValuesByParts)
{
    Score score = empty_score(1);
    for (int i = 0; i <= 24; i++)
        add(score, 0, i, 1, {static_cast<double>(i)});
    const Lane lane = lanes_of(score)[1];
    EXPECT_EQ(25U, total(lane));
    EXPECT_EQ(1U, lane.bins.front());
    EXPECT_EQ(2U, lane.bins.back()); // the highest value is in the last part
}

TEST(Lanes, CountEqualValuesInTheMiddle)
{
    Score score = empty_score(1);
    add(score, 0, 0, 1, {7});
    add(score, 0, 0, 1, {7});
    EXPECT_EQ(2U, lanes_of(score)[1].bins[HISTOGRAM_BINS / 2]);
}

TEST(Lanes, AreNotMoreThanTheirLimit)
{
    Score score = empty_score(1);
    add(score, 0, 0, 1, {});
    score.field_names.resize(FIRST_LANE + MOST_LANES - 1);
    EXPECT_EQ(static_cast<std::size_t>(MOST_LANES), lanes_of(score).size());
    score.field_names.resize(FIRST_LANE + MOST_LANES);
    EXPECT_EQ(static_cast<std::size_t>(MOST_LANES), lanes_of(score).size());
}

TEST(BinOf, StaysInsideOfExtremeRanges)
{
    constexpr double largest = LARGEST_VALUE;
    EXPECT_EQ(0U, bin_of({-largest, largest}, -largest));
    EXPECT_EQ(HISTOGRAM_BINS - 1, bin_of({-largest, largest}, largest));
    EXPECT_EQ(HISTOGRAM_BINS / 2, bin_of({-1e30, 1e30}, 0));
}

} // namespace
} // namespace orlo::view

#include "view/pictures.h"

#include "score_support.h"
#include "view/axes.h"
#include "view/marks.h"
#include "view/page_files.h"
#include "view/plan.h"
#include "view/summary.h"

#include <gtest/gtest.h>

namespace orlo::view {
namespace {

using test::add;
using test::empty_score;
using test::NONE;

std::size_t count_of(const std::string &text, const std::string &part)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        count++;
    return count;
}

bool holds(const std::string &text, const std::string &part) { return text.find(part) != std::string::npos; }

Score small_score()
{
    Score score = empty_score(2);
    add(score, 0, 0, 1, {1000, 8.00});
    add(score, 0, 1, 1, {2000, 8.07});
    add(score, 1, 2, 2, {3000, NONE});
    return score;
}

Score score_of(std::size_t events)
{
    Score score = empty_score(2);
    for (std::size_t i = 0; i < events; i++)
        add(score, static_cast<int>(i % 2), static_cast<double>(i) / 100, 0.1, {static_cast<double>(i % 100), 8.05});
    return score;
}

TEST(Plan, PartsTheRollIntoPitchesAndRows)
{
    const Score score = small_score();
    const Plan  plan  = plan_of(score);
    EXPECT_TRUE(plan.pitched);
    EXPECT_EQ(1, plan.rows);
    EXPECT_EQ(-1, plan.series[0].row);
    EXPECT_EQ(0, plan.series[1].row);
    EXPECT_EQ(59.5, plan.keys.low);
    EXPECT_EQ(67.5, plan.keys.high);
    EXPECT_EQ(plan.pitch_height + ROW_HEIGHT, plan.roll_height);
    EXPECT_GT(note_y(plan, score, score.events[0]), note_y(plan, score, score.events[1])); // higher is further up
    EXPECT_EQ(row_y(plan, 0), note_y(plan, score, score.events[2]));
}

TEST(Plan, MakesNotesAsHighAsThereIsRoom)
{
    const auto plan_from_10_to = [](double highest) {
        Score score = empty_score(1);
        score.pitch = Pitch::key;
        add(score, 0, 0, 1, {1, 10});
        add(score, 0, 0, 1, {1, highest});
        return plan_of(score);
    };
    const struct {
        double highest, pitches, note;
    } heights[] = {{10, 140, 10}, {22, 140, 9}, {23, 140, 9},  {24, 150, 9},
                   {53, 440, 9},  {54, 440, 8}, {117, 440, 3}, {409, 440, 3}};
    for (const auto &height : heights) {
        const Plan plan = plan_from_10_to(height.highest);
        EXPECT_EQ(height.pitches, plan.pitch_height) << height.highest;
        EXPECT_EQ(height.note, plan.note_height) << height.highest;
    }
    EXPECT_EQ(8, plan_of(empty_score(1)).note_height) << "in a row";
}

TEST(Plan, HasRowsAloneWithoutPitches)
{
    Score score       = small_score();
    score.pitch_field = 0;
    score.pitch       = Pitch::none;
    const Plan plan   = plan_of(score);
    EXPECT_FALSE(plan.pitched);
    EXPECT_EQ(0, plan.pitch_height);
    EXPECT_EQ(2 * ROW_HEIGHT, plan.roll_height);
    EXPECT_EQ("", pitch_text(score, plan));
}

TEST(Plan, StartsAtZeroUnlessHalfWouldBeEmpty)
{
    Score early = empty_score(1);
    add(early, 0, 4, 6, {});
    EXPECT_LT(plan_of(early).time.low, 0.1);
    Score late = empty_score(1);
    add(late, 0, 90, 10, {});
    EXPECT_GT(plan_of(late).time.low, 89);
    Score before = empty_score(1);
    add(before, 0, -5, 1, {});
    add(before, 0, 5, 1, {});
    EXPECT_LT(plan_of(before).time.low, -5);
    EXPECT_GT(plan_of(before).time.high, 6);
}

TEST(Plan, GivesATimeToAMoment)
{
    for (const double start : {0.0, 7.0, LARGEST_TIME}) {
        Score score = empty_score(1);
        add(score, 0, start, 0, {});
        const Plan plan = plan_of(score);
        EXPECT_LT(plan.time.low, plan.time.high) << start;
        EXPECT_LE(plan.time.low, start);
        EXPECT_GE(plan.time.high, start);
    }
}

TEST(Plan, StandsTheLargestNumbers)
{
    Score score = empty_score(1);
    add(score, 0, LARGEST_TIME, LARGEST_TIME, {LARGEST_VALUE, 8});
    add(score, 0, 0, 1, {-LARGEST_VALUE, 8});
    const std::string picture = svg_picture(score);
    const std::string page    = html_page(score);
    EXPECT_FALSE(holds(picture, "nan") || holds(picture, "inf"));
    EXPECT_FALSE(holds(page.substr(page.find("<main>")), ">nan<"));
    EXPECT_EQ(1, fraction(plan_of(score).time, plan_of(score).time.high));
}

TEST(Plan, GathersInstrumentsBeyondTheLast)
{
    Score score = empty_score(MOST_SERIES + 2);
    for (int i = 0; i < MOST_SERIES + 2; i++)
        add(score, i, i, 1, {1, 8});
    const Plan plan = plan_of(score);
    ASSERT_EQ(static_cast<std::size_t>(MOST_SERIES), plan.series.size());
    EXPECT_EQ(3U, plan.series.back().events);
    EXPECT_EQ("3 more instruments", plan.series.back().name);
    EXPECT_EQ(MOST_SERIES - 1, series_of(score.events.back()));
}

TEST(Plan, NamesNumberedInstruments)
{
    EXPECT_EQ("i2.1", instrument_name("2.1"));
    EXPECT_EQ("\"flute\"", instrument_name("\"flute\""));
    EXPECT_EQ("channel 10", instrument_name("channel 10"));
    EXPECT_EQ("", instrument_name(""));
}

TEST(Plan, ChangesAboveManyEvents)
{
    EXPECT_FALSE(plan_of(score_of(MANY_EVENTS)).many);
    EXPECT_TRUE(plan_of(score_of(MANY_EVENTS + 1)).many);
    EXPECT_FALSE(plan_of(score_of(MANY_EVENTS + 1)).details);
}

TEST(Plan, KeepsNoNumbersWhereThereAreTooMany)
{
    Score score = small_score();
    EXPECT_TRUE(plan_of(score).details);
    score.values.resize(MOST_VALUES + 1);
    EXPECT_FALSE(plan_of(score).details);
    EXPECT_TRUE(holds(html_page(score), "\"events\":[]"));
}

TEST(Page, HasAnElementForEachOfFiftyThousandEvents)
{
    const std::string page = html_page(score_of(MANY_EVENTS));
    EXPECT_EQ(MANY_EVENTS, count_of(page, "<rect x=")); // those of the legend begin with their class
    EXPECT_TRUE(holds(page, "\"many\":false"));
    EXPECT_FALSE(holds(page, "are not shown"));
}

TEST(Page, HasPathsAloneForOneMore)
{
    const std::string page = html_page(score_of(MANY_EVENTS + 1));
    EXPECT_EQ(0U, count_of(page, "<rect x="));
    EXPECT_TRUE(holds(page, "\"many\":true"));
    EXPECT_TRUE(holds(page, "\"events\":[]"));
    EXPECT_TRUE(holds(page, "drawn as one"));
    EXPECT_TRUE(holds(page, "are not shown"));
    EXPECT_LT(page.size(), 1'000'000U);
}

TEST(Page, SaysThatThereIsNothing)
{
    Score             score = empty_score(0);
    const std::string page  = html_page(score);
    EXPECT_TRUE(holds(page, "There are no events to draw."));
    EXPECT_FALSE(holds(page, "<script"));
    EXPECT_TRUE(holds(svg_picture(score), "no events"));
}

TEST(Page, ListsTroubles)
{
    Score score = small_score();
    EXPECT_FALSE(holds(html_page(score), "<details"));
    score.troubles.push_back({7, "p4 is no number: '<b>'"});
    score.troubles.push_back({0, "the end is missing"});
    const std::string page = html_page(score);
    EXPECT_TRUE(holds(page, "2 things could not be read"));
    EXPECT_TRUE(holds(page, "<b>line 7:</b> p4 is no number: &#39;&lt;b&gt;&#39;"));
    EXPECT_TRUE(holds(page, "<li>the end is missing</li>"));
    EXPECT_TRUE(holds(svg_picture(score), "2 things could not be read"));
    score.troubles_left_out = 5;
    EXPECT_EQ("105 things could not be read, or left out", trouble_text(score));
}

TEST(Page, EscapesNames)
{
    Score score            = small_score();
    score.title            = "<script>alert(1)</script>";
    score.instruments[0]   = "\"</script><b>\"";
    const std::string page = html_page(score);
    EXPECT_FALSE(holds(page, "<script>alert"));
    EXPECT_EQ(2U, count_of(page, "</script>")); // data and script
    EXPECT_FALSE(holds(svg_picture(score), "<b>"));
}

TEST(Page, NamesInstrumentsWhereItKeepsEvents)
{
    Score score            = small_score();
    score.instruments      = {"1", "\"bell\""};
    const std::string page = html_page(score);
    EXPECT_TRUE(holds(page, R"("instruments":["i1","\u0022bell\u0022"])"));
    EXPECT_TRUE(holds(html_page(score_of(MANY_EVENTS + 1)), R"("instruments":[])"));
}

// thirteen keys from c to c, ten pixels each, and two rows
Plan octave_plan()
{
    Plan plan{};
    plan.pitched      = true;
    plan.keys         = {59.5, 72.5};
    plan.pitch_height = 130;
    plan.rows         = 2;
    return plan;
}

TEST(Grid, HasStripesAtBlackKeys)
{
    const std::string grid = roll_grid(octave_plan(), "780");
    EXPECT_EQ(5U, count_of(grid, "<rect"));
    for (const char *top : {"20", "40", "60", "90", "110"}) // b flat, a flat, f sharp, e flat, c sharp
        EXPECT_EQ(1U, count_of(grid, joined({R"(<rect class="k" y=")", top, R"(" width="780" height="10"/>)"}))) << top;
}

TEST(Grid, IsStrongAtOctavesAndAboveTheRows)
{
    const Plan        plan = octave_plan();
    const std::string grid = roll_grid(plan, "780");
    EXPECT_EQ(3U, count_of(grid, "class=\"G\""));
    for (const char *y : {"5", "125", "130"})
        EXPECT_EQ(1U, count_of(grid, joined({R"(<line class="G" x2="780" y1=")", y, R"(" y2=")", y, R"("/>)"}))) << y;
    // the other keys that are named, and the rows, of which this plan names none
    EXPECT_EQ(count_of(roll_labels(plan, 0), "<text") - 2 + 2, count_of(grid, "class=\"g\""));
}

TEST(Grid, IsWeakInLanes)
{
    const Score       score = small_score();
    const std::string lane  = lane_grid(plan_of(score).lanes[0], "780");
    EXPECT_LT(0U, count_of(lane, "class=\"g\" x2=\"780\""));
    EXPECT_EQ(0U, count_of(lane, "class=\"G\""));
}

TEST(Page, DrawsBarsBesideLanes)
{
    const Score       score = small_score();
    const std::string page  = html_page(score);
    for (const Lane &lane : lanes_of(score)) {
        const std::string bars = joined({R"(class="b" d=")", histogram_bars(lane, {76, 8, 0}), "\""});
        EXPECT_EQ(lane.count > 0, holds(page, bars)) << lane.name;
    }
}

TEST(Page, AsksTheNetworkForNothing)
{
    const std::string page = html_page(small_score());
    EXPECT_TRUE(holds(page, "default-src 'none'"));
    EXPECT_FALSE(holds(page, "https:"));
    EXPECT_FALSE(holds(page, "url("));
    EXPECT_FALSE(holds(page, "@import"));
    EXPECT_FALSE(holds(page, "src="));
    EXPECT_TRUE(holds(page, std::string(PAGE_STYLE)));
    EXPECT_TRUE(holds(page, std::string(PAGE_SCRIPT)));
}

TEST(Page, TellsBeatsFromSeconds)
{
    Score score = small_score();
    EXPECT_TRUE(holds(html_page(score), "<div>seconds</div>"));
    score.beats            = true;
    const std::string page = html_page(score);
    EXPECT_TRUE(holds(page, "<div>beats</div>"));
    EXPECT_TRUE(holds(page, "\"unit\":\"beats\""));
    EXPECT_TRUE(holds(svg_picture(score), ">beats<"));
}

TEST(Page, SaysWhichLanesAreLeftOut)
{
    Score score = small_score();
    score.field_names.resize(FIRST_LANE + MOST_LANES, "p");
    EXPECT_EQ("P-fields above p42 have no lane.", left_out_text(plan_of(score)));
    EXPECT_TRUE(holds(html_page(score), "P-fields above p42 have no lane."));
    EXPECT_TRUE(holds(svg_picture(score), "P-fields above p42 have no lane."));
}

TEST(Page, ShowsValuesThatAreNoNumbers)
{
    Score score = small_score();
    add(score, 0, 3, 1, {LARGEST_VALUE, 8});
    const std::string page = html_page(score);
    EXPECT_TRUE(holds(page, "[3,1,2,2,148,null,2,2,2,3000,null]"));
    EXPECT_TRUE(holds(page, ",1e+300,8]"));
}

TEST(Summary, TellsLanes)
{
    Score score = small_score();
    EXPECT_EQ("1000 to 3000, 3 values", lane_text(lanes_of(score)[1]));
    EXPECT_EQ("8 to 8.07, 2 values, 1 without a number", lane_text(lanes_of(score)[2]));
    Score equal = empty_score(1);
    add(equal, 0, 0, 1, {NONE});
    EXPECT_EQ("always 1, 1 value", lane_text(lanes_of(equal)[0]));
    EXPECT_EQ("no numbers, 1 without a number", lane_text(lanes_of(equal)[1]));
}

TEST(Summary, TellsPitches)
{
    Score score = empty_score(7);
    for (int i = 0; i < 7; i++)
        add(score, i, 0, 1, {60, 8});
    EXPECT_EQ("pitch: p5, octave.pitch-class", pitch_text(score, plan_of(score)));
    score.pitch = Pitch::oct;
    EXPECT_EQ("pitch: p5, octave.fraction", pitch_text(score, plan_of(score)));
    score.pitches = {{0, Pitch::none}, {4, Pitch::key},  {5, Pitch::hertz}, {0, Pitch::none},
                     {0, Pitch::none}, {0, Pitch::none}, {0, Pitch::none}};
    EXPECT_EQ("pitches of i2: p4, MIDI key; i3: p5, hertz", pitch_text(score, plan_of(score)));
    score.pitches.assign(7, {4, Pitch::key});
    EXPECT_EQ("pitches of i1: p4, MIDI key; i2: p4, MIDI key; i3: p4, MIDI key; i4: p4, MIDI key and so on",
              pitch_text(score, plan_of(score)));
}

TEST(Marks, ArePathsWithRelativeMoves)
{
    Score score = empty_score(1);
    add(score, 0, 0, 10, {0, 8});
    add(score, 0, 90, 10, {100, 8});
    Plan plan           = plan_of(score);
    plan.time           = {0, 100};
    const auto outlines = note_outlines(plan, score, {100, 0, 0});
    ASSERT_EQ(1U, outlines.size());
    EXPECT_EQ("M0 65h10v10h-10zm90 0h10v10h-10z", outlines[0].data);
    const auto dots = value_dots(plan, score, plan.lanes[1], {100, 0, 0});
    ASSERT_EQ(1U, dots.size());
    EXPECT_EQ("M0 68h0m90-64h0", dots[0].data);
    EXPECT_EQ("<rect x=\"0\" y=\"65\" width=\"10\" height=\"10\"/><rect x=\"90\" y=\"65\" width=\"10\" height=\"10\"/>",
              note_elements(plan, score, {100, 0, 0})[0]);
}

TEST(Marks, KeepShortNotesVisible)
{
    Score score = empty_score(1);
    add(score, 0, 0, 0, {0, 8});
    add(score, 0, 1000, 0, {0, 8});
    EXPECT_TRUE(holds(note_elements(plan_of(score), score, {100, 0, 0})[0], "width=\"0.1\""));
}

TEST(Marks, MergeWhatFallsOnTheSamePlace)
{
    Score score = empty_score(1);
    for (const double start : {0.0, 5.0, 50.0, 10.0})
        add(score, 0, start, 10, {start < 20 ? start : 20.0, 8});
    add(score, 0, 100, 0, {20, NONE});
    add(score, 0, 100, 0, {NONE, 8});
    Plan plan        = plan_of(score);
    plan.many        = true;
    plan.time        = {0, 100};
    const auto lines = note_lines(plan, score, {100, 0, 0});
    ASSERT_EQ(1U, lines.size());
    EXPECT_EQ("M0 70h20m30 0h10m40 0h0.1m-0.1 78h0.1", lines[0].data);
    Lane lane  = plan.lanes[1];
    lane.range = {0, 64};
    for (Event &event : score.events)
        event.start = 1;
    EXPECT_EQ("M1 48v0m0 10v0m0 5v0m0 5v0", value_dots(plan, score, lane, {100, 0, 0})[0].data);
    lane.range = {0, 640}; // one pixel, or the next
    EXPECT_EQ("M1 66v2", value_dots(plan, score, lane, {100, 0, 0})[0].data);
}

TEST(Marks, OfManyEventsAreBoundedByThePlace)
{
    const Score small = score_of(MANY_EVENTS + 1);
    const Score large = score_of(4 * MANY_EVENTS);
    const auto  size  = [](const Score &score) { return svg_picture(score).size(); };
    EXPECT_LT(size(large), 2 * size(small));
}

TEST(Histogram, IsAsWideAsItsFullestPart)
{
    Lane lane;
    EXPECT_EQ("", histogram_bars(lane, {70, 0, 0}));
    lane.bins[0]  = 10;
    lane.bins[23] = 5;
    EXPECT_EQ("M0 65.3h70v2.5h-70zm0-61.3h35v2.5h-35z", histogram_bars(lane, {70, 0, 0}));
}

TEST(Roll, ShortensNamesThatAreLongerThanTheirRoom)
{
    const auto roll_of = [](std::size_t title, std::size_t name) {
        Score score          = empty_score(1);
        score.title          = std::string(title, 't');
        score.instruments[0] = std::string(name, 'n');
        add(score, 0, 0, 1, {1000, NONE});
        return text_roll(score, 40, 5);
    };
    const std::string longest = roll_of(60, 12);
    EXPECT_TRUE(longest.starts_with(std::string(60, 't') + ": 1 event"));
    EXPECT_TRUE(holds(longest, "\n" + std::string(12, 'n') + "|"));
    EXPECT_TRUE(longest.ends_with("A " + std::string(12, 'n') + "\n"));
    const std::string longer = roll_of(61, 13);
    EXPECT_TRUE(longer.starts_with(std::string(58, 't') + "..: 1 event"));
    EXPECT_TRUE(holds(longer, "\n" + std::string(10, 'n') + "..|"));
    EXPECT_TRUE(longer.ends_with("A " + std::string(10, 'n') + "..\n"));
}

TEST(Svg, IsTheSameForTheSameScore) { EXPECT_EQ(svg_picture(small_score()), svg_picture(small_score())); }

TEST(Svg, HasTheColoursOfThePage)
{
    const std::string picture = svg_picture(small_score());
    for (std::size_t i = 0; i < COLOURS; i++) {
        const std::string name  = "--c" + std::to_string(i) + ": ";
        const std::size_t place = PAGE_STYLE.find(name) + name.size();
        EXPECT_TRUE(holds(picture, std::string(PAGE_STYLE.substr(place, 7)))) << name;
    }
}

TEST(Svg, WrapsItsLegend)
{
    Score score = empty_score(30);
    for (int i = 0; i < 30; i++)
        add(score, i, i, 1, {1, 8});
    const std::string picture = svg_picture(score);
    EXPECT_TRUE(holds(picture, "i30 (1)"));
    EXPECT_TRUE(holds(picture, "c7 y2")); // all colours in all styles
    EXPECT_TRUE(holds(picture, "c5 y0"));
    EXPECT_TRUE(holds(picture, " x=\"10\" y=\"79\"")) << "the second line of the legend";
}

TEST(Svg, ShortensNamesThatAreLongerThanTheirRoom)
{
    const auto picture_of = [](std::size_t title, std::size_t name) {
        Score score          = empty_score(1);
        score.title          = std::string(title, 't');
        score.instruments[0] = std::string(name, 'n');
        add(score, 0, 0, 1, {1, NONE});
        return svg_picture(score);
    };
    EXPECT_TRUE(holds(picture_of(80, 1), ">" + std::string(80, 't') + "</text>"));
    EXPECT_TRUE(holds(picture_of(81, 1), ">" + std::string(79, 't') + "\u2026</text>"));
    EXPECT_TRUE(holds(picture_of(1, 24), ">" + std::string(24, 'n') + " (1)</text>"));
    EXPECT_TRUE(holds(picture_of(1, 25), ">" + std::string(23, 'n') + "\u2026 (1)</text>"));
    EXPECT_TRUE(holds(picture_of(1, 9), ">" + std::string(9, 'n') + "</text>"));
    EXPECT_TRUE(holds(picture_of(1, 10), ">" + std::string(8, 'n') + "\u2026</text>"));
}

TEST(Svg, DrawsSmallerDotsWhereThereAreMany)
{
    EXPECT_TRUE(holds(svg_picture(small_score()), "stroke-width=\"3.2\""));
    EXPECT_TRUE(holds(svg_picture(score_of(2001)), "stroke-width=\"2.2\""));
    EXPECT_TRUE(holds(html_page(score_of(2001)), "stroke-width=\"2.5\""));
    EXPECT_TRUE(holds(svg_picture(score_of(MANY_EVENTS + 1)), "stroke-width=\"1.2\""));
}

TEST(Svg, DrawsAWideRangeOfPitchesWithoutStripes)
{
    Score score = empty_score(1);
    score.pitch = Pitch::key;
    add(score, 0, 0, 1, {1, 10});
    add(score, 0, 0, 1, {1, 900});
    const std::string picture = svg_picture(score);
    EXPECT_FALSE(holds(picture, "<rect class=\"k\""));
    EXPECT_TRUE(holds(picture, ">500</text>"));
}

} // namespace
} // namespace orlo::view

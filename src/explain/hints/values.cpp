// A p3 from 200 up is a code, and a number of milliseconds looks the same. It is taken for one only where the code makes no sense:
// nothing is left of the event, or it outlasts its block by far. What ends there on purpose, a drone, has few events.

#include "explain/hints/hints.h"

#include "base/codes.h"

#include <algorithm>
#include <cmath>

namespace orlo::explain {
namespace {

// p3

constexpr float         LONGER    = 200.0F; // the codes from these on
constexpr float         SHORTER   = 300.0F;
constexpr float         BEATS     = 400.0F;
constexpr float         SECONDS   = 1000.0F;
constexpr float         LONG      = 20.0F;  // seconds
constexpr float         VERY_LONG = 100.0F; // seconds
constexpr float         USUAL     = 10.0F;  // above the first of a range
constexpr std::uint64_t MELODY    = 4;      // events; fewer may be a drone
constexpr double        SHORTEST  = 0.15;   // of an interval, that a note is meant to last
constexpr double        LONGEST   = 3.0;

bool is_nothing(const Coded &coded) { return coded.value == BEATS || coded.value == SECONDS; }

// whether it may be milliseconds for such intervals
bool fits_as_milliseconds(const Coded &coded, const Section &starts)
{
    const double share = static_cast<double>(coded.value) / 1000.0 * static_cast<double>(starts.count) / starts.statistics.sum;
    return starts.count >= MELODY && share > SHORTEST && share < LONGEST;
}

bool outlasts(const Coded &coded, const Section &starts, float seconds)
{
    return coded.least > seconds && static_cast<double>(coded.least) > starts.statistics.sum;
}

bool makes_no_sense(const Coded &coded, const Section &starts)
{
    if (is_nothing(coded))
        return true;
    if (coded.value < SHORTER)
        return outlasts(coded, starts, LONG);
    if (coded.value < BEATS)
        return coded.greatest <= 0.0F && starts.statistics.least > 0.0;
    if (coded.value < SECONDS)
        return outlasts(coded, starts, LONG) && fits_as_milliseconds(coded, starts);
    return outlasts(coded, starts, VERY_LONG) && fits_as_milliseconds(coded, starts);
}

// a little above the beginning of its range, as codes mostly are
bool is_usual(const Coded &coded)
{
    const float first = coded.value < SHORTER ? LONGER : coded.value < BEATS ? SHORTER : coded.value < SECONDS ? BEATS : SECONDS;
    return coded.value > first && coded.value <= first + USUAL;
}

std::string meaning_of(const Coded &coded)
{
    const auto        value = static_cast<double>(coded.value);
    const std::string least = decimal_text(static_cast<double>(coded.least));
    if (coded.value < SHORTER)
        return "from 200 to below 300 it is the interval plus p3 - 200 seconds: " + least + " s";
    if (coded.value < BEATS)
        return "from 300 to below 400 it is the interval minus p3 - 300 seconds: " + decimal_text(value - 300.0) +
               " s less than the interval has";
    if (coded.value < SECONDS)
        return "from 400 to below 1000 it is p3 - 400 beats: " + decimal_text(value - 400.0) + " beats";
    return "from 1000 up it is p3 - 1000 seconds: " + least + " s";
}

// seconds by their code, where all of the section is written in milliseconds
std::vector<Edit> in_seconds(const Section &section)
{
    const bool other_types =
        std::any_of(section.inputs.begin(), section.inputs.end(), [](const Input &in) { return in.code != TYPE_RE; });
    std::uint64_t     count = 0;
    std::vector<Edit> edits;
    for (const Coded &coded : section.coded) {
        const double value = static_cast<double>(coded.value);
        if (!coded.written || !is_plain(coded.place) || coded.place.file != section.coded.front().place.file ||
            value != std::floor(value))
            return {};
        count += coded.count;
        edits.push_back({coded.place, decimal_text(1000.0 + value / 1000.0)});
    }
    if (count != section.count || other_types)
        return {};
    return edits;
}

void look_at_codes(Finder &finder, const Block &block, const Section &section)
{
    const Section &starts = block.sections.front();
    const auto     wrong =
        std::find_if(section.coded.begin(), section.coded.end(), [&](const Coded &coded) { return makes_no_sense(coded, starts); });
    if (wrong == section.coded.end())
        return;
    const bool knows_codes = std::any_of(section.coded.begin(), section.coded.end(),
                                         [&](const Coded &coded) { return is_usual(coded) && !makes_no_sense(coded, starts); });
    if (knows_codes)
        return;
    const bool silent = wrong->greatest <= 0.0F;
    add(finder, {HintKind::code_as_duration,
                 "p3 of " + decimal_text(static_cast<double>(wrong->value)) + " is a code, " +
                     (silent ? "and leaves nothing of an event"
                             : "which makes an event last " + decimal_text(static_cast<double>(wrong->least)) + " s"),
                 meaning_of(*wrong) + "; 1000.5 is half a second", wrong->place, index_of(finder, block), in_seconds(section)});
}

// what is no number

// "2 of its 4 values are"
std::string share_of(std::uint64_t count, std::uint64_t all)
{
    if (all == 1)
        return "its only value is";
    return std::to_string(count) + " of its " + std::to_string(all) + " values " + (count == 1 ? "is" : "are");
}

void look_at_no_number(Finder &finder, const Block &block, const Section &section)
{
    add(finder, {HintKind::no_number,
                 name_of(section) + " has values that are no number",
                 share_of(section.no_numbers, section.count) + " infinite or no number at all, which the score shows as inf or nan",
                 section.no_number,
                 index_of(finder, block),
                 {}});
}

// whether some events are not written
bool has_rests(const Block &block)
{
    return std::any_of(block.sections.begin(), block.sections.end(), [](const Section &section) {
        const bool notes =
            std::any_of(section.inputs.begin(), section.inputs.end(), [](const Input &input) { return input.code == TYPE_NO; });
        return section.statistics.least < 0.0 && (section.pfield == 3 || notes);
    });
}

// whether 0 is written once in a section
bool is_only_zero(const Finder &finder, const Section &section)
{
    constexpr std::string_view WORD  = "0123456789.";
    const std::string_view     text  = text_at(finder, section.place);
    int                        zeros = 0;
    for (std::size_t at = text.find('0'); at != std::string_view::npos; at = text.find('0', at + 1)) // each one once
        if (WORD.find(text[at - 1]) == std::string_view::npos &&
            (at + 1 == text.size() || WORD.find(text[at + 1]) == std::string_view::npos))
            ++zeros;
    return is_plain(section.place) && zeros == 1;
}

void look_at_levels(Finder &finder, const Block &block, const Section &section)
{
    if (section.levels == 0 || finder.midi || has_rests(block))
        return;
    std::vector<Edit> edits;
    if (is_plain(section.level) && text_at(finder, section.level) == "0" && is_only_zero(finder, section))
        edits.push_back({section.level, "1"});
    add(finder, {HintKind::no_number,
                 name_of(section) + " is written in decibels, and an amplitude of " +
                     (section.statistics.least < 0.0 ? "0 or below" : "0") + " has none",
                 share_of(section.levels, section.count) + " written as -inf or nan", section.level, index_of(finder, block),
                 std::move(edits)});
}

} // namespace

void look_at_values(Finder &finder)
{
    for (const Block &block : finder.piece.blocks) {
        if (!is_whole(block) || block.sections.empty())
            continue;
        const auto no_numbers = std::find_if(block.sections.begin(), block.sections.end(),
                                             [](const Section &section) { return section.no_numbers > 0; });
        if (no_numbers != block.sections.end() && !has_hint(finder, HintKind::no_rhythm, block) &&
            !has_hint(finder, HintKind::decimals_in_whole, block))
            look_at_no_number(finder, block, *no_numbers);
        if (no_numbers != block.sections.end())
            continue;
        for (const Section &section : block.sections) {
            if (section.pfield == 3 && !section.coded.empty())
                look_at_codes(finder, block, section);
            look_at_levels(finder, block, section);
        }
    }
}

} // namespace orlo::explain

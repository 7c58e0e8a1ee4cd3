// A p3 from 200 up is a code, and a number of milliseconds looks the same. It is taken for one only where the code makes no sense:
// nothing is left of the event, or it outlasts its block by far. What ends there on purpose, a drone, has few events.

#include "explain/hints/hints.h"

#include "base/codes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

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
constexpr double        SHORTEST  = 0.2;    // of an interval, that a note is meant to last
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
    const std::string least = short_number(static_cast<double>(coded.least));
    if (coded.value < SHORTER)
        return "from 200 to below 300 it is the interval plus p3 - 200 seconds: " + least + " s";
    if (coded.value < BEATS)
        return "from 300 to below 400 it is the interval minus p3 - 300 seconds: " + short_number(value - 300.0) +
               " s less than the interval has";
    if (coded.value < SECONDS)
        return "from 400 to below 1000 it is p3 - 400 beats: " + short_number(value - 400.0) + " beats";
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
        edits.push_back({coded.place, short_number(1000.0 + value / 1000.0)});
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
                 "p3 of " + short_number(static_cast<double>(wrong->value)) + " is a code, " +
                     (silent ? "and leaves nothing of an event"
                             : "which makes an event last " + short_number(static_cast<double>(wrong->least)) + " s"),
                 meaning_of(*wrong) + "; a duration in seconds is 1000 and their number", wrong->place, index_of(finder, block),
                 in_seconds(section)});
}

// rhythms

bool is_digit(char c) { return c >= '0' && c <= '9'; }

bool is_number(std::string_view text)
{
    if (text.starts_with('+') || text.starts_with('-'))
        text.remove_prefix(1);
    return !text.empty() && std::all_of(text.begin(), text.end(), is_digit);
}

// "4." and "5"
bool is_fraction(std::string_view first, std::string_view second)
{
    return first.ends_with('.') && is_number(first.substr(0, first.size() - 1)) && !second.empty() && is_digit(second[0]) &&
           is_number(second);
}

// "4" and "+8"
bool is_sum(std::string_view first, std::string_view second)
{
    return !first.empty() && (is_digit(first.back()) || first.back() == '.') && second.starts_with('+');
}

using Pair = std::vector<Joined>::const_iterator;

Place both_of(const Joined &joined) { return {joined.first.file, joined.first.begin, joined.second.end, joined.first.call}; }

// "4." is 1.5 beats; 0 for a 0
double beats_of(std::string_view rhythm)
{
    const std::size_t digits = rhythm.find_first_of("0123456789");
    if (digits == std::string_view::npos)
        return 0.0;
    const double number = std::strtod(std::string{rhythm.substr(digits, rhythm.find('.') - digits)}.c_str(), nullptr);
    double       added  = number == 0.0 ? 0.0 : 4.0 / number;
    double       beats  = added;
    for (const char c : rhythm)
        if (c == '.')
            beats += added *= 0.5;
    return beats;
}

bool is_in_generator(const Finder &finder, const Joined &joined)
{
    const Block &block = finder.piece.blocks[static_cast<std::size_t>(joined.block)];
    for (const Section &section : block.sections)
        for (const Command &command : section.commands)
            if (command.span && command.place.file == joined.first.file && command.place.call == joined.first.call &&
                command.place.begin <= joined.first.begin && joined.first.end <= command.place.end)
                return true;
    return false;
}

// a number of beats among rhythms, where nothing that hangs together with it stands beside it
std::vector<Edit> as_beats(const Finder &finder, const Joined &joined)
{
    const Place            place  = both_of(joined);
    const std::string_view ahead  = text_before(finder, place);
    const std::string_view behind = text_behind(finder, place);
    const auto             ends   = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '}'; };
    if (!is_plain(place) || is_in_generator(finder, joined) || (!behind.empty() && !ends(behind[0])) || ahead.ends_with('\'') ||
        ahead.ends_with(':'))
        return {};
    return {{place, "re " + std::string{text_at(finder, place)} + " rh"}};
}

std::string value_of(std::string_view rhythm)
{
    const double beats = beats_of(rhythm);
    return beats == 0.0 ? "0 is none, and makes the interval infinite"
                        : std::string{rhythm} + " is " + short_number(beats) + (beats == 1.0 ? " beat" : " beats");
}

enum class Meant { beats, tie };

// whether two rhythms are written as what may be meant
bool is_meant(const Finder &finder, const Joined &joined, Meant meant)
{
    if (joined.input != TYPE_RH || joined.input_of_first != TYPE_RH || joined.block == NONE)
        return false;
    const std::string_view first  = text_at(finder, joined.first);
    const std::string_view second = text_at(finder, joined.second);
    return meant == Meant::beats ? is_fraction(first, second) : is_sum(first, second);
}

std::vector<Edit> as_meant(const Finder &finder, const Joined &joined, Meant meant)
{
    if (meant == Meant::beats)
        return as_beats(finder, joined);
    if (!is_plain(joined.second))
        return {};
    return {{{joined.second.file, joined.second.begin, joined.second.begin + 1, NONE}, ","}};
}

// of all pairs of a section, where each can be mended
std::vector<Edit> mend_pairs(const Finder &finder, Pair begin, Pair end, Meant meant)
{
    std::vector<Edit> edits;
    for (Pair pair = begin; pair != end; ++pair) {
        if (!is_meant(finder, *pair, meant))
            continue;
        const std::vector<Edit> more = as_meant(finder, *pair, meant);
        if (more.empty() || more.front().place.file != begin->first.file)
            return {};
        edits.insert(edits.end(), more.begin(), more.end());
    }
    return edits;
}

void look_at_pairs(Finder &finder, Pair begin, Pair end, Meant meant)
{
    const Pair pair = std::find_if(begin, end, [&](const Joined &joined) { return is_meant(finder, joined, meant); });
    if (pair == end)
        return;
    const Place       place  = both_of(*pair);
    const std::string first  = std::string{text_at(finder, pair->first)};
    const std::string second = std::string{text_at(finder, pair->second)};
    const std::string values = value_of(first) + ", and " + value_of(second);
    add(finder, {HintKind::no_rhythm,
                 '"' + std::string{text_at(finder, place)} + "\" is read as two rhythms, \"" + first + "\" and \"" + second + '"',
                 meant == Meant::beats ? "rhythms are whole numbers, and a point behind one is a dot: " + values
                                       : "the + is the sign of a number: " + values + "; a comma without blanks ties",
                 place, pair->block, mend_pairs(finder, pair, end, meant)});
}

// those of a section follow each other
void look_at_joined(Finder &finder)
{
    const std::vector<Joined> &joined = finder.piece.joined;
    for (Pair begin = joined.begin(); begin != joined.end();) { // each round takes a section
        const auto other = [begin](const Joined &each) { return each.block != begin->block || each.pfield != begin->pfield; };
        const Pair end   = std::find_if(begin, joined.end(), other);
        look_at_pairs(finder, begin, end, Meant::beats);
        look_at_pairs(finder, begin, end, Meant::tie);
        begin = end;
    }
}

// what is no number

bool has_said(const Finder &finder, std::int32_t block)
{
    return std::any_of(finder.found.begin(), finder.found.end(),
                       [block](const Hint &hint) { return hint.kind == HintKind::no_rhythm && hint.block == block; });
}

bool has_rhythms(const Section &section)
{
    return std::any_of(section.inputs.begin(), section.inputs.end(), [](const Input &input) { return input.code == TYPE_RH; });
}

// "2 of its 4 values are"
std::string share_of(std::uint64_t count, std::uint64_t all)
{
    if (all == 1)
        return "its only value is";
    return std::to_string(count) + " of its " + std::to_string(all) + " values " + (count == 1 ? "is" : "are");
}

void look_at_no_number(Finder &finder, const Block &block, const Section &section)
{
    const std::string_view text  = text_at(finder, section.no_number);
    const std::string      share = share_of(section.no_numbers, section.count);
    if (has_rhythms(section) && text.find_first_not_of("+-0.") == std::string_view::npos)
        add(finder, {HintKind::no_rhythm,
                     "0 is no rhythm",
                     "a rhythm is 4 beats divided by its number, which is infinite for 0; " + name_of(section) + ": " + share +
                         " no number",
                     section.no_number,
                     index_of(finder, block),
                     {}});
    else
        add(finder, {HintKind::no_number,
                     name_of(section) + " has values that are no number",
                     share + " infinite or no number at all, which the score shows as inf or nan",
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

void look_at_levels(Finder &finder, const Block &block, const Section &section)
{
    if (section.levels == 0 || finder.midi || has_rests(block))
        return;
    std::vector<Edit> edits;
    if (is_plain(section.level) && text_at(finder, section.level) == "0")
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
    look_at_joined(finder);
    for (const Block &block : finder.piece.blocks) {
        if (!is_whole(block) || block.sections.empty())
            continue;
        const auto no_numbers = std::find_if(block.sections.begin(), block.sections.end(),
                                             [](const Section &section) { return section.no_numbers > 0; });
        if (no_numbers != block.sections.end() && !has_said(finder, index_of(finder, block)))
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

// Spans in p2 count seconds, so that at a tempo other than 60 a generator covers other beats than its text seems to say. Those who
// know it choose spans that fill the block: then nothing is said.

#include "explain/hints/hints.h"

#include "base/codes.h"

#include <algorithm>
#include <cmath>

namespace orlo::explain {
namespace {

constexpr double SHORT      = 0.95; // of a span or a way: less is said
constexpr double BY_CHANCE  = 0.01; // of a sum: more is another sum
constexpr float  NO_TURN    = 2.0F; // a deviation up to this turns no interval
constexpr double PERCENTAGE = 5.0;  // a deviation from this on was meant in per cent

const Section *starts_of(const Block &block)
{
    return block.sections.empty() || block.sections.front().pfield != 2 ? nullptr : &block.sections.front();
}

bool has_seconds(const Command &command) { return command.span && *command.span > 0.0; }

// whether a generator goes along a curve
bool has_way(const Command &command) { return command.code == CMD_MO || command.code == CMD_MS; }

// how much of its span a generator has used up
double share_of(const Command &command) { return command.seconds / *command.span; }

// whether the intervals end with the block by themselves
bool fits(const Section &starts)
{
    const auto complete = [](const Command &command) { return !has_seconds(command) || share_of(command) >= SHORT; };
    return starts.count <= starts.written + 1 && std::all_of(starts.commands.begin(), starts.commands.end(), complete);
}

// whether spans were meant as beats: as shares of the block, or because as beats they fill it
bool meant_as_beats(const Finder &finder, const Block &block, const Section &starts)
{
    double sum    = 0.0;
    bool   shares = false;
    for (const Command &command : starts.commands)
        if (has_seconds(command)) {
            sum += *command.span;
            shares = shares || text_at(finder, command.span_place).starts_with('T');
        }
    return shares || std::fabs(sum - static_cast<double>(block.beats)) < BY_CHANCE * sum;
}

// at this tempo a second is a beat
bool is_at_60(const Block &block) { return !block.tempo_moves && block.tempo == 60.0F; }

// whether the section is made of spans that fill the block as beats, and of nothing else
bool fill_block(const Block &block, const Section &starts)
{
    double        sum  = 0.0;
    std::uint64_t made = 0;
    for (const Command &command : starts.commands) {
        if (command.span && !has_seconds(command))
            return false;
        sum += command.span ? *command.span : 0.0;
        made += command.count;
    }
    return made == starts.written && std::fabs(sum - static_cast<double>(block.beats)) < BY_CHANCE * sum;
}

// whether nothing stands behind what was read of the section
bool is_all(const Finder &finder, const Block &block, const Section &starts)
{
    const Place end = end_of_section(finder, block, 0);
    if (!is_plain(starts.place) || end.file != starts.place.file || end.begin < starts.place.end)
        return false;
    const std::string rest = without_comments(text_at(finder, {end.file, starts.place.end, end.begin, NONE}));
    return rest.find_first_not_of(" \t\r\n,/") == std::string::npos;
}

// spans that cover the beats which their texts have
std::vector<Edit> in_seconds(const Finder &finder, const Block &block, const Section &starts)
{
    const double      factor = 60.0 / static_cast<double>(block.tempo);
    std::vector<Edit> edits;
    if (!fill_block(block, starts) || !is_all(finder, block, starts))
        return {};
    for (const Command &command : starts.commands) {
        if (!has_seconds(command))
            continue;
        const std::string_view text = text_at(finder, command.span_place);
        if (block.tempo_moves || !is_plain(command.span_place))
            return {};
        if (text.starts_with('T'))
            edits.push_back({command.span_place, "T*" + decimal_text(*command.span / static_cast<double>(block.beats) * factor)});
        else
            edits.push_back({command.span_place, decimal_text(*command.span * factor)});
    }
    return edits;
}

std::string tempo_of(const Command &command)
{
    return command.slowest < command.fastest ? "a tempo that moves" : "tempo " + decimal_text(static_cast<double>(command.slowest));
}

// what is wrong with a generator's span; empty when nothing is
std::string fault_of(const Block &block, const Command &command)
{
    const double span = *command.span;
    if (std::fabs(command.seconds - command.beats) < BY_CHANCE * command.beats) // a second is a beat there
        return {};
    const bool   stopped = share_of(command) < SHORT;
    const double room    = static_cast<double>(block.start + block.beats) - (static_cast<double>(block.reach) - command.beats);
    if (!stopped && std::fabs(command.beats - span) > std::max(command.longest, (1.0 - SHORT) * span))
        return name_of_command(command) + " covers " + decimal_text(command.beats) + " beats instead of " + decimal_text(span);
    if (stopped && has_way(command) && span <= room / SHORT)
        return name_of_command(command) + " goes only " + decimal_text(share_of(command), 2) + " of its way";
    return {};
}

// the first span that is not what it seems
void look_at_seconds(Finder &finder, const Block &block, const Section &starts)
{
    if (block.events > 0 || is_at_60(block) || fits(starts) || !meant_as_beats(finder, block, starts))
        return;
    for (const Command &command : starts.commands) {
        if (!has_seconds(command) || command.count == 0)
            continue;
        std::string text = fault_of(block, command);
        if (text.empty())
            continue;
        add(finder, {HintKind::seconds_in_p2, std::move(text),
                     "in p2 a span counts seconds: at " + tempo_of(command) + " its intervals as they are read take " +
                         decimal_text(command.seconds) + " s for " + decimal_text(command.beats) + " beats, and the span is " +
                         decimal_text(*command.span) + " s",
                     command.span_place, index_of(finder, block), in_seconds(finder, block, starts)});
        return;
    }
}

// the setting that deviates intervals, if it is the only one
const Command *only_deviation(const Finder &finder, const Block &block, const Section &starts)
{
    const Command *found = nullptr;
    int            count = 0;
    for (const std::vector<Command> *commands : {&starts.commands, &block.commands, &finder.piece.commands})
        for (const Command &command : *commands)
            if (command.code == CMD_DV || command.code == CMD_RD) {
                found = found == nullptr ? &command : found;
                ++count;
            }
    return count == 1 ? found : nullptr;
}

// a deviation that was meant in per cent as a fraction
std::vector<Edit> as_fraction(const Finder &finder, const Command *setting)
{
    if (setting == nullptr || !is_plain(setting->place) || setting->numbers.empty() || setting->numbers.front() < PERCENTAGE)
        return {};
    const std::string_view text  = text_at(finder, setting->place);
    const std::size_t      begin = text.find('(');
    const std::size_t      end   = text.find(')');
    if (begin == std::string_view::npos || end == std::string_view::npos)
        return {};
    Place place = setting->place;
    place.end   = place.begin + end;
    place.begin += begin + 1;
    return {{place, decimal_text(setting->numbers.front() / 100.0, 4)}};
}

void look_at_deviation(Finder &finder, const Block &block, const Section &starts)
{
    if (starts.turned == 0 || starts.deviation <= NO_TURN)
        return;
    const Command *setting = only_deviation(finder, block, starts);
    add(finder, {HintKind::backward_starts,
                 "deviation turns " + counted(starts.turned, "interval") + " of p2 below 0, and so into " +
                     (starts.turned == 1 ? "a rest" : "rests"),
                 "a deviation of " + decimal_text(static_cast<double>(starts.deviation)) + " makes intervals " +
                     decimal_text(static_cast<double>(starts.deviation) * 50.0) + " per cent longer or shorter, and of " +
                     counted(starts.count, "interval") + " the one that is furthest back has " +
                     decimal_text(static_cast<double>(starts.furthest)) + " s",
                 setting != nullptr ? setting->place : starts.place, index_of(finder, block), as_fraction(finder, setting)});
}

void look_at_backward(Finder &finder, const Block &block, const Section &starts)
{
    if (starts.backward == 0 || block.events > 0)
        return;
    add(finder, {HintKind::negative_interval,
                 counted(starts.backward, "interval") + " below 0 in a block of " + decimal_text(static_cast<double>(block.beats)) +
                     " beats",
                 "such an interval makes a rest, but it counts backwards, so that the block " +
                     std::string{block.closed ? "became longer" : "does not come to its end"} +
                     "; write it without the minus, and a negative p3 or the note r",
                 starts.backward_place,
                 index_of(finder, block),
                 {}});
}

} // namespace

void look_at_intervals(Finder &finder)
{
    for (const Block &block : finder.piece.blocks) {
        const Section *starts = starts_of(block);
        if (starts == nullptr || block.skipped || block.recovered)
            continue;
        look_at_backward(finder, block, *starts);
        look_at_deviation(finder, block, *starts);
        if (block.written)
            look_at_seconds(finder, block, *starts);
    }
}

} // namespace orlo::explain

// A curve by beats takes the beat of the last event plus that of the first for the length of its way, so that it comes to its end
// only from beat 0 on.

#include "explain/hints/hints.h"

#include "base/codes.h"
#include "base/curves.h"

#include <algorithm>

namespace orlo::explain {
namespace {

constexpr double SHORT = 0.98; // of a way: less is said

bool is_by_beats(const Set &set) { return set.curve && *set.curve >= TIME_CURVE; }

// takes the "*" of every curve away
std::vector<Edit> by_events(const Finder &finder, const Command &command)
{
    std::vector<Edit> edits;
    for (const Set &set : command.sets)
        for (const Letter &letter : set.letters) {
            const std::size_t star = letter.part == Part::curve ? text_at(finder, letter.place).rfind('*') : std::string_view::npos;
            if (star == std::string_view::npos)
                continue;
            if (!is_plain(letter.place))
                return {};
            const std::uint64_t at = letter.place.begin + star;
            edits.push_back({{letter.place.file, at, at + 1, NONE}, ""});
        }
    return edits;
}

// the value with which a generator ended, where the composer writes it as it is: no note, and no decibels
std::string last_value_of(const Command &command)
{
    const bool plain = command.input == TYPE_RE || command.input == TYPE_IN || command.input == TYPE_RH;
    return plain ? "; its last value is " + decimal_text(static_cast<double>(command.last_value)) : "";
}

void look_at_curve(Finder &finder, const Block &block, const Command &command)
{
    const double way = static_cast<double>(command.last_beat) + static_cast<double>(command.first_beat);
    const double got = static_cast<double>(command.last_beat) - static_cast<double>(command.first_beat);
    if (command.first_beat <= 0.0F || got <= 0.0 || got >= SHORT * way ||
        std::none_of(command.sets.begin(), command.sets.end(), is_by_beats))
        return;
    add(finder, {HintKind::late_curve, name_of_command(command) + " with * goes only " + decimal_text(got / way, 2) + " of its way",
                 "it covers beats " + decimal_text(static_cast<double>(command.first_beat)) + " to " +
                     decimal_text(static_cast<double>(command.last_beat)) + ", and the length of the way is reckoned as " +
                     decimal_text(static_cast<double>(command.last_beat)) + " + " +
                     decimal_text(static_cast<double>(command.first_beat)) + " beats" + last_value_of(command),
                 command.place, index_of(finder, block), by_events(finder, command)});
}

void look_at_count(Finder &finder, const Block &block, const Section &section, const Command &command)
{
    const bool has_way = command.code == CMD_MO || command.code == CMD_MS;
    if (!has_way || !command.span || *command.span >= 0.0 || command.count == 0)
        return;
    const auto wanted = static_cast<std::uint64_t>(-*command.span);
    if (command.count >= wanted || text_at(finder, command.span_place).starts_with('T'))
        return;
    std::vector<Edit> edits;
    if (section.pfield > 2 && command.count > 1 && is_plain(command.span_place))
        edits.push_back({command.span_place, command.first == 0 ? "T" : decimal_text(-static_cast<double>(command.count))});
    add(finder,
        {HintKind::cut_span,
         name_of_command(command) + " is cut off after " + std::to_string(command.count) + " of its " + counted(wanted, "event"),
         "the block has " + counted(section.count, "event") + ", " + std::to_string(command.first) + " of them before this" +
             last_value_of(command),
         command.span_place, index_of(finder, block), std::move(edits)});
}

} // namespace

void look_at_spans(Finder &finder)
{
    for (const Block &block : finder.piece.blocks) {
        if (!is_whole(block))
            continue;
        for (const Section &section : block.sections)
            for (const Command &command : section.commands) {
                look_at_count(finder, block, section, command);
                if (section.pfield > 2)
                    look_at_curve(finder, block, command);
            }
    }
}

} // namespace orlo::explain

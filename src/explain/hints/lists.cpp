// A list that has ended goes on with its last value, which is often meant, and a loop comes round. What shows that a list was meant
// to come round is that its last value is written twice, which would be of no use, or that it goes up and down, with three
// different values or beside a loop of as many.

#include "explain/hints/hints.h"

#include "base/codes.h"

#include <algorithm>

namespace orlo::explain {
namespace {

constexpr std::uint64_t LEAST_HELD = 8; // events

bool is_digit(char c) { return c >= '0' && c <= '9'; }

void look_at_open_loop(Finder &finder, const Block &block, const Section &section)
{
    const Loop       &loop = section.loops.back();
    std::vector<Edit> edits;
    if (is_plain(section.place))
        edits.push_back({behind(section.place), ">"});
    add(finder, {HintKind::open_loop, "the loop of " + name_of(section) + " has no end",
                 "a < stands before " + counted(section.written - std::min(loop.first, section.written), "value") +
                     ", and no > follows; the end of the section counts as its end",
                 loop.place, index_of(finder, block), std::move(edits)});
}

void look_behind_loop(Finder &finder, const Block &block, const Section &section)
{
    const Loop         &loop  = section.loops.front();
    const std::uint64_t tail  = section.written - loop.first - loop.count;
    const std::uint64_t round = section.count - section.written;
    if (tail == 0 || loop.count == 0 || round < loop.count)
        return;
    const bool        repeats = text_behind(finder, loop.place).starts_with('x');
    std::vector<Edit> edits;
    if (tail == loop.count && !repeats && is_plain(loop.place) && is_plain(section.place) && section.place.file == loop.place.file)
        edits = {{{loop.place.file, loop.place.end - 1, loop.place.end, NONE}, ""}, {behind(section.place), ">"}};
    add(finder, {HintKind::values_after_loop, "what stands behind the loop of " + name_of(section) + " comes only once",
                 "the loop has " + counted(loop.count, "value") + ", and " + std::to_string(tail) +
                     (tail == 1 ? " comes" : " come") + " once behind it" + (repeats ? ", where its last value is repeated" : "") +
                     "; then the loop alone goes on for " + counted(round, "event"),
                 loop.place, index_of(finder, block), std::move(edits)});
}

// whether a place can stand in a loop as it is written: all of a call whose text begins no section and has no mark of its own
bool can_be_looped(const Finder &finder, Place place)
{
    for (; place.call != NONE; place = finder.piece.source.calls()[static_cast<std::size_t>(place.call)].place) {
        const Call &call = finder.piece.source.calls()[static_cast<std::size_t>(place.call)];
        if (call.kind != CallKind::macro || call.of == NONE)
            return false;
        const std::string &body = finder.piece.macros[static_cast<std::size_t>(call.of)].body;
        for (std::size_t i = 0; i < body.size(); ++i)
            if (body[i] == '<' || body[i] == '>' || body[i] == '}' || (body[i] == 'p' && is_digit(body[i + 1])))
                return false;
    }
    return place.file != NONE;
}

std::vector<Edit> loop_around(const Finder &finder, const List &list)
{
    if (!can_be_looped(finder, list.begin) || !can_be_looped(finder, list.end))
        return {};
    const Place first = outermost(finder, list.begin);
    const Place last  = outermost(finder, list.end);
    if (first.file != last.file)
        return {};
    return {{before(first), "<"}, {behind(last), ">"}};
}

// a loop beside it that has as many values
bool has_partner(const Block &block, const List &list)
{
    return std::any_of(block.sections.begin(), block.sections.end(), [&list](const Section &section) {
        return section.by_loop && section.loops.size() == 1 && section.loops.front().count == list.count;
    });
}

bool looks_like_a_pattern(const Block &block, const List &list)
{
    if (list.twice)
        return list.distinct > 1;
    return !list.rises && !list.falls && (list.distinct == List::TOLD_APART || has_partner(block, list));
}

// whether what is held is silence
bool is_rest(const Section &section)
{
    const bool notes = !section.inputs.empty() && section.inputs.back().code == TYPE_NO;
    return section.list.last <= 0.0F && (section.pfield == 3 || notes);
}

void look_at_held(Finder &finder, const Block &block, const Section &section)
{
    const List         &list = section.list;
    const std::uint64_t held = section.count - section.written;
    if (!list.unmixed || list.count < 3 || held < LEAST_HELD || 3 * held < 2 * section.count ||
        !looks_like_a_pattern(block, list) || is_rest(section))
        return;
    const std::string what = list.chord ? "chord" : section.pfield == 2 ? "interval" : "value";
    add(finder, {HintKind::held_list,
                 "the list of " + name_of(section) + " ends early, and its last " + what + " goes on for " + counted(held, "event"),
                 "it is enough for " + counted(section.written, "event") + ", and there are " + std::to_string(section.count) +
                     "; between < and > it would come round",
                 list.begin, index_of(finder, block), loop_around(finder, list)});
}

void look_at_section(Finder &finder, const Block &block, const Section &section)
{
    if (section.full != NONE)
        return;
    if (!section.loops.empty() && section.loops.back().open)
        look_at_open_loop(finder, block, section);
    else if (section.filled && section.by_loop && section.loops.size() == 1)
        look_behind_loop(finder, block, section);
    else if (section.filled && !section.by_loop)
        look_at_held(finder, block, section);
}

} // namespace

void look_at_lists(Finder &finder)
{
    for (const Block &block : finder.piece.blocks)
        if (is_whole(block) && !block.sections.empty() && block.sections.front().no_numbers == 0)
            for (const Section &section : block.sections)
                look_at_section(finder, block, section);
}

} // namespace orlo::explain

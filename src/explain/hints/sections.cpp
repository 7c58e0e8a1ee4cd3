// What is left over in a section is read by nobody, so it is looked at only as a text, without its comments. It ends where the next
// section begins, or with its block.

#include "explain/hints/hints.h"

#include "diag/messages.h"

#include <algorithm>

namespace orlo::explain {
namespace {

constexpr std::size_t MOST_QUOTED = 20;    // characters of a word
constexpr std::size_t MOST_NAMED  = 6;     // p-fields in a sentence
constexpr double      THOUSANDTH  = 0.001; // beats
constexpr double      LEAST_STEP  = 0.02;  // beats; shorter intervals may well end there

bool begins_value(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '.' || c == '-' || c == '+' ||
           c == '$' || c == '~' || c == '<';
}

// what is left of a section, from the outermost text on in which reading stopped
struct Remainder {
    Place         place;     // of its first word
    std::string   text;      // without comments
    std::uint64_t begin = 0; // of that text, in the file of the outermost call
};

// in a block that ends with an error its last section ends with the line
Place end_of_text(const Finder &finder, const Block &block, std::size_t index, const Place &stopped)
{
    if (block.closed || index + 1 < block.sections.size())
        return end_of_section(finder, block, index);
    const std::uint64_t end = stopped.end + text_behind(finder, stopped).size();
    return {stopped.file, end, end, NONE};
}

Remainder remainder_of(const Finder &finder, const Block &block, std::size_t index, const Diagnostic &full)
{
    const bool  in_call = full.place.call != NONE;
    const Place stopped = outermost(finder, full.place);
    const Place end     = end_of_text(finder, block, index, stopped);
    const Place all{stopped.file, in_call ? stopped.end : stopped.begin, end.end, NONE};
    Remainder   remainder{full.place, {}};
    if (end.file != stopped.file || all.end <= all.begin)
        return remainder;
    remainder.text = without_comments(text_at(finder, all));
    if (index + 1 == block.sections.size() && remainder.text.ends_with('}'))
        remainder.text.pop_back();
    const auto first = std::find_if(remainder.text.begin(), remainder.text.end(), begins_value);
    remainder.begin  = all.begin + static_cast<std::uint64_t>(first - remainder.text.begin());
    remainder.text.erase(remainder.text.begin(), first);
    if (in_call && full.number == W_EVENTS_NOT_ADDED) // it goes on behind the call
        return remainder;
    const std::size_t length = remainder.text.starts_with('<') ? 1 : remainder.text.find_first_of(" \t\r\n,/'><");
    remainder.place          = {all.file, remainder.begin, remainder.begin + std::min(length, remainder.text.size()), NONE};
    return remainder;
}

std::string quoted(const Finder &finder, const Place &place)
{
    const std::string_view text = text_at(finder, place);
    const std::string_view rest = text_behind(finder, place);
    std::string            whole{text};
    const char             closes = text.starts_with("~[")                                              ? ']'
                                    : text.starts_with('$') && text.find('(') != std::string_view::npos ? ')'
                                                                                                        : '\0';
    if (closes != '\0' && text.find(closes) == std::string_view::npos && rest.find(closes) != std::string_view::npos)
        whole += rest.substr(0, rest.find(closes) + 1);
    return '"' + whole.substr(0, MOST_QUOTED) + '"';
}

std::string why_full(const Block &block, const Section &section)
{
    const std::string counts = counted(section.count, section.pfield == 2 ? "interval" : "event");
    if (section.pfield > 2)
        return "the block has " + counts + ", and by then each of them has its value";
    if (block.events > 0)
        return "the block has " + counted(block.events, "event") + " by its length";
    const std::string beats = decimal_text(static_cast<double>(block.beats)) + (block.beats == 1.0F ? " beat" : " beats");
    return "the block is " + beats + " long, and " + counts + (section.count == 1 ? " has" : " have") + " used " +
           (block.beats == 1.0F ? "it" : "them") + " up";
}

bool has_open_loop(const Section &section) { return !section.loops.empty() && section.loops.back().open; }

void add_unreached(Finder &finder, const Block &block, const Section &section, const Remainder &remainder, const Place &loop)
{
    add(finder, {HintKind::unreached_loop,
                 "the loop of " + name_of(section) + " is never reached",
                 why_full(block, section) + ": nothing is read from " + quoted(finder, remainder.place) + " on",
                 loop,
                 index_of(finder, block),
                 {}});
}

void look_at_remainder(Finder &finder, const Block &block, std::size_t index)
{
    const Section    &section = block.sections[index];
    const Diagnostic &full    = finder.piece.diagnostics[static_cast<std::size_t>(section.full)];
    if (!full.placed || full.place.file == NONE)
        return;
    const Remainder remainder = remainder_of(finder, block, index, full);
    if (remainder.text.empty() && full.number != W_EVENTS_NOT_ADDED)
        return;
    const std::string why = why_full(block, section);
    if (has_open_loop(section) && section.loops.back().first < section.count && remainder.text.find('>') != std::string::npos) {
        add(finder, {HintKind::unreached_loop,
                     "the loop of " + name_of(section) + " is longer than the block, and never comes round",
                     why + ": nothing is read from " + quoted(finder, remainder.place) + " on",
                     section.loops.back().place,
                     index_of(finder, block),
                     {}});
    } else if (has_open_loop(section) && section.loops.back().first == section.count) {
        add_unreached(finder, block, section, remainder, section.loops.back().place);
    } else if (const std::size_t loop = remainder.text.find('<'); loop != std::string::npos) {
        const std::uint64_t at = remainder.begin + loop;
        add_unreached(finder, block, section, remainder, {outermost(finder, full.place).file, at, at + 1, NONE});
    } else {
        add(finder, {HintKind::left_over,
                     "nothing is read from " + quoted(finder, remainder.place) + " on in " + name_of(section),
                     why,
                     remainder.place,
                     index_of(finder, block),
                     {}});
    }
}

void look_for_remainders(Finder &finder, const Block &block)
{
    const auto is_full = [](const Section &section) { return section.full != NONE; };
    if (std::none_of(block.sections.begin(), block.sections.end(), is_full) || has_hint(finder, HintKind::no_rhythm, block))
        return; // there are other events than are meant
    for (std::size_t i = 0; i < block.sections.size(); ++i)
        if (is_full(block.sections[i]))
            look_at_remainder(finder, block, i);
}

// "p2, p3 and p4"
std::string listed(const std::vector<std::int32_t> &pfields)
{
    std::string text;
    for (std::size_t i = 0; i < pfields.size(); ++i) {
        const bool last = i + 1 == pfields.size();
        if (i >= MOST_NAMED && !last)
            continue;
        if (i > MOST_NAMED)
            text += " ...";
        if (i > 0)
            text += last ? " and " : ", ";
        text += 'p';
        text += std::to_string(pfields[i]);
    }
    return text;
}

void look_for_missing(Finder &finder, const Block &block)
{
    const Diagnostic         &error = finder.piece.diagnostics[static_cast<std::size_t>(block.incomplete)];
    std::vector<std::int32_t> there;
    for (const Section &section : block.sections)
        there.push_back(section.pfield);
    std::sort(there.begin(), there.end());
    std::vector<std::int32_t> missing;
    for (std::int32_t pfield = 2; pfield <= block.pfields; ++pfield)
        if (!std::binary_search(there.begin(), there.end(), pfield))
            missing.push_back(pfield);
    if (missing.empty())
        return;
    const bool        last_ones = there.size() >= 2 && there.back() < missing.front();
    std::vector<Edit> edits;
    if (last_ones && is_plain(block.header.pfields))
        edits.push_back({block.header.pfields, std::to_string(there.back())});
    const std::string found = there.empty() ? "none" : listed(there);
    add(finder,
        {HintKind::missing_pfields, name_of(finder, block) + " has no section for " + listed(missing),
         "its header says that it has " + std::to_string(block.pfields) + " p-fields, p1 counted; what it has is " + found,
         block.header.pfields.file != NONE ? block.header.pfields : error.place, index_of(finder, block), std::move(edits)});
}

bool has_generators(const Section &section)
{
    return std::any_of(section.commands.begin(), section.commands.end(),
                       [](const Command &command) { return command.span.has_value(); });
}

void look_at_end(Finder &finder, const Block &block)
{
    const Section &starts = block.sections.front();
    const double   end    = static_cast<double>(block.start) + static_cast<double>(block.beats);
    const double   left   = end - static_cast<double>(block.last_start);
    if (block.beats <= 0.0F || !block.steady || starts.count < 2 || left > THOUSANDTH ||
        static_cast<double>(block.reach - block.last_start) < LEAST_STEP)
        return;
    std::vector<Edit> edits;
    if (is_plain(block.header.length) && !has_generators(starts))
        edits.push_back({block.header.length, decimal_text(1.0 - static_cast<double>(starts.count))});
    add(finder, {HintKind::event_at_end, name_of(finder, block) + " has an event at its very end, at beat " + decimal_text(end),
                 counted(starts.count - 1, "interval") + " do not fill its " + decimal_text(static_cast<double>(block.beats)) +
                     " beats exactly: " + decimal_text(left, 7) + " of a beat is left, and one more event begins there",
                 block.header.length, index_of(finder, block), std::move(edits)});
}

} // namespace

void look_at_sections(Finder &finder)
{
    for (const Block &block : finder.piece.blocks) {
        if (block.incomplete != NONE)
            look_for_missing(finder, block);
        if (block.skipped || block.recovered || block.sections.empty() || block.sections.front().no_numbers > 0)
            continue;
        look_for_remainders(finder, block);
        if (block.closed)
            look_at_end(finder, block);
    }
}

} // namespace orlo::explain

// A seed is the same as another when the numbers that are drawn of it are as many: then each value is made of the same draws.

#include "base/codes.h"
#include "explain/hints/hints.h"
#include "input/line_reader.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <tuple>

namespace orlo::explain {
namespace {

constexpr std::int64_t MOST_SEED     = 65535;
constexpr std::size_t  MOST_COMPARED = 2000; // seeds that are compared with the one before

bool lies_between(const Place &place, const Place &first, const Place &last)
{
    return place.file == first.file && place.begin >= first.end && place.begin < last.begin;
}

// whether something between two places was not read as in a run without errors and conditions
bool is_partly_read(const Finder &finder, const Place &first, const Place &last)
{
    const Piece &piece   = finder.piece;
    const auto   between = [&](const auto &part) { return lies_between(part.place, first, last); };
    return first.file != last.file || first.call != last.call ||
           std::any_of(piece.blocks.begin(), piece.blocks.end(),
                       [&](const Block &block) { return block.skipped && between(block); }) ||
           std::any_of(piece.conditionals.begin(), piece.conditionals.end(), between) ||
           std::any_of(piece.diagnostics.begin(), piece.diagnostics.end(),
                       [&](const Diagnostic &said) { return said.severity == Severity::error && between(said); });
}

// the number of "rs(3)" as it is written
std::optional<Place> number_of(const Finder &finder, const Place &place)
{
    const std::string_view text  = text_at(finder, place);
    const std::size_t      open  = text.find('(');
    const std::size_t      close = text.find(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open + 2 ||
        !std::all_of(text.begin() + static_cast<std::ptrdiff_t>(open) + 1, text.begin() + static_cast<std::ptrdiff_t>(close),
                     is_digit))
        return {};
    return Place{place.file, place.begin + open + 1, place.begin + close, place.call};
}

std::string name_of(const Sequence &sequence) { return "rs(" + std::to_string(sequence.seed) + ")"; }

void look_at_repeated(Finder &finder, const Sequence &first, const Sequence &second)
{
    if (first.seed != second.seed || first.draws != 0 || first.place.file == NONE || second.place.file == NONE ||
        is_partly_read(finder, first.place, second.place))
        return;
    add(finder, {HintKind::same_seed, "this " + name_of(second) + " changes nothing",
                 "the seed has just been set to " + std::to_string(first.seed) + ", and no number was drawn since", second.place,
                 second.block, is_plain(second.place) ? take_out(finder, second.place) : std::vector<Edit>{}});
}

bool is_wide(const RandomRange &range) { return range.low != range.high; }

bool uses_chance(const Command &command)
{
    const bool draws = command.code == CMD_RW || command.sets.size() > 1;
    return command.span &&
           (draws || std::any_of(command.sets.begin(), command.sets.end(), [](const Set &set) {
                return std::any_of(set.ranges.begin(), set.ranges.end(), is_wide) ||
                       std::any_of(set.lists.begin(), set.lists.end(), [](const auto &list) { return list.size() > 1; });
            }));
}

const Section *section_of(const Finder &finder, const Sequence &sequence)
{
    if (sequence.block == NONE || sequence.pfield == NONE || !sequence.first)
        return nullptr;
    const std::vector<Section> &sections = finder.piece.blocks[static_cast<std::size_t>(sequence.block)].sections;
    const auto                  found    = std::find_if(sections.begin(), sections.end(),
                                                        [&sequence](const Section &section) { return section.pfield == sequence.pfield; });
    return found != sections.end() && std::any_of(found->commands.begin(), found->commands.end(), uses_chance) ? &*found : nullptr;
}

// a seed that the piece doesn't have
std::int64_t free_seed(const std::set<std::int64_t> &seeds, std::int64_t seed)
{
    while (seeds.count(seed) != 0)
        ++seed;
    return seed;
}

std::string pfield_name(std::int32_t pfield)
{
    std::string name(1, 'p');
    name += std::to_string(pfield);
    return name;
}

void add_together(Finder &finder, const std::set<std::int64_t> &seeds, const Sequence &first, const Sequence &second)
{
    const std::string          one    = pfield_name(first.pfield);
    const std::string          other  = pfield_name(second.pfield);
    const std::int64_t         free   = free_seed(seeds, second.seed);
    const std::optional<Place> number = number_of(finder, second.place);
    Hint                       hint{HintKind::same_seed, other, {}, second.place, second.block, {}};
    hint.text += " draws the same numbers as " + one;
    hint.reason = "both sections begin with " + name_of(second) + " and draw " + counted(second.in_section, "number") + " for " +
                  counted(second.values, "value") + ": where " + one + " is high or low, so is " + other;
    if (number && is_plain(second.place) && free <= MOST_SEED)
        hint.edits = {{*number, std::to_string(free)}};
    add(finder, std::move(hint));
}

} // namespace

void look_at_seeds(Finder &finder)
{
    using Likeness = std::tuple<std::int32_t, std::int64_t, std::uint64_t, std::uint64_t>; // block, seed, draws, values
    std::map<Likeness, const Sequence *> known;
    const std::vector<Sequence>         &sequences = finder.piece.sequences;
    std::set<std::int64_t>               seeds;
    for (const Sequence &sequence : sequences)
        seeds.insert(sequence.seed);
    for (std::size_t i = 1; i < sequences.size() && finder.found.size() < MOST_HINTS; ++i) {
        const Sequence &sequence = sequences[i];
        if (i > 1 && i < MOST_COMPARED)
            look_at_repeated(finder, sequences[i - 1], sequence);
        if (section_of(finder, sequence) == nullptr || sequence.in_section == 0)
            continue;
        const auto [at, added] =
            known.emplace(Likeness{sequence.block, sequence.seed, sequence.in_section, sequence.values}, &sequence);
        if (!added)
            add_together(finder, seeds, *at->second, sequence);
    }
}

} // namespace orlo::explain

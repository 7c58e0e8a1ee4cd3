// A command's numbers follow its name; a number of a generator belongs to the set that was begun last.

#include "gather/told.h"

#include "base/codes.h"
#include "base/random.h"
#include "events/tempo_map.h"
#include "gather/gathering.h"

namespace orlo::gather {
namespace {

Set &set_of(Command &command, const Place &place)
{
    if (command.sets.empty())
        command.sets.emplace_back().place = place;
    return command.sets.back();
}

// the term that an operation waits for, or the first
Term &open_term(Set &set)
{
    if (set.terms.empty())
        set.terms.emplace_back();
    return set.terms.back();
}

void add_number_to_set(Set &set, Part part, double value)
{
    switch (part) {
    case Part::weight:
        set.weight = value;
        break;
    case Part::curve:
        set.curve = static_cast<int>(value);
        break;
    case Part::exponent:
        set.exponent = value;
        break;
    case Part::range:
        set.ranges.push_back({0.0, 0.0, static_cast<int>(value)});
        break;
    case Part::bounds:
        set.ranges.push_back({0.0, 0.0, 0});
        break;
    case Part::low:
        set.ranges.back().low  = value;
        set.ranges.back().high = value;
        break;
    case Part::high:
        set.ranges.back().high = value;
        break;
    case Part::value:
        if (set.lists.empty())
            set.lists.emplace_back();
        set.lists.back().push_back(value);
        break;
    case Part::list_end:
        set.lists.emplace_back();
        break;
    case Part::window:
        set.window = value;
        break;
    case Part::start:
        set.start = value;
        break;
    case Part::choice:
        set.choice = static_cast<int>(value);
        break;
    case Part::pfield:
        open_term(set).pfield = static_cast<int>(value);
        break;
    case Part::constant:
        open_term(set).number = value;
        break;
    case Part::operation:
        set.terms.push_back({static_cast<char>(value), 0, 0.0});
        break;
    case Part::rounding:
        set.rounded = value != 0.0;
        break;
    case Part::seed:
    case Part::deviation:
    case Part::rate:
    case Part::factor:
    case Part::tempo:
    case Part::span:
        break;
    }
}

void add_tempo_change(const Command &command)
{
    now.map.clear();
    const std::size_t index =
        command.numbers.front() == 0.0 || command.numbers.size() == 1 ? 0 : static_cast<std::size_t>(TOT_TEMPOS) - 1;
    const TempoSegment &segment = TEMPO_LIST[index];
    now.piece->tempo.push_back({command.place, segment.stime, segment.etime, segment.stempo, segment.etempo,
                                static_cast<int>(segment.type), static_cast<double>(segment.vcurve)});
}

// whether a number is written in the section's input type
bool is_value(Part part) { return part == Part::low || part == Part::high || part == Part::value || part == Part::start; }

// a directive has no place in a section
void count_sharp(std::size_t column)
{
    if (input_in_force() == TYPE_NO && now.piece->sharps.size() < MOST_SHARPS)
        now.piece->sharps.push_back({now.piece->source.place_of(column, column + 1), now.block});
}

void begin_sequence(const Command &command)
{
    Sequence begun{static_cast<std::int64_t>(command.numbers.front()), command.place};
    begun.block  = now.in_block ? now.block : NONE;
    begun.pfield = now.in_section ? section().pfield : NONE;
    begun.first  = now.in_section && section().count == 0;
    now.piece->sequences.push_back(begun);
    now.drawn = 0;
}

// lists that were begun for a value that did not come
void drop_empty_lists(Command &command)
{
    for (Set &set : command.sets)
        if (!set.lists.empty() && set.lists.back().empty())
            set.lists.pop_back();
}

} // namespace

namespace told {

void command_begins(std::int32_t code, std::size_t column)
{
    if (code == CMD_DIRECT || code == CMD_DIRECTIVE || code == CMD_CONSTANT) {
        count_sharp(column);
        return;
    }
    Command &begun = commands().emplace_back();
    begun.code     = code;
    begun.place    = in_section_here(column, column + 2);
    begun.input    = input_in_force();
    now.in_command = true;
}

void number_read(Part part, double value, std::size_t begin, std::size_t end)
{
    if (!now.in_command)
        return;
    Command &command = commands().back();
    if (begin == end) { // the end of a list, which has no text
        if (!command.sets.empty())
            add_number_to_set(command.sets.back(), part, value);
        return;
    }
    const Place place = in_section_here(begin, end);
    command.place     = now.piece->source.join(command.place, place);
    count_cut(end);
    switch (part) {
    case Part::seed:
        now.piece->sequences.back().draws = draws_made(); // the new one is started after this
        command.numbers.push_back(value);
        return;
    case Part::deviation:
    case Part::rate:
    case Part::factor:
    case Part::tempo:
        command.numbers.push_back(value);
        return;
    case Part::span:
        command.span       = value;
        command.span_place = place;
        return;
    case Part::weight:
        command.sets.emplace_back().place = place;
        break;
    default:
        break;
    }
    if (command.code == CMD_TE) // its curve is read from the tempo map
        return;
    Set &set  = set_of(command, place);
    set.place = now.piece->source.join(set.place, place);
    add_number_to_set(set, part, value);
    if (part == Part::curve || part == Part::range)
        set.letters.push_back({part, place});
    if (is_value(part))
        join_value(begin, end);
}

void command_read(std::size_t end)
{
    if (!now.in_command)
        return;
    Command &command = commands().back();
    if (end > 0)
        command.place = now.piece->source.join(command.place, in_section_here(end - 1, end));
    drop_empty_lists(command);
    now.in_command = false;
    if (command.code == CMD_TE && !command.numbers.empty())
        add_tempo_change(command);
    if (command.code == CMD_RS)
        begin_sequence(command);
    now.new_source = true;
    if (!command.span) // no generator
        return;
    command.first = now.in_section ? section().count : 0;
    now.source    = {Kind::generator, commands().size() - 1, {}, 0, 1};
    now.walks     = command.code == CMD_RW;
}

} // namespace told

} // namespace orlo::gather

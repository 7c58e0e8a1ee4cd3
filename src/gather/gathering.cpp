#include "gather/gathering.h"

#include "base/codes.h"
#include "base/random.h"
#include "input/line_reader.h"

namespace orlo::gather {

Gathering now;

namespace {

// the draws of a sequence that was started in the section
void count_draws(Sequence &sequence)
{
    if (sequence.block != now.block || sequence.pfield != section().pfield)
        return;
    sequence.in_section = draws_made();
    sequence.values     = section().count;
}

} // namespace

bool wants_values() { return now.detail == Detail::events && !now.recovering; }

Block   &block() { return now.piece->blocks[static_cast<std::size_t>(now.block)]; }
Section &section() { return block().sections.back(); }

Place here(std::size_t begin, std::size_t end)
{
    now.last_place = now.piece->source.place_of(begin, end);
    return now.last_place;
}

void extend(Place &place, std::size_t end)
{
    if (end > 0)
        place = now.piece->source.join(place, here(end - 1, end));
}

std::size_t end_of_word(const char *text, std::size_t column)
{
    const auto  belongs = [](char c) { return is_letter(c) || is_digit(c) || c == '_' || c == '.'; };
    std::size_t end     = column;
    while (belongs(text[end]))
        ++end;
    return end == column && text[column] != '\0' ? column + 1 : end;
}

Place in_section_here(std::size_t begin, std::size_t end)
{
    const Place place = here(begin, end);
    if (now.in_section)
        section().place = now.piece->source.join(section().place, place);
    return place;
}

std::vector<Command> &commands()
{
    if (now.in_section)
        return section().commands;
    return now.in_block ? block().commands : now.piece->commands;
}

std::int32_t find(const Names &names, std::string_view name)
{
    const auto found = names.find(name);
    return found != names.end() ? found->second : NONE;
}

void close_loop(Loop &loop, bool open)
{
    loop.count = section().count - loop.first;
    loop.open  = open;
}

bool loop_is_open() { return !section().loops.empty() && section().loops.back().open; }

void reach_last_literal()
{
    if (now.last_literal.second > 0 && now.in_section)
        in_section_here(now.last_literal.first, now.last_literal.second);
    now.last_literal = {0, 0};
}

std::int32_t input_in_force()
{
    if (!now.in_section)
        return NONE;
    return section().inputs.empty() ? static_cast<std::int32_t>(TYPE_RE) : section().inputs.back().code;
}

void join_value(std::size_t begin, std::size_t end)
{
    const std::int32_t input = input_in_force();
    if (now.last_value_end == begin && begin > 0 && input != NONE && now.piece->joined.size() < MOST_JOINED) {
        const Place first  = now.last_value;
        const Place second = now.piece->source.place_of(begin, end);
        if (first.file == second.file && first.call == second.call && first.end == second.begin)
            now.piece->joined.push_back({first, second, now.block, section().pfield, input, now.last_value_input});
    }
    now.last_value_end   = end;
    now.last_value_input = input;
    now.last_value       = now.piece->source.place_of(begin, end);
}

void count_cut(std::size_t end)
{
    std::size_t        length = 0;
    const std::int32_t call   = now.piece->source.divided_call(end, length);
    if (call != NONE && now.piece->cuts.size() < MOST_CUTS)
        now.piece->cuts.push_back({call, length, now.in_block ? now.block : NONE});
}

void end_section()
{
    if (!now.in_section)
        return;
    count_draws(now.piece->sequences.back());
    reach_last_literal();
    if (loop_is_open() && section().loops.back().count == 0)
        close_loop(section().loops.back(), true);
    section().distinct = now.distinct.count();
    if (!section().filled)
        section().written = section().count;
    now.in_section = false;
}

} // namespace orlo::gather

// A message comes before its place, where it has one that is known; where not, it is given what was being read.

#include "gather/told.h"

#include "diag/messages.h"
#include "events/block.h"
#include "gather/gathering.h"
#include "input/line_reader.h"

#include <algorithm>
#include <cstring>

namespace orlo::gather {
namespace {

// where something is wrong that is said without a place
Place usual_place(Severity severity)
{
    if (!now.piece->source.has_lines())
        return now.piece->source.last_include();
    if (now.in_section) {
        reach_last_literal();
        return section().place;
    }
    if (now.in_block || (severity == Severity::warning && now.block != NONE && !block().written))
        return block().place;
    return severity == Severity::warning ? now.last_place : Place{}; // the rest is of the run as a whole
}

void add_definition(Diagnostic &diagnostic, const Names &names, bool of_constant)
{
    const std::int32_t found = find(names, now.defined_twice);
    if (found == NONE)
        return;
    const auto index = static_cast<std::size_t>(found);
    diagnostic.related.push_back(
        {"defined here", of_constant ? now.piece->constants[index].place : now.piece->macros[index].name_place});
}

// behind the line is where its line end stands
Place end_of_line(const char *line)
{
    const std::size_t length = now.piece->source.line().length;
    Place             place  = now.piece->source.place_of(length - std::min<std::size_t>(length, 1), length);
    if (length == 0 || is_blank(line[length - 1]))
        place.end = place.begin;
    else
        place.begin = place.end;
    return place;
}

// what hints ask for: which section is full, which block lacks sections
void note_place_of(Severity severity, int number)
{
    const auto index   = static_cast<std::int32_t>(now.piece->diagnostics.size()) - 1;
    const bool is_full = number == W_EVENTS_NOT_ADDED || number == W_DDF_TRUNCATED || number == W_REPEAT_TRUNCATED;
    if (severity == Severity::warning && is_full && now.in_section)
        section().full = index;
    if (severity == Severity::error && number == SKIPPED_PFIELDS && now.in_block && !now.in_section)
        block().incomplete = index;
}

} // namespace

namespace told {

void message_begins(Severity severity, int number)
{
    Diagnostic &diagnostic = now.piece->diagnostics.emplace_back();
    diagnostic.severity    = severity;
    diagnostic.number      = number;
    diagnostic.place       = usual_place(severity);
    diagnostic.recovered   = now.recovering;
    diagnostic.block       = now.in_block ? now.block : NONE;
    diagnostic.input       = input_in_force();
    note_place_of(severity, number);
}

void message_text(const char *text, std::size_t length) { now.piece->diagnostics.back().text.append(text, length); }

void message_ends()
{
    Diagnostic &diagnostic = now.piece->diagnostics.back();
    if (diagnostic.severity != Severity::error)
        return;
    if (diagnostic.number == DUPLICATE_MACRO)
        add_definition(diagnostic, now.macros, false);
    if (diagnostic.number == DUPLICATE_CONSTANT)
        add_definition(diagnostic, now.constants, true);
    if (diagnostic.number != DUPLICATE_PFIELD || now.block == NONE)
        return;
    for (const Section &earlier : block().sections)
        if (earlier.pfield == P_NO)
            diagnostic.related.push_back({"read here", earlier.place});
}

void message_place(const char *line, std::size_t column)
{
    if (now.piece->diagnostics.empty() || !now.piece->source.has_lines())
        return;
    Diagnostic &diagnostic = now.piece->diagnostics.back();
    if (diagnostic.placed)
        return;
    diagnostic.placed = true;
    count_cut(column);
    if (now.failed_call.file != NONE) {
        diagnostic.place = now.failed_call;
        return;
    }
    Place            &place  = diagnostic.place;
    const std::size_t length = std::min(now.piece->source.line().length, std::strlen(line));
    if (column >= length || (column + 1 == length && is_blank(line[column]))) {
        place = end_of_line(line);
        return;
    }
    place = now.piece->source.place_of(column, end_of_word(line, column));
    if (now.piece->source.is_line_end(place)) // of a macro's body
        place.end = place.begin;
}

void recovery_begins()
{
    end_section();
    now.in_block   = false;
    now.in_command = false;
    now.recovering = true;
}

} // namespace told

} // namespace orlo::gather

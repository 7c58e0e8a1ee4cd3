// Files and lines go to the source map; definitions are kept by their names.

#include "gather/told.h"

#include "base/random.h"
#include "gather/gathering.h"

#include <algorithm>

namespace orlo::gather::told {

void include_met(std::uint64_t begin, std::uint64_t end) { now.piece->source.include_met(begin, end); }

void file_opened(const char *name, bool found) { now.piece->source.open(name, found); }

void file_text(const char *text, std::size_t length) { now.piece->source.add_text({text, length}); }

void file_left() { now.piece->source.leave(); }

void copy_continues(std::uint64_t to, std::uint64_t from) { now.piece->source.copy_continues(to, from); }

void line_read(std::uint64_t, std::uint64_t offset, std::size_t length)
{
    reach_last_literal();
    now.piece->source.read_line(offset, length);
    now.failed_call    = {};
    now.said_earlier   = now.piece->diagnostics.size();
    now.last_value_end = 0;
}

// calls

void call_begins(CallKind kind, const char *name, std::size_t name_length, std::size_t begin, std::size_t end, double value)
{
    const std::string_view called{name, name_length};
    SourceMap             &source = now.piece->source;
    std::int32_t           of     = NONE;
    TextMap                body;
    if (kind == CallKind::macro) {
        of = find(now.macros, called);
        if (of != NONE)
            body = now.piece->macros[static_cast<std::size_t>(of)].map;
    } else if (kind == CallKind::argument) {
        if (const TextMap *argument = source.argument(called))
            body = *argument;
    } else if (kind == CallKind::constant) {
        of = find(now.constants, called);
        if (of != NONE)
            body = now.piece->constants[static_cast<std::size_t>(of)].map;
    } else {
        body = as_number(part_of(source.line(), begin, end));
    }
    source.call(kind, called, of, value, begin, end, body);
}

void argument_taken(const char *name, std::size_t length, std::size_t begin, std::size_t end)
{
    now.piece->source.take_argument({name, length}, begin, end);
}

// The innermost call of those that fail together is the one that is wrong.
void call_failed(const char *text, std::size_t column)
{
    if (now.failed_call.file != NONE || !now.piece->source.in_call())
        return;
    now.failed_call = now.piece->source.place_on_top(column, end_of_word(text, column));
    if (now.piece->diagnostics.size() > now.said_earlier)
        now.piece->diagnostics.back().place = now.failed_call;
}

void call_replaced(std::size_t begin, std::size_t end, std::size_t length) { now.piece->source.replace(begin, end, length); }

// definitions

void definition_begins(std::size_t column)
{
    now.definition = here(column, column + 1);
    now.macro      = {};
}

void macro_name(std::size_t begin, std::size_t end) { now.macro.name_place = here(begin, end); }

void macro_parameter(const char *name, std::size_t length) { now.macro.parameters.emplace_back(name, length); }

// a line end stands for the blank that the line ends with
void body_part(std::size_t begin, std::size_t end)
{
    const TextMap &line = now.piece->source.line();
    const bool     ends = begin == end;
    append(now.macro.map,
           ends ? part_of(line, line.length - std::min<std::size_t>(line.length, 1), line.length) : part_of(line, begin, end));
}

void macro_defined(const char *name, const char *body, std::size_t end, bool stored)
{
    if (!stored) {
        now.defined_twice = name;
        return;
    }
    now.macro.name  = name;
    now.macro.body  = body;
    now.macro.place = now.definition;
    extend(now.macro.place, end);
    now.macros[now.macro.name] = static_cast<std::int32_t>(now.piece->macros.size());
    now.piece->macros.push_back(std::move(now.macro));
    now.macro = {};
}

void macro_undefined(const char *name, std::size_t length, std::size_t end)
{
    const auto found = now.macros.find(std::string_view{name, length});
    if (found == now.macros.end())
        return;
    now.piece->macros[static_cast<std::size_t>(found->second)].undefined = here(end - length, end);
    now.macros.erase(found);
}

void constant_defined(const char *name, double value, std::size_t begin, std::size_t end, bool stored)
{
    if (!stored) {
        now.defined_twice = name;
        return;
    }
    now.constants[name] = static_cast<std::int32_t>(now.piece->constants.size());
    now.piece->constants.push_back({name, value, here(begin, end), as_number(part_of(now.piece->source.line(), begin, end)), {}});
}

void constant_used(const char *name, std::size_t length, std::size_t begin, std::size_t end)
{
    const std::int32_t found = find(now.constants, {name, length});
    if (found != NONE)
        now.piece->constants[static_cast<std::size_t>(found)].uses.push_back(here(begin, end));
}

void condition(std::size_t begin, std::size_t end, bool taken)
{
    now.open_conditionals.push_back(now.piece->conditionals.size());
    now.piece->conditionals.push_back({here(begin, end), taken, {}});
}

void condition_ends(std::size_t begin, std::size_t end)
{
    if (now.open_conditionals.empty())
        return;
    now.piece->conditionals[now.open_conditionals.back()].end = here(begin, end);
    now.open_conditionals.pop_back();
}

// the draws of a run follow each other
void equation_drew()
{
    now.drawn      = draws_made();
    now.new_source = true;
}

} // namespace orlo::gather::told

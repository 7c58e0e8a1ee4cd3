// Inserted text is scanned again from its start, so that calls in it are expanded in turn. That ends because the expansions of one
// line are counted, and the depth of bodies inside bodies is limited. Those of the run are counted too, because each has its
// notice: few bytes of input could fill a disk with them. While a body is expanded the error of a call inside it is shown after
// the outermost call, the only one that stands in the line.

#include "input/macro_expansion.h"

#include "base/exhaustion.h"
#include "base/switches.h"
#include "diag/messages.h"
#include "diag/report.h"
#include "input/comment_flags.h"
#include "input/macros.h"
#include "input/names.h"

#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orlo {

bool IN_COMMENT   = false;
int  IN_MACRO_DEF = 0;

namespace {

constexpr int           BODY_TOO_LONG = -2; // of an expansion whose text can't fit into any line
constexpr std::uint32_t ODD_COLUMN    = 85; // a ">" here does not keep definitions out of the rest of its line

constexpr CharacterSet stops = set_of({"#$;/*>\n\0", 8}); // all that can matter outside definitions, the line's end among them

struct Argument {
    std::string_view name; // of the parameter
    std::string      text;
};

struct Count {
    std::uint64_t line_no; // the line that is counted
    unsigned      done;    // expansions in it
};

Count expansions{0, 0};

std::uint64_t run_expansions  = 0;               // all of the run
std::uint64_t most_expansions = SURE_EXPANSIONS; // that it may make

// what a name stands for inside a body: a parameter first, then a macro
struct Meaning {
    const Macro    *macro;
    const Argument *argument;
};

Meaning find_meaning(std::string_view name, const std::vector<Argument> &arguments)
{
    for (const Argument &argument : arguments)
        if (argument.name == name)
            return {nullptr, &argument};
    return {find_macro(name), nullptr};
}

int expands_without_end(std::string_view name, const Input &in)
{
    const std::string text{name};
    complain_here(in, "Macro \"%s\" expands without end!", text.c_str());
    return TEXT_REPORTED;
}

int line_too_long(const Input &in)
{
    complain_here(in, "The expanded line has exceeded the maximum number\nof characters allowed (%d).", LINE_SIZE - 1);
    return TEXT_REPORTED;
}

// argument -> characters ( "'" | "#" ), the last one -> characters ")"
int take_argument(std::string &argument, bool last, const char *text, std::size_t &pos)
{
    for (;; ++pos) { // ends with the text
        if (text[pos] == '\0')
            return BAD_MACRO_SYNTAX;
        const char c = text[pos];
        if (last && c == '\'')
            return STRAY_APOSTROPHE;
        if (last ? c == ')' : c == '\'' || c == '#')
            break;
        argument.push_back(c);
    }
    ++pos;
    return OK;
}

// arguments -> "(" argument { argument } ")"
int take_arguments(std::vector<Argument> &arguments, const Macro &macro, const char *text, std::size_t &pos)
{
    while (is_blank(text[pos]))
        ++pos;
    if (text[pos] != '(')
        return CALL_NEEDS_PAREN;
    ++pos;
    for (std::size_t i = 0; i < macro.params.size(); ++i) {
        const std::size_t begin = pos;
        Argument          argument{macro.params[i], {}};
        if (const int error = take_argument(argument.text, i + 1 == macro.params.size(), text, pos))
            return error;
        for (const Argument &earlier : arguments)
            if (earlier.name == argument.name)
                return DUPLICATE_MACRO;
        if (observer != nullptr)
            observer->argument_taken(argument.name.data(), argument.name.size(), begin, begin + argument.text.size());
        arguments.push_back(std::move(argument));
    }
    return OK;
}

void skip_name(const char *text, std::size_t &pos)
{
    while (is_name_char(text[pos]))
        ++pos;
}

// a parenthesised group, balanced or up to the end
void skip_args(const char *text, std::size_t &pos)
{
    if (text[pos] != '(')
        return;
    int depth = 0;
    do {
        if (text[pos] == '(')
            ++depth;
        else if (text[pos] == ')')
            --depth;
        ++pos;
    } while (depth > 0 && text[pos] != '\0');
}

void announce(std::string_view name, const Input &in)
{
    if (SUPRESS)
        return;
    const std::string text{name};
    Mprintf("\n\tExpanding macro \"%s\" into line %d...", text.c_str(), in.line_no);
}

// A call in a text: where it starts (the "$") and ends, and what replaces it.
struct Call {
    std::size_t      start;
    std::size_t      end;
    std::string_view body;     // of the macro, of the argument, or as it was expanded
    std::string      expanded; // a body with parameters
};

int expand(Call &call, const char *text, std::size_t &pos, const std::vector<Argument> &locals, unsigned depth, const Input &in);

// expands the references in a body
int expand_body(std::string &body, const std::vector<Argument> &arguments, unsigned depth, const Input &in)
{
    for (std::size_t pos = body.find('$'); pos != std::string::npos; pos = body.find('$', pos)) { // at most MAX_EXPANSIONS
        ++pos;
        Call call{};
        if (const int error = expand(call, body.c_str(), pos, arguments, depth, in))
            return error;
        body.replace(call.start, call.end - call.start, call.body);
        if (observer != nullptr)
            observer->call_replaced(call.start, call.end, call.body.size());
        if (body.size() > MAX_BODY_TEXT)
            return BODY_TOO_LONG;
        pos = call.start;
        if (call.body.starts_with('$')) { // left for the scan of the line
            ++pos;
            skip_name(body.c_str(), pos);
        }
    }
    return OK;
}

void tell_call(CallKind kind, std::string_view name, const Call &call)
{
    if (observer != nullptr)
        observer->call_begins(kind, name.data(), name.size(), call.start, call.end, 0.0);
}

// an error of a call at a position of its text
int fail(int error, const char *text, std::size_t pos)
{
    if (observer != nullptr)
        observer->call_failed(text, pos);
    return error;
}

// call -> "$" name [ arguments ]
// with the position after the "$"; left after what was read
int expand(Call &call, const char *text, std::size_t &pos, const std::vector<Argument> &locals, unsigned depth, const Input &in)
{
    call.start                  = pos - 1;
    const std::string_view name = take_name(text, pos);
    const Meaning          what = find_meaning(name, locals);
    if (what.macro == nullptr && what.argument == nullptr)
        return fail(no_such_macro(name, in), text, call.start + 1);
    if (++expansions.done > MAX_EXPANSIONS || depth > MAX_NESTING)
        return fail(expands_without_end(name, in), text, call.start + 1);
    if (const int error = count_expansion(in))
        return error;

    call.end = pos;
    skip_args(text, call.end);
    call.body = what.macro != nullptr ? what.macro->body : what.argument->text;
    if (what.macro != nullptr && !what.macro->params.empty()) { // without parameters the body is left to the scan after the call
        std::vector<Argument> arguments;
        if (const int error = take_arguments(arguments, *what.macro, text, pos))
            return fail(error, text, pos);
        tell_call(CallKind::macro, name, call);
        call.expanded = what.macro->body;
        if (const int error = expand_body(call.expanded, arguments, depth + 1, in))
            return error;
        call.body = call.expanded;
    } else {
        tell_call(what.macro != nullptr ? CallKind::macro : CallKind::argument, name, call);
    }
    announce(name, in);
    return OK;
}

int expand_in_line(Input &in)
{
    if (expansions.line_no != in.line_no)
        expansions = {in.line_no, 0};
    std::size_t pos = in.pos;
    Call        call{};
    const int   result = expand(call, in.line, pos, {}, 1, in);
    in.pos             = static_cast<std::uint32_t>(result == BODY_TOO_LONG ? call.start : pos);
    if (result == BODY_TOO_LONG)
        return line_too_long(in);
    if (result != OK)
        return result;
    return replace_in_line(in, call.start, call.end, call.body.data(), call.body.size());
}

// directives whose line is not scanned for calls: "#undef", "#const", "#if", "#endif"
bool is_unscanned_directive(char c) { return c == 'u' || c == 'c' || c == 'i' || c == 'e'; }

void mark(DefinitionMarks &marks, std::uint32_t column)
{
    if (!marks.any)
        std::memset(marks.columns, 0, sizeof marks.columns);
    marks.any             = true;
    marks.columns[column] = true;
}

// one character of an open definition, which its third "#" closes
void scan_definition(Input &in, PassComments &flags, DefinitionMarks &marks)
{
    const char c = peek(in);
    mark(marks, in.pos);
    if (c == '#' && !flags.comment && ++IN_MACRO_DEF == 3)
        IN_MACRO_DEF = 0;
    follow_comment(flags, c, in.line[in.pos + 1]);
}

// moves on to the next character that scan_plain has to look at
void skip_plain(Input &in)
{
    while (!stops.has(peek(in)))
        ++in.pos;
}

struct LineScan {
    PassComments flags;
    bool         definitions; // may start on this line
    bool         stopped;     // the rest of the line is not scanned
};

// one character outside definitions; expanded tells whether the position is on text that was inserted
int scan_plain(Input &in, LineScan &scan, DefinitionMarks &marks, bool &expanded)
{
    const char c    = peek(in);
    const char next = in.line[in.pos + 1];
    expanded        = false;
    if (c == '#' && !scan.flags.comment && scan.definitions) {
        scan.stopped = is_unscanned_directive(next);
        IN_MACRO_DEF = scan.stopped ? 0 : 1;
        if (!scan.stopped)
            mark(marks, in.pos);
        return OK;
    }
    if (c == '$' && !scan.flags.comment) {
        ++in.pos;
        expanded = true;
        return expand_macro(in);
    }
    if (c == '\n' && !scan.flags.block)
        scan.flags.comment = false;
    if (c == '>' && in.pos != ODD_COLUMN)
        scan.definitions = false;
    follow_comment(scan.flags, c, next);
    return OK;
}

} // namespace

int parse_macros(Input &in, DefinitionMarks &marks)
{
    LineScan scan{{IN_COMMENT, IN_COMMENT}, true, false};
    while (peek(in) != '\0' && !scan.stopped) { // each step moves on, or is one of MAX_EXPANSIONS
        bool expanded = false;
        if (IN_MACRO_DEF != 0)
            scan_definition(in, scan.flags, marks);
        else if (const int error = scan_plain(in, scan, marks, expanded))
            return error;
        if (!expanded)
            ++in.pos;
        if (IN_MACRO_DEF == 0)
            skip_plain(in);
    }
    IN_COMMENT = scan.flags.block;
    in.pos     = 0;
    return OK;
}

int expand_macro(Input &in)
{
    return unless_exhausted([&] { return expand_in_line(in); }, OUT_OF_MEMORY);
}

int replace_in_line(Input &in, std::size_t start, std::size_t end, const char *text, std::size_t length)
{
    const std::size_t rest = std::strlen(in.line + end);
    in.pos                 = static_cast<std::uint32_t>(start);
    if (start + length + rest >= LINE_SIZE)
        return line_too_long(in);
    std::memmove(in.line + start + length, in.line + end, rest + 1);
    std::memcpy(in.line + start, text, length);
    if (observer != nullptr)
        observer->call_replaced(start, end, length);
    return OK;
}

void bound_expansions(std::uint64_t input_bytes) { most_expansions = SURE_EXPANSIONS + EXPANSIONS_FOR_BYTE * input_bytes; }

int count_expansion(const Input &in)
{
    if (run_expansions == most_expansions) {
        complain_here(in, "Too many expansions! (Max = %d)", most_expansions);
        return TEXT_REPORTED;
    }
    ++run_expansions;
    return OK;
}

void reset_macro_expansion()
{
    IN_COMMENT     = false;
    IN_MACRO_DEF   = 0;
    expansions     = {0, 0};
    run_expansions = 0;
    bound_expansions(0);
}

} // namespace orlo

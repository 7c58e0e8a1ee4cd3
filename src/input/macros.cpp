// A definition is read piece by piece, and each piece may lie on a further line: everything that moves on does so through the line
// reader, which leaves what it takes for a definition unexpanded.

#include "input/macros.h"

#include "base/exhaustion.h"
#include "diag/messages.h"
#include "diag/report.h"
#include "input/comment_flags.h"
#include "input/conditionals.h"
#include "input/directives.h"
#include "input/names.h"

#include <cstring>
#include <utility>

namespace orlo {
namespace {

NameTable<Macro> macro_list{};

int too_long(const char *what, std::size_t limit, const Input &in)
{
    complain_here(in, "The macro %s has exceeded the maximum number\nof characters allowed (%d).", what, limit);
    return TEXT_REPORTED;
}

// keyword -> "define" blank
int get_define(Input &in)
{
    move_within_line(in, DEFINE_WORD.size()); // any six characters that begin with "d"
    if (!is_blank(peek(in)))
        return BAD_DIRECTIVE;
    skip_blanks(in);
    return OK;
}

// name -> letter { letter | digit | "_" }
int get_name(std::string &name, Input &in)
{
    if (const int error = skip_wc(in))
        return error;
    if (!is_letter(peek(in)))
        return BAD_MACRO_NAME;
    const std::uint32_t begin = in.pos;
    for (; is_name_char(peek(in)); ++in.pos) {
        name.push_back(peek(in));
        if (name.size() == MAX_MACRO_NAME)
            return too_long("name", MAX_MACRO_NAME, in);
    }
    if (observer != nullptr)
        observer->macro_name(begin, in.pos);
    return OK;
}

// param -> name, which a line that was too long may continue on the next
int get_param(std::string &name, Input &in)
{
    if (const int error = skip_wc(in))
        return error;
    if (!is_letter(peek(in)))
        return BAD_MACRO_NAME;
    for (;;) { // each round reads a line
        for (; is_name_char(peek(in)); ++in.pos)
            name.push_back(peek(in));
        if (peek(in) != '\0')
            return OK;
        if (const int status = get_buff(in))
            return status == END_OF_INPUT ? OK : status;
    }
}

// params -> [ "(" param { [ "," | "'" | "#" ] param } ")" ]
int get_args(Macro &macro, Input &in)
{
    if (peek(in) != '(')
        return OK;
    ++in.pos;
    do { // at most MAX_MACRO_PARAMS parameters
        if (macro.params.size() == MAX_MACRO_PARAMS) {
            const int error = skip_wc(in);
            return error != OK ? error : BAD_MACRO_SYNTAX;
        }
        std::string name;
        if (const int error = get_param(name, in))
            return error;
        if (observer != nullptr)
            observer->macro_parameter(name.c_str(), name.size());
        macro.params.push_back(std::move(name));
        if (const int error = skip_wc(in))
            return error;
        if (peek(in) == '#' || peek(in) == '\'' || peek(in) == ',')
            ++in.pos;
        skip_blanks(in);
    } while (peek(in) != ')');
    ++in.pos;
    skip_blanks(in);
    return OK;
}

// body -> "#" characters "#"
// comments are copied too, and hide a "#"
int get_body(std::string &body, Input &in)
{
    if (const int error = skip_wc(in))
        return error;
    if (peek(in) != '#')
        return MACRO_BODY_NEEDS_MARK;
    ++in.pos;
    RawComments flags{false, false};
    for (;;) { // at most MAX_MACRO_BODY characters
        const char c = peek(in);
        if (c == '#' && !flags.line && !flags.block) {
            ++in.pos;
            return OK;
        }
        body.push_back(c == '\0' ? '\n' : c);
        if (observer != nullptr)
            observer->body_part(in.pos, c == '\0' ? in.pos : in.pos + 1);
        if (c != '\0') {
            follow_comment(flags, c, in.line[in.pos + 1]);
            ++in.pos;
        }
        if (body.size() == MAX_MACRO_BODY)
            return too_long("body", MAX_MACRO_BODY, in);
        if (c == '\0') {
            flags.line = false;
            if (const int status = get_buff(in))
                return status == END_OF_INPUT ? static_cast<int>(EOF_IN_MACRO_BODY) : status;
        }
    }
}

// define -> keyword name params body
int get_macro(Macro &macro, Input &in)
{
    if (const int error = get_define(in))
        return error;
    if (const int error = get_name(macro.name, in))
        return error;
    if (const int error = get_args(macro, in))
        return error;
    return get_body(macro.body, in);
}

int do_define(Input &in)
{
    Macro macro;
    if (observer != nullptr)
        observer->definition_begins(in.pos - 1);
    if (const int error = get_macro(macro, in))
        return error;
    if (observer != nullptr)
        observer->macro_defined(macro.name.c_str(), macro.body.c_str(), in.pos, find_macro(macro.name) == nullptr);
    return add_named(macro_list, std::move(macro)) ? OK : DUPLICATE_MACRO;
}

// undefine -> "undef" blank name
int do_undefine(Input &in)
{
    if (!resembles(in, UNDEF_WORD))
        return BAD_DIRECTIVE;
    move_within_line(in, UNDEF_WORD.size());
    if (!is_blank(peek(in)))
        return BAD_DIRECTIVE;
    skip_blanks(in);
    const std::uint32_t start = in.pos;
    while (peek(in) != '\0' && !is_blank(peek(in)))
        ++in.pos;
    if (macro_list.records == 0)
        return NO_MACROS;
    const std::string_view name{in.line + start, in.pos - start};
    if (find_named(macro_list, name) == nullptr)
        return no_such_macro(name, in);
    if (observer != nullptr)
        observer->macro_undefined(name.data(), name.size(), in.pos);
    remove_named(macro_list, name);
    return OK;
}

int run_directive(Input &in)
{
    switch (peek(in)) {
    case 'd':
        return do_define(in);
    case 'i': {
        float dropped = 0.0F;
        return get_if(in, dropped);
    }
    case 'e':
        if (is_endif(in.line, in.pos))
            move_within_line(in, ENDIF_WORD.size());
        return OK;
    default:
        return do_undefine(in);
    }
}

} // namespace

int parse_macro(Input &in)
{
    return unless_exhausted([&] { return run_directive(in); }, OUT_OF_MEMORY);
}

const Macro *find_macro(std::string_view name) { return find_named(macro_list, name); }

int no_such_macro(std::string_view name, const Input &in)
{
    const std::string text{name};
    complain(in, column_of(name, in), "There is no macro \"%s\" in your input file!", text.c_str());
    return TEXT_REPORTED;
}

void free_macro_list() { macro_list = {}; }

void print_macro(const Macro &macro)
{
    Mprintf("\n\tMACRO %s: ", macro.name.c_str());
    for (std::size_t i = 0; i < macro.params.size(); ++i)
        Mprintf("\n\t\tARG %d: %s", i, macro.params[i].c_str());
    Mprintf("\n\tBODY: %s ", macro.body.c_str());
}

void move_within_line(Input &in, std::size_t characters)
{
    for (; characters > 0 && peek(in) != '\0'; --characters)
        ++in.pos;
}

bool resembles(const Input &in, std::string_view keyword)
{
    for (std::size_t i = 0; i < keyword.size() && in.line[in.pos + i] != '\0'; ++i)
        if (in.line[in.pos + i] == keyword[i])
            return true;
    return false;
}

} // namespace orlo

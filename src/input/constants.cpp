// References are replaced in the line itself. The inserted text is a number and holds no reference, so the scan of a line ends.

#include "input/constants.h"

#include "base/clock.h"
#include "base/exhaustion.h"
#include "base/numerics.h"
#include "base/switches.h"
#include "diag/messages.h"
#include "diag/report.h"
#include "input/comment_flags.h"
#include "input/directives.h"
#include "input/equations.h"
#include "input/macros.h"
#include "input/names.h"
#include "input/scanners.h"

#include <charconv>
#include <string>
#include <string_view>
#include <utility>

namespace orlo {
namespace {

constexpr std::ptrdiff_t MOST_DIGITS = 19; // of 64 bits

constexpr CharacterSet stops = set_of({"~;/*\0", 5}); // all that can matter to the scan of a line, its end among them

struct Constant {
    std::string name;
    double      value;
};

NameTable<Constant> var_list{};

int no_such_constant(std::string_view name, const Input &in)
{
    const std::string text{name};
    complain(in, column_of(name, in), "There is no constant \"%s\" in your input file!", text.c_str());
    return TEXT_REPORTED;
}

// name -> letter { letter | digit | "_" }
int get_name(std::string &name, Input &in)
{
    if (const int error = skip_wc(in))
        return error;
    if (!is_letter(peek(in)))
        return BAD_CONSTANT_NAME;
    for (; is_name_char(peek(in)); ++in.pos) {
        name.push_back(peek(in));
        if (name.size() == MAX_CONSTANT_NAME) {
            complain_here(in, "The constant name has exceeded the maximum number\nof characters allowed (%d).", MAX_CONSTANT_NAME);
            return TEXT_REPORTED;
        }
    }
    return OK;
}

// definition -> "const" blank name number
// begin gets the place of the number
int get_var(Constant &constant, std::uint32_t &begin, Input &in)
{
    move_within_line(in, CONST_WORD.size()); // any five characters that begin with "c"
    if (!is_blank(peek(in)))
        return BAD_DIRECTIVE;
    skip_blanks(in);
    if (const int error = get_name(constant.name, in))
        return error;
    skip_blanks(in);
    if (peek(in) == '$')
        return MACRO_IN_CONSTANT;
    begin = in.pos;
    return get_df(constant.value, in) ? OK : NUMBER_EXPECTED;
}

// A reference in the line, what replaces it, and the name that its notice shows.
struct Reference {
    std::size_t      start; // of the "~"
    std::size_t      end;   // after a name its last character, after an equation its "]", after a time term the "@"
    double           value;
    std::string_view name;
    CallKind         kind;
};

// time-term -> "@" ( "1" | "2" | "3" | "4" )
int get_time_term(Reference &reference, Input &in)
{
    const double beats_per_second = static_cast<double>(TEMPO) / 60.0;
    ++in.pos;
    reference.end  = in.pos;
    reference.kind = CallKind::time;
    switch (peek(in)) {
    case '1':
        reference.value = LAST_IB_DUR;
        reference.name  = "@1 (Last IB Time)";
        return OK;
    case '2':
        reference.value = CUM_TIME;
        reference.name  = "@2 (Cumulative Time)";
        return OK;
    case '3':
        reference.value = beats_per_second * LAST_IB_DUR;
        reference.name  = "@3 (Last IB Time [BEATS])";
        return OK;
    case '4':
        reference.value = beats_per_second * CUM_TIME;
        reference.name  = "@4 (Cumulative Time [BEATS])";
        return OK;
    default:
        return BAD_TIME_TERM;
    }
}

int get_equation(Reference &reference, Input &in)
{
    if (const int error = parse_vequation(reference.value, in))
        return error;
    reference.end  = in.pos + 1;
    reference.name = "equation";
    reference.kind = CallKind::equation;
    return OK;
}

int get_name_term(Reference &reference, Input &in)
{
    if (const int error = find_vname(reference.value, in))
        return error;
    reference.end  = in.pos;
    reference.name = {in.line + reference.start + 1, reference.end - reference.start - 1};
    return OK;
}

// reference -> "~" ( equation | time-term | name )
int get_reference(Reference &reference, Input &in)
{
    switch (peek(in)) {
    case '[':
        return get_equation(reference, in);
    case '@':
        return get_time_term(reference, in);
    default:
        return get_name_term(reference, in);
    }
}

void announce(const Reference &reference, const Input &in)
{
    if (SUPRESS)
        return;
    const std::string name{reference.name};
    Mprintf("\n\tExpanding const \"%s\" (%f) into line %d...", name.c_str(), reference.value, in.line_no);
}

int expand_reference(Input &in)
{
    Reference reference{in.pos - 1, 0, 0.0, {}, CallKind::constant};
    if (const int error = get_reference(reference, in))
        return error;
    if (const int error = count_expansion(in))
        return error;
    announce(reference, in);
    if (observer != nullptr)
        observer->call_begins(reference.kind, reference.name.data(), reference.name.size(), reference.start, reference.end,
                              reference.value);
    char              text[FTOA_SIZE];
    const std::size_t length = FtoA(text, reference.value);
    return replace_in_line(in, reference.start, reference.end, text, length);
}

// the digits of a number that is not negative; nothing for a negative one
void put_digits(char *&end, std::int64_t number)
{
    if (number >= 0)
        end = std::to_chars(end, end + MOST_DIGITS, number).ptr;
}

// three digits or more; those of 0 for a negative number
void put_thousandths(char *&end, std::int64_t number)
{
    if (number > 999) {
        put_digits(end, number);
        return;
    }
    const auto shown = number > 0 ? static_cast<std::uint32_t>(number) : 0U;
    *end++           = static_cast<char>('0' + shown / 100);
    *end++           = static_cast<char>('0' + shown / 10 % 10);
    *end++           = static_cast<char>('0' + shown % 10);
}

// to the nearest, ties up; of a negative value only the sign counts, and what has no integer gives a negative one
std::int64_t nearest(double value)
{
    const std::int64_t down = to_int64(value);
    const auto         base = static_cast<double>(down);
    return down + (value > base && value - base >= base + 1.0 - value ? 1 : 0);
}

// moves on to the next character that parse_variables has to look at
void skip_plain(Input &in)
{
    while (!stops.has(peek(in)))
        ++in.pos;
}

int define(Input &in)
{
    Constant      constant{{}, 0.0};
    std::uint32_t begin = 0;
    if (const int error = get_var(constant, begin, in))
        return error;
    if (observer != nullptr)
        observer->constant_defined(constant.name.c_str(), constant.value, begin, in.pos,
                                   find_named(var_list, constant.name) == nullptr);
    return add_named(var_list, std::move(constant)) ? OK : DUPLICATE_CONSTANT;
}

} // namespace

int parse_var(Input &in)
{
    return peek(in) == 'c' ? unless_exhausted([&] { return define(in); }, NO_MEMORY_CONSTANT) : OK;
}

int parse_variables(Input &in, const DefinitionMarks &marks)
{
    PassComments flags{IN_COMMENT, IN_COMMENT};
    in.pos = 0;
    skip_plain(in);
    while (peek(in) != '\0') { // each step moves on: what is inserted holds no reference
        if (peek(in) == '~' && !flags.comment && !(marks.any && marks.columns[in.pos])) {
            ++in.pos;
            if (const int error = expand_variables(in))
                return error;
        } else {
            follow_comment(flags, peek(in), in.line[in.pos + 1]);
            ++in.pos;
        }
        skip_plain(in);
    }
    IN_COMMENT = flags.block;
    in.pos     = 0;
    return OK;
}

int expand_variables(Input &in)
{
    return unless_exhausted([&] { return expand_reference(in); }, OUT_OF_MEMORY);
}

int find_vname(double &value, Input &in)
{
    std::size_t            pos  = in.pos;
    const std::string_view name = take_name(in.line, pos);
    in.pos                      = static_cast<std::uint32_t>(pos);
    const Constant *found       = find_named(var_list, name);
    if (found == nullptr)
        return no_such_constant(name, in);
    if (observer != nullptr)
        observer->constant_used(name.data(), name.size(), pos - name.size(), pos);
    value = found->value;
    return OK;
}

std::size_t FtoA(char *text, double value)
{
    char *end = text;
    if (value < 0.0) {
        *end++ = '-';
        value  = -value;
    }
    const std::int64_t whole = to_int64(value);
    put_digits(end, whole);
    *end++ = '.';
    put_thousandths(end, nearest(1000.0 * (value - static_cast<double>(static_cast<float>(whole)))));
    *end = '\0';
    return static_cast<std::size_t>(end - text);
}

int CountDigits(std::int64_t number)
{
    if (number == 0)
        return 1;
    int digits = 0;
    for (; number > 0; number /= 10)
        ++digits;
    return digits;
}

void free_variable_list() { var_list = {}; }

void print_var(const char *name, double value)
{
    Mprintf("\n\tVAR %s: ", name);
    Mprintf("\n\tVALUE: %f ", value);
}

} // namespace orlo

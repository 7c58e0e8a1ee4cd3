// References are replaced in the line itself. The inserted text is a number and holds no reference, so the scan of a line ends.

#include "input/constants.h"

#include "base/clock.h"
#include "base/numerics.h"
#include "base/switches.h"
#include "diag/messages.h"
#include "diag/report.h"
#include "input/comment_flags.h"
#include "input/directives.h"
#include "input/equations.h"
#include "input/macros.h"
#include "input/scanners.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <functional>
#include <new>
#include <string>
#include <string_view>
#include <unordered_map>

namespace orlo {
namespace {

constexpr std::ptrdiff_t MOST_DIGITS = 19; // of 64 bits

struct NameHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view name) const { return std::hash<std::string_view>{}(name); }
};

std::unordered_map<std::string, double, NameHash, std::equal_to<>> var_list;

int no_such_constant(std::string_view name, const Input &in)
{
    const std::string text{name};
    Mprintf("\n\nERROR: Line %d: There is no constant \"%s\" in your input file!\n", in.line_no, text.c_str());
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
            Mprintf("\n\nERROR: Line %d: The constant name has exceeded the", in.line_no);
            Mprintf(" maximum number\nof characters allowed (%d).\n", MAX_CONSTANT_NAME);
            return TEXT_REPORTED;
        }
    }
    return OK;
}

// definition -> "const" blank name number
int get_var(std::string &name, double &value, Input &in)
{
    move_within_line(in, CONST_WORD.size()); // any five characters that begin with "c"
    if (!is_blank(peek(in)))
        return BAD_DIRECTIVE;
    skip_blanks(in);
    if (const int error = get_name(name, in))
        return error;
    skip_blanks(in);
    if (peek(in) == '$')
        return MACRO_IN_CONSTANT;
    return get_df(value, in) ? OK : NUMBER_EXPECTED;
}

// A value and the name that its notice shows.
struct Reference {
    double      value;
    const char *name;
};

// time-term -> "@" ( "1" | "2" | "3" | "4" )
int get_time_term(Reference &reference, Input &in)
{
    const double beats_per_second = static_cast<double>(TEMPO) / 60.0;
    ++in.pos;
    switch (peek(in)) {
    case '1':
        reference = {LAST_IB_DUR, "@1 (Last IB Time)"};
        return OK;
    case '2':
        reference = {CUM_TIME, "@2 (Cumulative Time)"};
        return OK;
    case '3':
        reference = {beats_per_second * LAST_IB_DUR, "@3 (Last IB Time [BEATS])"};
        return OK;
    case '4':
        reference = {beats_per_second * CUM_TIME, "@4 (Cumulative Time [BEATS])"};
        return OK;
    default:
        return BAD_TIME_TERM;
    }
}

// after a reference: after a name its last character, after an equation its first "]", after a time term the "@"
std::size_t skip_vname_or_eq(const char *line, std::size_t pos)
{
    switch (line[pos]) {
    case '[':
        return pos + std::strcspn(line + pos, "]") + 1;
    case '@':
        return pos + 1;
    default:
        static_cast<void>(take_name(line, pos));
        return pos;
    }
}

// replaces the reference after the "~" at start by its value
int vexpand_in_buff(const Reference &reference, std::size_t start, Input &in)
{
    if (const int error = count_expansion(in))
        return error;
    if (!SUPRESS)
        Mprintf("\n\tExpanding const \"%s\" (%f) into line %d...", reference.name, reference.value, in.line_no);
    char              text[FTOA_SIZE];
    const std::size_t length = FtoA(text, reference.value);
    return replace_in_line(in, start, skip_vname_or_eq(in.line, start + 1), text, length);
}

int expand_name(std::size_t start, Input &in)
{
    double value = 0.0;
    if (const int error = find_vname(value, in))
        return error;
    const std::string name{in.line + start + 1, in.pos - start - 1};
    return vexpand_in_buff({value, name.c_str()}, start, in);
}

// reference -> "~" ( equation | time-term | name )
int expand_reference(Input &in)
{
    const std::size_t start = in.pos - 1;
    Reference         reference{0.0, "equation"};
    int               result = OK;
    if (peek(in) == '[')
        result = parse_vequation(reference.value, in);
    else if (peek(in) == '@')
        result = get_time_term(reference, in);
    else
        return expand_name(start, in);
    return result == OK ? vexpand_in_buff(reference, start, in) : result;
}

// the digits of a number that is not negative; nothing for a negative one
void put_digits(char *&end, std::int64_t number)
{
    if (number >= 0)
        end = std::to_chars(end, end + MOST_DIGITS, number).ptr;
}

} // namespace

int parse_var(Input &in)
{
    if (peek(in) != 'c')
        return OK;
    try {
        std::string name;
        double      value = 0.0;
        if (const int error = get_var(name, value, in))
            return error;
        return var_list.try_emplace(name, value).second ? OK : DUPLICATE_CONSTANT;
    } catch (const std::bad_alloc &) {
        return NO_MEMORY_CONSTANT;
    }
}

int parse_variables(Input &in, const DefinitionMarks &marks)
{
    PassComments flags{IN_COMMENT, IN_COMMENT};
    in.pos = 0;
    while (peek(in) != '\0') { // each step moves on: what is inserted holds no reference
        if (peek(in) == '~' && !flags.comment && !(marks.any && marks.columns[in.pos])) {
            ++in.pos;
            if (const int error = expand_variables(in))
                return error;
        } else {
            follow_comment(flags, peek(in), in.line[in.pos + 1]);
            ++in.pos;
        }
    }
    IN_COMMENT = flags.block;
    in.pos     = 0;
    return OK;
}

int expand_variables(Input &in)
{
    try {
        return expand_reference(in);
    } catch (const std::bad_alloc &) {
        return OUT_OF_MEMORY;
    }
}

int find_vname(double &value, Input &in)
{
    std::size_t            pos  = in.pos;
    const std::string_view name = take_name(in.line, pos);
    in.pos                      = static_cast<std::uint32_t>(pos);
    const auto found            = var_list.find(name);
    if (found == var_list.end())
        return no_such_constant(name, in);
    value = found->second;
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

    const double       rest     = 1000.0 * (value - static_cast<double>(static_cast<float>(whole)));
    const double       down     = std::floor(rest);
    const double       up       = std::ceil(rest);
    const std::int64_t fraction = to_int64(rest - down < up - rest ? down : up);
    for (int zeros = 3 - CountDigits(fraction); zeros > 0; --zeros)
        *end++ = '0';
    put_digits(end, fraction);
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

void free_variable_list() { decltype(var_list){}.swap(var_list); } // gives the table back too

void print_var(const char *name, double value)
{
    Mprintf("\n\tVAR %s: ", name);
    Mprintf("\n\tVALUE: %f ", value);
}

} // namespace orlo

// Terms and operations are gathered first and applied at the end, because only the counts tell whether the equation is one.

#include "input/equations.h"

#include "base/clock.h"
#include "base/numerics.h"
#include "base/random.h"
#include "base/switches.h"
#include "diag/messages.h"
#include "diag/report.h"
#include "input/constants.h"
#include "input/macro_expansion.h"
#include "input/scanners.h"

namespace orlo {
namespace {

constexpr std::int32_t RANDOM_STEPS = 32767;

struct Terms {
    double      terms[MAX_EQUATION_ITEMS];
    char        operations[MAX_EQUATION_ITEMS];
    std::size_t term_count;
    std::size_t operation_count;
    bool        term_expected; // the last item was an operation
};

int add_term(Terms &equation, double value)
{
    equation.terms[equation.term_count++] = value;
    equation.term_expected                = false;
    return OK;
}

int add_operation(Terms &equation, Input &in)
{
    if (equation.operation_count == MAX_EQUATION_ITEMS)
        return BAD_EQUATION_COUNT;
    equation.operations[equation.operation_count++] = peek(in);
    equation.term_expected                          = true;
    ++in.pos;
    return OK;
}

// time-term -> "@" ( "1" | "2" )
int get_time_term(double &value, Input &in)
{
    ++in.pos;
    const char c = peek(in);
    if (c != '1' && c != '2')
        return BAD_TIME_TERM;
    value = c == '1' ? LAST_IB_DUR : CUM_TIME;
    ++in.pos;
    return OK;
}

int draw_random(double &value, Input &in)
{
    if (const int error = count_expansion(in))
        return error;
    ++in.pos;
    value = static_cast<double>(static_cast<float>(draw_int() % RANDOM_STEPS)) / static_cast<double>(RANDOM_STEPS);
    if (observer != nullptr)
        observer->equation_drew();
    if (!SUPRESS)
        Mprintf("\n\tLine %d: '?' evaluated at = %f", in.line_no, value);
    return OK;
}

// term -> name | "?" | time-term | [ "+" | "-" ] number
int get_term(Terms &equation, Input &in)
{
    if (equation.term_count == MAX_EQUATION_ITEMS)
        return BAD_EQUATION_COUNT;
    double value = 0.0;
    if (is_letter(peek(in))) {
        if (const int error = find_vname(value, in))
            return error;
    } else if (peek(in) == '?') {
        if (const int error = draw_random(value, in))
            return error;
    } else if (peek(in) == '@') {
        if (const int error = get_time_term(value, in))
            return error;
    } else if (!get_df(value, in)) {
        return NUMBER_EXPECTED;
    }
    return add_term(equation, value);
}

// item -> term | operation
int get_item(Terms &equation, Input &in)
{
    const char c = peek(in);
    switch (c) {
    case '\0':
        return EQUATION_LINE_END;
    case '+':
    case '-':
        return equation.term_expected ? get_term(equation, in) : add_operation(equation, in);
    case '*':
    case '/':
    case '%':
        return add_operation(equation, in);
    case '?':
    case '@':
    case '.':
        return get_term(equation, in);
    default:
        return is_letter(c) || is_digit(c) ? get_term(equation, in) : static_cast<int>(BAD_EQUATION_CHAR);
    }
}

double apply(char operation, double value, double term)
{
    switch (operation) {
    case '+':
        return value + term;
    case '-':
        return value - term;
    case '*':
        return value * term;
    case '/':
        return value / term;
    default:
        return static_cast<double>(mod(static_cast<float>(value), static_cast<float>(term)));
    }
}

// between items only these are skipped, no other blanks
void skip_between_items(Input &in)
{
    while (peek(in) == ' ' || peek(in) == '\t' || peek(in) == '\n')
        ++in.pos;
}

} // namespace

// equation -> "[" { item } "]"
int parse_vequation(double &value, Input &in)
{
    Terms equation{};
    ++in.pos;
    for (skip_blanks(in); peek(in) != ']'; skip_between_items(in))
        if (const int error = get_item(equation, in))
            return error;
    if (equation.term_count != equation.operation_count + 1)
        return BAD_EQUATION_COUNT;
    value = equation.terms[0];
    for (std::size_t i = 0; i < equation.operation_count; ++i)
        value = apply(equation.operations[i], value, equation.terms[i + 1]);
    return OK;
}

} // namespace orlo

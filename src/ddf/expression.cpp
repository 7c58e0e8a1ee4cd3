// An equation is a first term and a list of operations, each with its term; there is no precedence to take care of.
// It must stand on one line, so within the brackets blanks alone are skipped.

#include "ddf/expression.h"

#include "base/numerics.h"
#include "diag/messages.h"
#include "diag/report.h"
#include "events/block.h"
#include "events/pfields.h"
#include "input/scanners.h"

#include <cstring>
#include <utility>

namespace orlo {
namespace {

bool is_operation(char c) { return c != '\0' && std::strchr("+-*/%", c) != nullptr; }

bool is_reference(const Input &in) { return lower(peek(in)) == 'p'; }

// reference -> "p" digits
int get_reference(Term &term, Input &in)
{
    const std::uint32_t begin = in.pos++;
    if (!get_i(term.pfield, in))
        return BAD_P_NUMBER;
    const bool usable = term.pfield >= 2 && term.pfield <= MAX_PFIELDS && term.pfield != P_NO && DID_P[term.pfield];
    tell_number(in, Part::pfield, static_cast<double>(term.pfield), begin);
    return usable ? OK : BAD_EX_PFIELD;
}

// term -> reference | number
int get_term(Term &term, Input &in)
{
    skip_blanks(in);
    if (peek(in) == '\0')
        return BAD_OPERATION;
    if (is_reference(in))
        return get_reference(term, in);
    const std::uint32_t begin = in.pos;
    if (!get_f(term.constant, in))
        return BAD_VALUE;
    tell_number(in, Part::constant, static_cast<double>(term.constant), begin);
    return OK;
}

// operation -> ( "+" | "-" | "*" | "/" | "%" ) term
int get_operation(Equation &equation, Input &in)
{
    skip_blanks(in);
    if (!is_operation(peek(in)))
        return BAD_OPERATION;
    if (equation.operations.size() == MAX_OPERATIONS)
        return OUT_OF_BOUNDS;
    Operation operation{peek(in), {}};
    ++in.pos;
    tell_number(in, Part::operation, static_cast<double>(operation.op), in.pos - 1);
    if (const int error = get_term(operation.term, in))
        return error;
    if (operation.op == '/') {
        if (operation.term.pfield != 0)
            warn(in, W_MAY_DIVIDE_BY_ZERO);
        else if (operation.term.constant == 0.0F)
            return DIVISION_BY_ZERO;
    }
    equation.operations.push_back(operation);
    skip_blanks(in);
    return OK;
}

bool refers_to_pfield(const Equation &equation)
{
    if (equation.first.pfield != 0)
        return true;
    for (const Operation &operation : equation.operations)
        if (operation.term.pfield != 0)
            return true;
    return false;
}

// bracketed -> "[" term operation { operation } "]"
int get_bracketed(Equation &equation, Input &in)
{
    ++in.pos;
    if (const int error = get_term(equation.first, in))
        return error;
    do { // at most MAX_OPERATIONS operations
        if (const int error = get_operation(equation, in))
            return error;
    } while (peek(in) != ']');
    ++in.pos;
    return refers_to_pfield(equation) ? OK : NO_PFIELD_IN_EX;
}

// mode -> [ "i" | "f" ]
int get_mode(Equation &equation, Input &in)
{
    const char c = lower(peek(in));
    if (c != 'i' && c != 'f')
        return OK;
    equation.rounded = c == 'i';
    ++in.pos;
    tell_number(in, Part::rounding, equation.rounded ? 1.0 : 0.0, in.pos - 1);
    return skip_items(in);
}

float term_value(const Term &term, const Event *event)
{
    switch (term.pfield) {
    case 0:
        return term.constant;
    case 2:
        return event->start;
    case 3:
        return event->dur;
    default:
        return event->pf[term.pfield - 4];
    }
}

int apply(const Operation &operation, const Event *event, float &value)
{
    const float term = term_value(operation.term, event);
    switch (operation.op) {
    case '+':
        value += term;
        break;
    case '-':
        value -= term;
        break;
    case '*':
        value *= term;
        break;
    case '/':
        if (term == 0.0F)
            return PFIELD_DIVISION;
        value /= term;
        break;
    default:
        value = mod(value, term);
        break;
    }
    return OK;
}

// equation -> reference | bracketed
int get_equation(Equation &equation, Input &in)
{
    if (is_reference(in))
        return get_reference(equation.first, in);
    return peek(in) == '[' ? get_bracketed(equation, in) : static_cast<int>(BAD_EX_PFIELD);
}

} // namespace

int check_pfield(const Expression &, const Input &in)
{
    if (P_NO < 3)
        return BAD_EX_PFIELD;
    if (P_NO == 3)
        warn(in, W_P3_CODES_IN_EX);
    return OK;
}

// set -> weight mode equation
int get_set(Expression &data, Frame &frame, Input &in)
{
    if (const int error = get_weight(frame, in, BAD_EX_DATA))
        return error;
    Equation equation{};
    if (const int error = get_mode(equation, in))
        return error;
    if (const int error = get_equation(equation, in))
        return error;
    data.sets.push_back(std::move(equation));
    return OK;
}

int make_value(Expression &data, std::size_t set, const Place &place, float &value)
{
    const Equation &equation = data.sets[set];
    value                    = term_value(equation.first, place.event);
    for (const Operation &operation : equation.operations)
        if (const int error = apply(operation, place.event, value))
            return error;
    if (equation.rounded)
        value = RoundF(value);
    return OK;
}

} // namespace orlo

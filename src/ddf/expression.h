// EX: each value is computed from the event's other p-fields, strictly from left to right.
#pragma once

#include "ddf/generator.h"

namespace orlo {

inline constexpr std::size_t MAX_OPERATIONS = 41; // of one equation

struct Term {
    std::int32_t pfield;   // the p-field that is referred to, 0 for a constant
    float        constant; // the constant's value
};

struct Operation {
    char op; // "+", "-", "*", "/" or "%"
    Term term;
};

struct Equation {
    bool                   rounded; // to the nearest whole number
    Term                   first;
    std::vector<Operation> operations; // none for a bare p-field
};

struct Expression {
    std::vector<Equation> sets;
};

/// Refuses p2 and warns in p3, before anything is read. @return 0 or 57
[[nodiscard]] int check_pfield(const Expression &data, const Input &in);

[[nodiscard]] int get_set(Expression &data, Frame &frame, Input &in);

/// @return 0, or 60 when a p-field that divides is 0
[[nodiscard]] int make_value(Expression &data, std::size_t set, const Place &place, float &value);

} // namespace orlo

// Equations in square brackets: numbers, constants, time terms and random numbers, evaluated strictly from left to right.
#pragma once

#include "input/line_reader.h"

namespace orlo {

inline constexpr std::size_t MAX_EQUATION_ITEMS = 30; // terms, and operations, of one equation

/// Evaluates the equation whose "[" is at the position; left on its "]". Division by zero is not checked.
/// @return 0, 105, 106, 107, 108, 500 or 1000
[[nodiscard]] int parse_vequation(double &value, Input &in);

} // namespace orlo

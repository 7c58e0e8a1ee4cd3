// Named numbers and equations: "#const" statements, and the expansion of "~" references in every line. Owns the constant list.
#pragma once

#include "input/line_reader.h"
#include "input/macros.h"

#include <cstdint>

namespace orlo {

/// Reads a "#const" statement from its "c"; a capital "C" does nothing. @return 0 or an error
[[nodiscard]] int parse_var(Input &in);

/// Expands every reference of the line in place. Leaves the position at 0. @return 0 or an error
[[nodiscard]] int parse_variables(Input &in, const DefinitionMarks &marks);

/// Expands the reference whose "~" lies just before the position. @return 0 or an error
[[nodiscard]] int expand_variables(Input &in);

/// Frees all constants.
void free_variable_list();

} // namespace orlo

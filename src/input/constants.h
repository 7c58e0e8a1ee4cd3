// Named numbers: "#const" statements, and "~" references in every line, which are replaced by their value before any parser
// sees the line. Owns the constant list.
#pragma once

#include "input/line_reader.h"
#include "input/macro_expansion.h"

namespace orlo {

inline constexpr std::size_t MAX_CONSTANT_NAME = 2048; // a name of so many characters is refused

/// Reads a "#const" statement from its "c"; a capital "C" does nothing. @return 0, 80, 100, 102, 103, 109,
/// 500, 1000, or an error of a further line
[[nodiscard]] int parse_var(Input &in);

/// Expands every reference of the line in place, but for those in comments and in the marked columns. Leaves the position at 0.
/// @return 0 or an error of the reference
[[nodiscard]] int parse_variables(Input &in, const DefinitionMarks &marks);

/// Expands the reference whose "~" lies just before the position. The position is left on the inserted text.
/// @return 0, 32, 105, 106, 107, 108, 500 or 1000
[[nodiscard]] int expand_variables(Input &in);

/// Reads a name and looks up its value. @return 0, or 1000 when no constant has that name
[[nodiscard]] int find_vname(double &value, Input &in);

/// Writes a value with three decimals as text of at most FTOA_SIZE bytes, NUL included. A fraction that rounds up to 1 is written
/// as 1000, without a carry. @return the length of the text
inline constexpr std::size_t FTOA_SIZE = 64;
std::size_t                  FtoA(char *text, double value);

/// Decimal digits of a number: 1 for 0, 0 for a negative number. Only tests call it.
[[nodiscard]] int CountDigits(std::int64_t number);

/// Frees all constants.
void free_variable_list();

/// Debugging aid that only tests call: prints a constant.
void print_var(const char *name, double value);

} // namespace orlo

// Macro calls: "$name" and "$name(argument'argument)" are replaced by the macro's body in every line, before any parser sees it.
#pragma once

#include "input/line_reader.h"

namespace orlo {

inline constexpr unsigned    MAX_EXPANSIONS = 10000; // of one line, those inside bodies among them
inline constexpr unsigned    MAX_NESTING    = 128;   // bodies inside bodies
inline constexpr std::size_t MAX_BODY_TEXT  = 65536; // characters of a body while it is expanded

inline constexpr std::uint64_t SURE_EXPANSIONS     = 1000000; // of a run, of macros and constants
inline constexpr std::uint64_t EXPANSIONS_FOR_BYTE = 10;      // more for each byte of the combined input

/// The columns of the current line that belong to a macro definition, in which constants stay as they are.
struct DefinitionMarks {
    bool any = false;            // whether a column is marked; the columns hold nothing before the first mark
    bool columns[LINE_SIZE + 1]; // by position in the line
};

extern bool IN_COMMENT; // a block comment is open where the last pass ended, false at start; carried from line to line; written by
                        // parse_macros and parse_variables
extern int
    IN_MACRO_DEF; // 0 outside a definition, else 1 plus the number of its later "#" so far; 0 at start; written by parse_macros

/// Expands every call of the line in place, but for those in comments, definitions and directives, and marks the columns of
/// definitions. Leaves the position at 0.
/// @return 0, 32, 82, 84, 85, 86 or 1000
[[nodiscard]] int parse_macros(Input &in, DefinitionMarks &marks);

/// Expands the call whose name starts at the position, just after the "$". The position is left on the inserted text.
/// @return as parse_macros
[[nodiscard]] int expand_macro(Input &in);

/// Replaces a part of the line from start to end. The position is left on the inserted text.
/// @return 0, or 1000 when the line would become too long; the line stays as it is then
[[nodiscard]] int replace_in_line(Input &in, std::size_t start, std::size_t end, const char *text, std::size_t length);

/// Sets the bound of the run's expansions, by the size of its input with all include files.
void bound_expansions(std::uint64_t input_bytes);

/// Counts what is expanded or evaluated with a notice of its own: a macro, a constant, an equation, a "?".
/// @return 0, or 1000 when the run has reached its bound
[[nodiscard]] int count_expansion(const Input &in);

/// Outside comments and definitions, no expansion has been counted, and the bound is that of an empty input.
void reset_macro_expansion();

} // namespace orlo

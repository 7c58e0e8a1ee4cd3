// Text macros: "#define" and "#undef", and the expansion of "$" calls in every line. Owns the macro list.
#pragma once

#include "input/line_reader.h"

namespace orlo {

/// The columns of the current line that belong to a macro definition, in which constants stay as they are.
struct DefinitionMarks {
    bool any = false;            // whether any column is marked; the columns hold nothing before the first mark
    bool columns[LINE_SIZE + 1];
};

extern int IN_COMMENT;   // not 0 while the passes are inside a comment, 0 at start; carried from line to line
extern int IN_MACRO_DEF; // 0 outside a definition, else 1 plus the number of its "#" so far; 0 at start

/// Expands every call of the line in place and marks the columns of definitions. Leaves the position at 0. @return 0 or an error
[[nodiscard]] int parse_macros(Input &in, DefinitionMarks &marks);

/// Runs the directive behind a "#": a definition, an undefinition, or a condition that stands inside a line. @return 0 or an error
[[nodiscard]] int parse_macro(Input &in);

/// Expands the call whose name starts at the position, just behind the "$". @return 0 or an error
[[nodiscard]] int expand_macro(Input &in);

/// Frees all macros.
void free_macro_list();

} // namespace orlo

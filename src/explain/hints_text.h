// hints_text.h: hints as a text for reading. Prints nothing.
#pragma once

#include "explain/document.h"
#include "explain/gathered.h"
#include "explain/hints/hint.h"

#include <string>
#include <vector>

namespace orlo::explain {

/// All hints of a piece with their lines, reasons and fixes; a sentence where there are none.
[[nodiscard]] std::string hints_text(Piece &piece, const Hints &hints, const Heading &heading);

/// What is to be done for an edit: 'write "bf4" in place of "bb4"'. In one line.
[[nodiscard]] std::string fix_text(const SourceMap &source, const Edit &edit);

/// That there may be more hints than are shown.
[[nodiscard]] std::string full_text();

/// The names of all hints, a line each, with what they are about.
[[nodiscard]] std::string list_of_hints();

} // namespace orlo::explain

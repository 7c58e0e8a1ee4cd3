// gcc_messages.h: what is wrong with a piece, in the form of compilers: FILE:LINE:COLUMN: error: TEXT.
#pragma once

#include "explain/hints/hint.h"

#include <string>
#include <vector>

namespace orlo::explain {

/// The messages, a line each, with the calls and includes that lead to their places as notes. Lines and columns count from 1,
/// columns in bytes.
[[nodiscard]] std::string gcc_messages(Piece &piece, const Hints &hints);

} // namespace orlo::explain

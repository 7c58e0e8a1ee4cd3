// The global block: the lines of commands before, between and after the i-blocks.
#pragma once

#include "input/line_reader.h"

#include <cstdio>

namespace orlo {

/// Reads lines and runs their commands up to the "i" that opens an i-block. What is left of the current line is dropped.
/// @return 0 with the position on the "i", END_OF_INPUT, or an error
[[nodiscard]] int parse_gblock(Input &in, std::FILE *out);

/// Runs the command of a code, whose keyword has been read. @return 0, or an error; 47 for a code that has no place here
[[nodiscard]] int do_gcommand(std::int32_t code, Input &in, std::FILE *out);

} // namespace orlo

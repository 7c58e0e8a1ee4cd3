// Conditional blocks: "#if(value)" and "#endif" lines keep or drop the lines between them.
#pragma once

#include "input/line_reader.h"

#include <cstdint>

namespace orlo {

/// 1 when "if(" stands at a position, after the "#".
[[nodiscard]] bool is_if(const char *line, std::uint32_t pos);

/// 1 when "endif" stands at a position, after the "#".
[[nodiscard]] bool is_endif(const char *line, std::uint32_t pos);

/// 1 while the lines of a false block are being skipped: they must be read as they are.
[[nodiscard]] bool in_if0();

/// Opens a block at "if(" and, when its condition is 0, skips to what follows the matching "endif".
/// @return 0, 32, or 117 at the end of the input
[[nodiscard]] int do_if_interface(Input &in);

/// Reads "if(" value ")"; the value may be a macro call or a constant reference.
/// @return 0, 114, 115, 116, or an error of the expansion
[[nodiscard]] int get_if(Input &in, float &value);

/// Closes a block at "endif". @return 0, 113, or 118 when none is open
[[nodiscard]] int do_endif(Input &in);

/// 1 when every block has been closed.
[[nodiscard]] bool ifdef_match();

/// No block is open, and nothing is remembered.
void reset_conditionals();

} // namespace orlo

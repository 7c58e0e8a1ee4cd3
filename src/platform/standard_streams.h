// The standard streams and the signals that writing can raise.
#pragma once

#include <cstdio>

namespace orlo {

/// Whether a standard stream was open when the program was started; to be asked before anything is opened.
[[nodiscard]] bool is_open(std::FILE *stream);

/// From here on a pipe that is closed, or a file at its limit of size, is an error of writing.
void outlive_lost_writes();

/// Opens the standard streams that are closed on nothing: a file must not take the number of one, or it would receive what is meant
/// for the screen. Outlives lost writes.
void secure_standard_streams();

} // namespace orlo

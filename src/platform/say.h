// say.h: what is said on standard error.
#pragma once

#include <string>

namespace orlo {

/// Prints a line; on a terminal, control characters in it are shown and do nothing.
void say(const std::string &line);

} // namespace orlo

// terminal.h: whether somebody looks at what is written.
#pragma once

#include <cstdio>

namespace orlo {

/// Is a stream a terminal?
bool is_terminal(std::FILE *stream);

} // namespace orlo

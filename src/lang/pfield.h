// One p-field section: its header with the output type, its data and commands, and the filling of the block after them.
#pragma once

#include "events/event_list.h"
#include "events/section.h"
#include "input/line_reader.h"

namespace orlo {

/// Reads the section of P_NO, with the position after its number. @return 0 on the next section or the "}", or an error
[[nodiscard]] int do_pN(Input &in, Event *&list);

/// Runs the command of a code, whose keyword has been read. A code without a command does nothing. @return 0 or an error
[[nodiscard]] int do_commands(std::int32_t code, Section &section, Input &in);

} // namespace orlo

// The i-block: header, sections and block commands up to the closing "}".
#pragma once

#include "events/event_list.h"
#include "input/line_reader.h"

#include <cstdint>

namespace orlo {

inline constexpr float        MOST_BEATS    = 10000.0F; // of a block
inline constexpr std::int32_t MANY_PFIELDS  = 50;       // more, and a warning is given
inline constexpr float        LATE_START    = 240.0F;   // beats; from a later start a warning is given
inline constexpr float        LONG_DURATION = 600.0F;   // beats; of a longer block a warning is given

/// Reads an i-block from its "i" and fills the event list.
/// @return 0 after the "}", END_OF_INPUT (also after a skipped block), or an error
[[nodiscard]] int parse_iblock(Input &in, Event *&list);

} // namespace orlo

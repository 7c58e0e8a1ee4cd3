// The i-block: header, sections and block commands up to the closing "}".
#pragma once

#include "events/event_list.h"
#include "input/line_reader.h"

namespace orlo {

inline constexpr float MOST_BEATS = 10000.0F;

/// Reads an i-block from its "i" and fills the event list.
/// @return 0 behind the "}", END_OF_INPUT (also behind a skipped block), or an error
[[nodiscard]] int parse_iblock(Input &in, Event *&list);

} // namespace orlo

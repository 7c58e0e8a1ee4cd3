// collector.h: the observer that gathers what a run tells into a Piece.
#pragma once

#include "base/observer.h"
#include "gather/piece.h"

namespace orlo::gather {

/// How much is gathered.
enum class Detail {
    events,  // every value and every event
    summary, // sections with their statistics, no single values
};

/// Gathers into a piece from here on; the observer is to be set while a run is made. One at a time.
void start_collecting(Piece &piece, Detail detail);

/// What the collector is told by, with such detail.
[[nodiscard]] const Observer &collecting_observer(Detail detail);

/// The run is over: what is still open is closed. @return false when memory was exhausted, which is not told into the run
[[nodiscard]] bool end_collecting();

} // namespace orlo::gather

// The times that equations can ask for. Kept here since they are written by the upper floors and read on the lower ones.
#pragma once

namespace orlo {

extern double CUM_TIME;    // seconds, the latest end of any block so far, 0 at start; written by driver/run after a block
extern double LAST_IB_DUR; // seconds, duration of the last block that was written, 0 at start; written by driver/run after a block
extern float  TEMPO;       // beats per minute found by the last conversion (to_tempo) or start of p2 (reset_pfield), 60 at start

/// Sets the clock back to its start.
void reset_clock();

} // namespace orlo

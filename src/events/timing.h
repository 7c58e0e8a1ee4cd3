// An i-block's bookkeeping of time and events, the p3 codes, the end of the block and what fills it up to there.
// Reads no text.
#pragma once

#include "events/event_list.h"
#include "events/value_queue.h"
#include "input/line_reader.h"

#include <cerrno>
#include <cstdint>

#undef ETIME // an error number of the C library that is not used here gives way to the length of a block

namespace orlo {

extern std::int32_t  I_NO;     // instrument number of the block, 0 at start; written by the i-block header, like the next five
extern float         STIME;    // start of the block, beats in the header, seconds from p2 on; 0 at start
extern float         SBEAT;    // start of the block in beats, 0 at start
extern float         BEATS;    // length in beats, 0 at start and when the length is given in events
extern float         ETIME;    // length in beats, or minus the number of events; 0 at start
extern std::uint64_t EVENTS;   // events the block must have, 0 while it is bounded by beats; p2 sets it to what it produced
extern std::uint64_t EVENT_NO; // events so far in the section, 0 at start
extern float         CBEATS;   // position of the next p2 value in beats of the piece, 0 at start
extern float         LAST_VAL; // last value read or generated, 0 at start
extern std::int32_t  P_NO;     // p-field being read, 0 at start
extern std::int32_t  IN_TYPE;  // code of the section's input type, 14 ("re") at start
extern std::int32_t  OUT_TYPE; // code of the section's output type, 14 ("re") at start
extern std::int32_t  IN_LOOP;  // 1 while a loop is open, 0 at start
extern std::int32_t  NX;       // 1 after "nox" or "opx": pitches are not rounded; 0 at start
extern float         MAX_DEV;  // relative deviation of stored values, 0 at start; set by "rd"
extern float         MAX_DEV2; // a second one, added to it, 0 at every section's start; set by "dv"

/// What a p3 value means, by its magnitude.
enum class P3Code : std::int32_t { factor = 0, longer = 200, shorter = 300, beats = 400, seconds = 1000 };

/// Takes a p3 value apart. @return the amount, with the sign of the value
float extract_p3val(P3Code &code, float value);

/// Stores a p3 value as the duration of the event after the cursor, which becomes the cursor. Two draws.
/// Warning 1 shows no line. @return the code of the value
P3Code store_p3(Event *&cursor, const Input &in, float value);

/// Stores a value of a p-field from p4 up, deviated and rounded by adjust. One draw.
/// @return 1, or 0 when memory is exhausted
[[nodiscard]] int store_value(Event *&list, Event *&cursor, float value);

/// As store_value; a negative note (a rest) flips the sign of the receiving event's duration.
[[nodiscard]] int store_value_or_rest(Event *&list, Event *&cursor, float value);

/// Creates the event of a p2 value in beats and moves CBEATS on. Seconds are the converted value.
/// @return 1, or 0 when memory is exhausted
[[nodiscard]] int store_start(Event *&list, float value, float seconds);

/// Fills the rest of the block: with the values of the queue in turn or, without a queue, with the last value or chord.
/// @return 0, 32 for exhausted memory, 54 for an interval of 0, or 1000 when p2 never gets to the block's end
[[nodiscard]] int fill_to_end(Event *&list, Event *&cursor, const QueueNode *queue, const Input &in);

/// 1 when the block is full.
[[nodiscard]] int out_of_time();

/// 1 when p2 has not moved on since CBEATS was before, in a block given in beats: repeating would never end.
[[nodiscard]] int p2_stands_still(float before);

/// Reports a p2 that never reaches the end of the block. @return 1000
[[nodiscard]] int never_ends(const Input &in);

/// A value rounded to a semitone for the pitch input types, unless they were written with "x".
[[nodiscard]] float adjust(float value);

/// Opens a loop on "<", closes it on ">". @return 1, or 0 when the mark may not stand here
[[nodiscard]] int set_loop(char mark);

/// Prepares the state for a new section; for p2 the block's start becomes seconds.
void reset_pfield(Event *list);

/// Copies the first float of each of n records.
void fix_percents(float *const *records, float *out, int n);

/// Exchanges two floats.
void swapf(float &a, float &b);

} // namespace orlo

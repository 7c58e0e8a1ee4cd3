// What an i-block and the section that is being read are bounded by and have come to: start, length, events, the value that was
// read last, and the settings of a section. Reads no text.
#pragma once

#include "base/codes.h"

#include <cerrno>
#include <cstdint>

#undef ETIME // an error number of the C library that is not used here gives way to the length of a block

namespace orlo {

struct Event;

// of a block; written by the header of the block where nothing else is said
extern std::int32_t  I_NO;    // instrument number, 0 at start
extern float         STIME;   // start, beats in the header, seconds from p2 on; 0 at start; written by reset_pfield too
extern float         SBEAT;   // start in beats, 0 at start
extern float         BEATS;   // length in beats, 0 at start and when the length is given in events
extern float         ETIME;   // length in beats, or minus the number of events; 0 at start
extern float         MAX_DEV; // relative deviation of stored values, 0 at start; set by "rd", for the rest of the run
extern std::uint64_t EVENTS;  // events the block must have, 0 while it is bounded by beats; set to what p2 produced, grown by fuses
                              // and chords, shrunk by rests that are taken out

// of a section; set back by reset_pfield, but for the last value and the suffix of pitches
extern std::int32_t  P_NO;       // p-field being read, 0 at start; written by the block's parser
extern std::uint64_t EVENT_NO;   // events so far in the section, 0 at start; counted by everything that stores
extern float         CBEATS;     // position of the next p2 value in beats of the piece, 0 at start; written by store_start
extern float         LAST_VAL;   // last value read or generated, 0 at start; written by literal data and generators
extern std::int32_t  IN_TYPE;    // code of the input type, TYPE_RE at start; written by the section's parser, as the next
extern std::int32_t  OUT_TYPE;   // code of the output type, TYPE_RE at start
extern bool          IN_LOOP;    // a loop is open, false at start; written by set_loop
extern bool          NX;         // pitches are not rounded ("nox", "opx"), false at start; written by get_command
extern float         MAX_DEV2;   // a second deviation, added to MAX_DEV, 0 at start; set by "dv"
extern float         PFACTOR;    // factor of every stored value from p3 up, 1 at start; set by "pf"
extern std::int32_t  IS_FUSED;   // fuse marks since the last value, 0 at start; set back by the event that uses it
extern bool          WROTE_DATA; // the section has stored a value, false at start
extern Event        *LUT;        // last event that StorePfield gave a value with code 0; the tail when a section starts

/// Whether the block is full.
[[nodiscard]] bool out_of_time();

/// Whether p2 has not moved on since CBEATS was before, in a block given in beats: repeating would never end.
[[nodiscard]] bool p2_stands_still(float before);

/// Opens a loop on "<", closes it on ">". @return false when the mark may not stand here
[[nodiscard]] bool set_loop(char mark);

/// Prepares the state for a new section; for p2 the block's start becomes seconds.
void reset_pfield(Event *list);

/// Sets everything of a block and its section back to the start of a run.
void reset_block();

} // namespace orlo

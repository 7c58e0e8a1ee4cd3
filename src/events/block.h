// What an i-block and the section that is being read are bounded by and have come to: start, length, events, the value that was
// read last, and the settings of a section. Reads no text.
#pragma once

#include "base/codes.h"

#include <cerrno>
#include <cstdint>

#undef ETIME // an error number of the C library that is not used here gives way to the length of a block

namespace orlo {

struct Event;

// of a block; written by its header (lang/iblock) where nothing else is said
extern std::int32_t I_NO;    // instrument number, 0 at start
extern float        STIME;   // start, beats in the header, seconds from p2 on; 0 at start; made seconds by reset_pfield
extern float        SBEAT;   // start in beats, 0 at start
extern float        BEATS;   // length in beats, 0 at start and when the length is given in events
extern float        ETIME;   // length in beats, or minus the number of events; 0 at start
extern float        MAX_DEV; // relative deviation of stored values, 0 at start; set by "rd" alone, for the rest of the run

// events the block must have, 0 at start and while it is bounded by beats; set by the header and to what p2 produced (lang/iblock),
// grown by fuses and chords (lang/data_list, events/storing, events/filling, ddf/second_order), shrunk by RemoveRests
extern std::uint64_t EVENTS;

// of a section; those up to MAX_DEV2 are set back by reset_pfield
extern std::uint64_t EVENT_NO;  // events so far in the section, 0 at start; counted by whoever stores: lang/data_list, ddf/ddf,
                                // ddf/second_order, events/storing, events/filling; RemoveRests counts down
extern std::int32_t IN_TYPE;    // code of the input type, TYPE_RE at start; written by lang/pfield
extern std::int32_t OUT_TYPE;   // code of the output type, TYPE_RE at start; written by lang/pfield
extern bool         IN_LOOP;    // a loop is open, false at start; written by set_loop
extern std::int32_t IS_FUSED;   // fuse marks since the last value, 0 at start; counted by lang/data_list, set for a chord member by
                                // events/filling and ddf/second_order; 0 again by InsertBegTime and StorePfield, which use it
extern bool         WROTE_DATA; // the section has stored a value, false at start; set by InsertBegTime, StorePfield and store_p3
extern float        PFACTOR;    // factor of every stored value from p3 up, 1 at start; set by "pf"
extern float        MAX_DEV2;   // a second deviation, added to MAX_DEV, 0 at start; set by "dv"
extern std::int32_t P_NO;       // p-field being read, 0 at start; written by lang/iblock
extern float        CBEATS; // position of the next p2 value in beats of the piece, 0 at start; moved on by store_start, SBEAT at
                            // the start of p2 by reset_pfield
extern float  LAST_VAL;     // last value read or generated, 0 at start; written by lang/data_list, ddf/ddf and ddf/second_order
extern bool   NX;           // pitches are not rounded ("nox", "opx"), false at start; written by get_command
extern Event *LUT;          // last event that StorePfield gave a value with code 0, null at start; the tail when lang/pfield begins
                            // a section from p3 up

/// Whether the block is full.
[[nodiscard]] inline bool out_of_time() { return EVENTS == 0 ? CBEATS >= ETIME + SBEAT : EVENT_NO >= EVENTS; }

/// Whether p2 has not moved on since CBEATS was before, in a block given in beats: repeating would never end.
[[nodiscard]] inline bool p2_stands_still(float before) { return P_NO == 2 && EVENTS == 0 && !(CBEATS > before); }

/// Opens a loop on "<", closes it on ">". @return false when the mark may not stand here
[[nodiscard]] bool set_loop(char mark);

/// Prepares the state for a new section; for p2 the block's start becomes seconds.
void reset_pfield(Event *list);

/// Sets everything of a block and its section back to the start of a run.
void reset_block();

} // namespace orlo

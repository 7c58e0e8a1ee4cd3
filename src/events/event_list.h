// The events of one i-block, as a ring that is held by its last event. Reads no text, reports no errors.
#pragma once

#include <cstdint>
#include <cstdio>

namespace orlo {

struct Event {
    std::int32_t code;  // 0: first value at its start time, 1: chord member; in a converted MIDI list 1: note-on, 0: note-off
    float        start; // seconds
    float        dur;   // seconds; first the time to the next start, then the duration; 0 or less is a rest
    float        beat;  // start in beats
    float       *pf;    // p4 and up, p-field n at n - 4; room for as many floats as there are p-fields, 0 at start
    Event       *next;  // the last event points to the first
};

extern Event       *note_list;   // last event of the block, null when there are none; written by every section, freed by the driver
extern std::int32_t MAX_PFIELDS; // p-fields of every event, 3 to 128, 0 at start; written by the i-block header
extern std::int32_t IS_FUSED;    // fuse marks since the last value, 0 at start; reset by the event that uses it
extern Event       *LUT;         // last event that StorePfield gave a value with code 0; the tail when a section starts
extern std::int32_t WROTE_DATA;  // 1 when the section has stored a value, 0 at start
extern float        PFACTOR;     // factor of every stored value from p3 up, 1 at start; set by "pf"

/// What GetListStats finds in a finished list.
struct ListStats {
    double        duration; // seconds from the first start to the last end
    double        beats;    // beats from the first to the last start
    double        end;      // seconds, the last end
    std::uint64_t count;    // events
};

/// A new event for n p-fields, all zero; null when memory is exhausted.
[[nodiscard]] Event *GetListNode(std::int32_t n);

/// Gives an event's memory back.
void FreeEvent(Event *event);

/// Appends an event. The first event starts at start, every later one as long after its predecessor as that one's dur says
/// (after a chord: its longest dur); with the chord flag set the event joins its predecessor, and the flag is reset.
/// @return 1, or 0 when memory is exhausted
[[nodiscard]] int InsertBegTime(Event *&list, std::int32_t n, std::int32_t &fused, float dur, float start, float beat);

/// Stores value * PFACTOR as a p-field from p4 up in the event after the cursor, which becomes the cursor; with the chord flag set
/// in a copy of the cursor's event behind it, and the flag is reset. The list does not grow without the flag: the ring wraps.
/// @return 1, or 0 when memory is exhausted
[[nodiscard]] int StorePfield(Event *&cursor, Event *&list, std::int32_t pfield, std::int32_t n, std::int32_t &fused, Event *&lut,
                              float value);

/// A copy of an event with its first n - 3 values; null when memory is exhausted.
[[nodiscard]] Event *CopyEvent(const Event *source, std::int32_t n);

/// Repeats the last chord of a p-field in the event after the cursor; from the tail the list grows by an event in whole seconds.
/// @param members gets the number of chord members that were added
/// @return 1, or 0 when memory is exhausted
[[nodiscard]] int DoListChord(Event *&list, Event *&cursor, const Event *lut, std::int32_t pfield, std::int32_t n,
                              std::uint64_t &members);

/// Links an event after the cursor and makes it the cursor (and the tail, if the cursor was). @return the event
Event *InsertEvent(Event *event, Event *&cursor, Event *&list);

/// Counts the events after the cursor that start at most window beats after the first of them, until the ring closes.
/// @param first,last beats of the first and of the last counted event, untouched for an empty list
[[nodiscard]] std::uint64_t ListSize(float &first, float &last, const Event *cursor, const Event *list, float window);

/// Statistics of a finished list; for an empty list the count alone is set.
void GetListStats(const Event *list, ListStats &stats);

/// Sets the code of every event to 0.
void ClearLFusedCode(Event *list);

/// Takes the rests (dur of 0 or less) out of a list that is not empty, counting EVENTS and EVENT_NO down by one for each.
/// @return 1 with at least one event left, or 0 with an empty list, both counters 0
[[nodiscard]] int RemoveRests(Event *&list);

/// Frees every event; the list is empty then.
void FreeListNodes(Event *&list);

/// Debugging aid: prints a list, its values on the standard output.
void TraverseList(const Event *list, std::FILE *stream, std::int32_t n);

} // namespace orlo

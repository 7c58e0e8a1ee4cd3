// The events of one i-block, as a ring that is held by its last event. Reads no text, reports no errors. An event's values lie
// after it, in memory that is given back as a whole when the block is done.
#pragma once

#include <cstdint>
#include <cstdio>

namespace orlo {

struct Event {
    std::int32_t code;  // 0: first value at its start time, 1: chord member; in a converted MIDI list 1: note-on, 0: note-off
    float        start; // seconds
    float        dur;   // seconds; first the time to the next start, then the duration; 0 or less is a rest
    float        beat;  // start in beats
    float       *pf;    // p4 and up, p-field n at n - 4, 0 at start; room for p4 and p5 at least
    Event       *next;  // the last event points to the first
};

struct Section;

extern Event *note_list; // last event of the block, null when there are none; written by lang/iblock and the conversion to MIDI,
                         // freed by driver/run

/// What GetListStats finds in a finished list.
struct ListStats {
    double        duration; // seconds from the first start to the last end
    double        beats;    // beats from the first to the last start
    double        end;      // seconds, the last end
    std::uint64_t count;    // events
};

/// A new event for n p-fields, all zero; null when memory is exhausted.
[[nodiscard]] Event *GetListNode(std::int32_t n);

/// An event that is in no list any more. Its memory goes back with that of the block.
inline void FreeEvent(Event *) {}

/// Appends an event of p2, with MAX_PFIELDS p-fields. The first one starts at STIME, every later one as long after its predecessor
/// as that one's dur says (after a chord: its longest dur); its beat is CBEATS. With IS_FUSED the event joins its predecessor as a
/// chord member, and the mark is taken off.
/// @return false when memory is exhausted
[[nodiscard]] bool InsertBegTime(Section &section, float dur);

/// Stores value * PFACTOR as P_NO, p4 or up, in the event after the cursor, which becomes the cursor; with IS_FUSED in a copy of
/// the cursor's event after it, and the mark is taken off. The list does not grow without the mark: the ring wraps.
/// @return false when memory is exhausted
[[nodiscard]] bool StorePfield(Section &section, float value);

/// A copy of an event with its first n - 3 values; null when memory is exhausted.
[[nodiscard]] Event *CopyEvent(const Event *source, std::int32_t n);

/// Repeats the last chord of P_NO, from LUT on, in the event after the cursor; from the tail the list grows by an event in whole
/// seconds.
/// @param members gets the number of chord members that were added
/// @return false when memory is exhausted
[[nodiscard]] bool DoListChord(Section &section, std::uint64_t &members);

/// Links an event after the cursor and makes it the cursor (and the tail, if the cursor was). @return the event
Event *InsertEvent(Event *event, Section &section);

/// Counts the events after the cursor that start at most window beats after the first of them, until the ring closes.
/// @param first,last beats of the first and of the last counted event, untouched for an empty list
[[nodiscard]] std::uint64_t ListSize(float &first, float &last, const Section &section, float window);

/// Statistics of a finished list; for an empty list the count alone is set.
void GetListStats(const Event *list, ListStats &stats);

/// Sets the code of every event to 0.
void ClearLFusedCode(Event *list);

/// Takes the rests (dur of 0 or less) out of a list that is not empty, counting EVENTS and EVENT_NO down by one for each.
/// @return false when nothing is left: both counters are 0, and every event is freed
[[nodiscard]] bool RemoveRests(Event *&list);

/// Frees every event there is, whatever the list holds; the list is empty then.
void FreeListNodes(Event *&list);

/// Frees the block's events and sets what is private to this room back to the start of a run.
void reset_events();

/// Debugging aid that only tests call: prints a list, its values on the standard output.
void TraverseList(const Event *list, std::FILE *stream, std::int32_t n);

} // namespace orlo

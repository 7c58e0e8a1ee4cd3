// Note-offs wait in a heap, ordered by their time and then by the order of their notes. At each note those that end before it are
// linked in front of it. This gives the order that a walk from each note forward to the first later event would give, also
// for notes that are not in time order: what stops the walk is always the first note that starts after the end, or a note-off
// that has been stopped by it.

#include "output/midi_conversion.h"

#include "base/numerics.h"
#include "diag/report.h"
#include "events/block.h"
#include "output/midi_numbers.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace orlo {

namespace {

constexpr double VELOCITY_FACTOR  = 0.003875850703452; // 127 / 32767
constexpr float  RELEASE_VELOCITY = 15480.47265625F;   // a placeholder that is scaled to about 60 and never written
constexpr float  KEYS             = 128.0F;

constexpr std::int32_t NOTE_ON  = 1;
constexpr std::int32_t NOTE_OFF = 0;

struct Pending {
    Event        *event;
    std::uint64_t number; // of the note, in list order
};

struct PendingHeap {
    Pending      *items;
    std::uint64_t count;
};

struct Track {
    Event        *tail;
    float         previous; // seconds, start of the tail, 0 before the first event
    std::uint64_t length;   // bytes
};

// a heap's top is its greatest item: the note-off that comes first
bool comes_later(const Pending &a, const Pending &b)
{
    return a.event->start != b.event->start ? a.event->start > b.event->start : a.number > b.number;
}

std::uint64_t count_notes(const Event *list)
{
    ListStats stats{};
    GetListStats(list, stats);
    return stats.count;
}

void trace(const Event *event)
{
    Mprintf("\n%f\t%f\t%s\tN: %f\tV: %f\t", event->start, event->dur, event->code == NOTE_ON ? "ON" : "OFF", event->pf[1],
            event->pf[0]);
}

// scales an event's values, counts its bytes and links it after the track's tail
void append(Track &track, Event *event)
{
    event->pf[0] = static_cast<float>(static_cast<double>(event->pf[0]) * VELOCITY_FACTOR);
    event->pf[1] = mod(event->pf[1], KEYS);
    track.length += VLSize(ticks(event->start - track.previous)) + 3;
    trace(event);
    track.previous = event->start;
    if (track.tail == nullptr) {
        event->next = event;
    } else {
        event->next      = track.tail->next;
        track.tail->next = event;
    }
    track.tail = event;
}

Event *make_note_off(const Event *note, std::int32_t n)
{
    Event *off = CopyEvent(note, n);
    if (off == nullptr)
        return nullptr;
    off->start = note->start + note->dur;
    off->code  = NOTE_OFF;
    off->pf[0] = RELEASE_VELOCITY;
    return off;
}

Event *pop(PendingHeap &heap)
{
    std::pop_heap(heap.items, heap.items + heap.count, comes_later);
    return heap.items[--heap.count].event;
}

void push(PendingHeap &heap, Event *off, std::uint64_t number)
{
    heap.items[heap.count++] = {off, number};
    std::push_heap(heap.items, heap.items + heap.count, comes_later);
}

// converts a list that has been cut open in front of its head
int convert(Event *note, std::int32_t n, PendingHeap &heap, Track &track)
{
    for (std::uint64_t number = 0; note != nullptr; ++number) {
        while (heap.count > 0 && !(note->start <= heap.items[0].event->start)) // takes each note-off once
            append(track, pop(heap));
        Event *next = note->next;
        note->code  = NOTE_ON;
        append(track, note);
        Event *off = make_note_off(note, n);
        if (off == nullptr)
            return -1;
        if (std::isnan(off->start)) // comes after nothing
            append(track, off);
        else
            push(heap, off, number);
        note = next;
    }
    while (heap.count > 0)
        append(track, pop(heap));
    return 1;
}

} // namespace

int List2MIDI(Event *&list, std::int32_t n, std::uint64_t &length)
{
    length = 0;
    if (list == nullptr)
        return 0;
    if (!RemoveRests(list)) {
        tell(Severity::warning, "\n\n", "Oops i-block %d is all rests!", " ", I_NO);
        return 0;
    }
    PendingHeap heap{static_cast<Pending *>(std::malloc(static_cast<std::size_t>(count_notes(list)) * sizeof(Pending))), 0};
    if (heap.items == nullptr)
        return -1;
    Track  track{nullptr, 0.0F, 0};
    Event *head = list->next;
    list->next  = nullptr;
    list        = nullptr;

    const int result = convert(head, n, heap, track);
    std::free(heap.items);
    list   = track.tail;
    length = track.length;
    return result;
}

} // namespace orlo

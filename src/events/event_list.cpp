// A ring held by its tail reaches both ends in one step: appending needs the tail, every section starts at the head. The cursor of
// a section is the event before the one to be filled, so that "before the head" is simply the tail.

#include "events/event_list.h"

#include "base/number_text.h"
#include "base/numerics.h"
#include "base/observer.h"
#include "events/arena.h"
#include "events/block.h"
#include "events/pfields.h"
#include "events/section.h"

#include <algorithm>
#include <cmath>

namespace orlo {

Event *note_list;

namespace {

constexpr std::int32_t LEAST_VALUES = 2; // room that every event has: a MIDI note has a velocity and a key, whatever the block has

float last_dur;    // seconds by which the next new event starts later, 0 at start; written by InsertBegTime
bool  has_members; // an event may have a code other than 0; set where such codes come from, cleared by ClearLFusedCode

// links an event after another one
void link_after(Event *event, Event *before)
{
    event->next  = before->next;
    before->next = event;
}

// the values of an event for n p-fields, 3 or more
void copy_values(Event *event, const Event *source, std::int32_t n) { std::copy_n(source->pf, n - 3, event->pf); }

// magnitude of a time in whole seconds
std::uint64_t whole_seconds(float time)
{
    const std::int64_t whole = to_int64(static_cast<double>(time));
    return whole < 0 ? 0 - static_cast<std::uint64_t>(whole) : static_cast<std::uint64_t>(whole);
}

// the event that DoListChord appends when the cursor is at the tail
Event *grow_by_whole_seconds(const Event *list)
{
    Event *event = GetListNode(MAX_PFIELDS);
    if (event == nullptr)
        return nullptr;
    const std::uint64_t dur = whole_seconds(LUT->dur);
    copy_values(event, list, MAX_PFIELDS);
    event->code         = LUT->code;
    event->dur          = static_cast<float>(dur);
    event->start        = static_cast<float>(dur + whole_seconds(list->start));
    event->beat         = LUT->beat;
    event->pf[P_NO - 4] = LUT->pf[P_NO - 4];
    return event;
}

} // namespace

Event *GetListNode(std::int32_t n)
{
    const auto values = static_cast<std::size_t>(std::max(n - 3, LEAST_VALUES));
    auto      *event  = static_cast<Event *>(take_piece(sizeof(Event) + values * sizeof(float)));
    if (event == nullptr)
        return nullptr;
    *event = {0, 0.0F, 0.0F, 0.0F, reinterpret_cast<float *>(event + 1), nullptr};
    std::fill_n(event->pf, values, 0.0F);
    return event;
}

bool InsertBegTime(Section &section, float dur)
{
    Event *event = GetListNode(MAX_PFIELDS);
    if (event == nullptr)
        return false;
    Event      *last      = section.list;
    const float magnitude = std::fabs(dur);

    event->dur = dur;
    if (last == nullptr) {
        event->start = STIME;
        event->beat  = CBEATS;
        event->next  = event;
        last_dur     = magnitude;
    } else if (IS_FUSED != 0) {
        event->code  = 1;
        has_members  = true;
        event->start = last->start;
        event->beat  = last->beat;
        link_after(event, last);
        if (magnitude > last_dur)
            last_dur = magnitude;
        IS_FUSED = 0;
    } else {
        event->start = last->start + last_dur;
        event->beat  = CBEATS;
        link_after(event, last);
        last_dur = magnitude;
    }
    section.list = event;
    WROTE_DATA   = true;
    return true;
}

bool StorePfield(Section &section, float value)
{
    if (IS_FUSED != 0) {
        Event *copy = CopyEvent(section.cursor, MAX_PFIELDS);
        if (copy == nullptr)
            return false;
        copy->code  = 1;
        has_members = true;
        InsertEvent(copy, section);
        IS_FUSED = 0;
    } else {
        section.cursor       = section.cursor->next;
        section.cursor->code = 0;
        LUT                  = section.cursor;
    }
    section.cursor->pf[P_NO - 4] = value * PFACTOR;
    WROTE_DATA                   = true;
    return true;
}

Event *CopyEvent(const Event *source, std::int32_t n)
{
    Event *copy = GetListNode(n);
    if (copy == nullptr)
        return nullptr;
    copy->code  = source->code;
    copy->start = source->start;
    copy->dur   = source->dur;
    copy->beat  = source->beat;
    copy_values(copy, source, n);
    return copy;
}

bool DoListChord(Section &section, std::uint64_t &members)
{
    const std::int32_t value = P_NO - 4;

    members          = 0;
    const bool grows = section.cursor == section.list;
    if (observer != nullptr)
        observer->chord_repeated(Goes::next, grows, LUT->pf[value]);
    if (!grows) {
        section.cursor            = section.cursor->next;
        section.cursor->code      = LUT->code;
        section.cursor->pf[value] = LUT->pf[value];
    } else {
        Event *event = grow_by_whole_seconds(section.list);
        if (event == nullptr)
            return false;
        InsertEvent(event, section);
    }
    for (const Event *member = LUT->next; member->code != 0; member = member->next) { // ends at LUT itself, if not before
        Event *copy = CopyEvent(section.cursor, MAX_PFIELDS);
        if (copy == nullptr)
            return false;
        copy->code      = member->code;
        copy->pf[value] = member->pf[value];
        InsertEvent(copy, section);
        if (observer != nullptr)
            observer->chord_repeated(Goes::beside, false, member->pf[value]);
        ++members;
    }
    return true;
}

Event *InsertEvent(Event *event, Section &section)
{
    link_after(event, section.cursor);
    if (section.cursor == section.list)
        section.list = event;
    section.cursor = event;
    return event;
}

std::uint64_t ListSize(float &first, float &last, const Section &section, float window)
{
    if (section.list == nullptr)
        return 0;
    const Event *event = section.cursor->next;
    const Event *head  = section.list->next;
    first              = event->beat;
    last               = first;

    const float   limit = first + window;
    std::uint64_t count = 0;
    do {
        if (event->beat > limit)
            break;
        ++count;
        last  = event->beat;
        event = event->next;
    } while (event != head);
    return count;
}

void GetListStats(const Event *list, ListStats &stats)
{
    stats.count = 0;
    if (list == nullptr)
        return;
    const Event *head  = list->next;
    const Event *event = head;
    double       end   = static_cast<double>(head->start) + static_cast<double>(head->dur);
    do {
        end = std::max(end, static_cast<double>(event->start) + static_cast<double>(event->dur));
        ++stats.count;
        event = event->next;
    } while (event != head);
    stats.end      = end;
    stats.duration = end - static_cast<double>(head->start);
    stats.beats    = static_cast<double>(list->beat - head->beat);
}

void ClearLFusedCode(Event *list)
{
    if (list == nullptr || !has_members)
        return;
    Event *event = list;
    do {
        event->code = 0;
        event       = event->next;
    } while (event != list);
    has_members = false;
}

bool RemoveRests(Event *&list)
{
    Event *event = list->next;
    Event *first = nullptr; // first and last event that stay
    Event *last  = nullptr;
    list->next   = nullptr;
    while (event != nullptr) {
        Event *next = event->next;
        if (event->dur <= 0.0F) {
            FreeEvent(event);
            --EVENTS;
            --EVENT_NO;
        } else {
            if (last == nullptr)
                first = event;
            else if (last->next != event) // memory that is not written need not travel back
                last->next = event;
            last = event;
        }
        event = next;
    }
    list = last;
    if (last == nullptr) {
        give_back_pieces();
        EVENTS   = 0;
        EVENT_NO = 0;
        return false;
    }
    last->next = first;
    return true;
}

void FreeListNodes(Event *&list)
{
    give_back_pieces();
    list = nullptr;
}

void reset_events()
{
    FreeListNodes(note_list);
    last_dur    = 0.0F;
    has_members = false;
}

void TraverseList(const Event *list, std::FILE *stream, std::int32_t n)
{
    if (list == nullptr)
        return;
    const Event *event = list->next;
    do {
        std::fputs("\nST ", stream);
        print_real(stream, event->start, 7, 3);
        std::fputs("\tD ", stream);
        print_real(stream, event->dur, 7, 3);
        std::fputs("\tBT", stream);
        print_real(stream, event->beat, 7, 3);
        std::fprintf(stream, "\tCODE %d\t", event->code);
        for (std::int32_t i = 0; i < n - 3; ++i) {
            print_real(stdout, event->pf[i], 9, 4);
            std::putchar('\t');
        }
        event = event->next;
    } while (event != list->next);
}

} // namespace orlo

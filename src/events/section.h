// What the readers of one p-field section share: literal data, commands and generators all write through it.
#pragma once

#include "events/event_list.h"
#include "events/value_queue.h"

namespace orlo {

/// How the values of a section are stored: by its p-field, or so that an observer is told.
enum class Way { starts, durations, values, observed };

/// The way of a p-field, observed when somebody looks.
[[nodiscard]] Way way_of(std::int32_t pfield);

struct Section {
    Event    *&list;        // the block's events
    Event     *cursor;      // the event that got the last value, the tail at the start; the next one is filled next
    QueueNode *queue;       // values of the loop, null at the start; freed at the section's end
    bool       first_value; // no literal value has been read yet; true at the start
    bool       done;        // the block is full: what follows in the section is passed over; false at the start
    Way        way;         // how values are stored
};

} // namespace orlo

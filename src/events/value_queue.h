// The values that a loop has produced for the current p-field, as a ring that is held by its last node. Lives for one section.
#pragma once

#include <cstdint>

namespace orlo {

struct QueueNode {
    QueueNode   *prev;  // the first node's prev is the last
    float        value; // as it was before deviation and rounding
    std::int32_t code;  // 0: starts an event, 1: chord member
    QueueNode   *next;  // the last node's next is the first
};

/// Appends a value. @return false when memory is exhausted or a chord member would start the queue
[[nodiscard]] bool StoreInQ(QueueNode *&queue, std::int32_t code, float value);

/// Appends a copy of the last event: its base value and its chord members.
/// @return false when memory is exhausted or the queue is empty
[[nodiscard]] bool DoQEvent(QueueNode *&queue);

/// Frees every node; the queue is empty then.
void FreeQNodes(QueueNode *&queue);

/// Debugging aid that only tests call: prints a queue on the standard output, backward with a direction other than 0.
void TraverseQ(const QueueNode *queue, int direction);

} // namespace orlo

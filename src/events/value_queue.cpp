// The last node is the handle, since everything happens at the end: appending, and repeating the last event, whose base value is
// found by walking backward over the chord members.

#include "events/value_queue.h"

#include "base/number_text.h"

#include <cstdio>
#include <cstdlib>

namespace orlo {

bool StoreInQ(QueueNode *&queue, std::int32_t code, float value)
{
    if (code == 1 && queue == nullptr)
        return false;
    auto *node = static_cast<QueueNode *>(std::malloc(sizeof(QueueNode)));
    if (node == nullptr)
        return false;
    node->value = value;
    node->code  = code;
    if (queue == nullptr) {
        node->prev = node;
        node->next = node;
    } else {
        node->prev        = queue;
        node->next        = queue->next;
        queue->next->prev = node;
        queue->next       = node;
    }
    queue = node;
    return true;
}

bool DoQEvent(QueueNode *&queue)
{
    if (queue == nullptr)
        return false;
    const QueueNode *last = queue;
    const QueueNode *node = last;
    while (node->code != 0) // ends at the first node, which is no chord member
        node = node->prev;
    if (!StoreInQ(queue, 0, node->value))
        return false;
    while (node != last) {
        node = node->next;
        if (!StoreInQ(queue, node->code, node->value))
            return false;
    }
    return true;
}

void FreeQNodes(QueueNode *&queue)
{
    if (queue == nullptr)
        return;
    QueueNode *node = queue->next;
    queue->next     = nullptr;
    while (node != nullptr) {
        QueueNode *next = node->next;
        std::free(node);
        node = next;
    }
    queue = nullptr;
}

void TraverseQ(const QueueNode *queue, int direction)
{
    if (queue == nullptr) {
        std::printf("empty");
        return;
    }
    const QueueNode *start = direction != 0 ? queue : queue->next;
    const QueueNode *node  = start;
    do {
        std::putchar('\n');
        print_real(stdout, node->value, 0, 6);
        std::printf(" %d", node->code);
        node = direction != 0 ? node->prev : node->next;
    } while (node != start);
}

} // namespace orlo

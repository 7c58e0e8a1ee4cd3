// Filling ends because every step counts EVENT_NO up, or is found to have moved p2 nowhere.

#include "events/filling.h"

#include "diag/messages.h"
#include "diag/report.h"
#include "events/block.h"
#include "events/storing.h"

namespace orlo {
namespace {

int fill_with_last(Section &section, const Input &in)
{
    do { // ends when the block is full, or p2 stands still
        const float before = CBEATS;
        if (const int error = store_last(section, in, ZeroBy::seconds))
            return error;
        ++EVENT_NO;
        if (p2_stands_still(before))
            return never_ends(in);
    } while (!out_of_time());
    return OK;
}

// a chord is completed past the block's end
int fill_with_queue(Section &section, const Input &in)
{
    const QueueNode *head         = section.queue->next;
    const QueueNode *node         = head;
    float            cycle_before = CBEATS;
    do { // the same, but p2 is looked at after each cycle
        IS_FUSED = node->code == 1 ? 1 : 0;
        if (IS_FUSED != 0)
            ++EVENTS;
        if (const int error = store_one(section, in, node->value, ZeroBy::seconds))
            return error;
        ++EVENT_NO;
        node = node->next;
        if (node == head) {
            if (p2_stands_still(cycle_before))
                return never_ends(in);
            cycle_before = CBEATS;
        }
    } while (!out_of_time() || node->code == 1);
    return OK;
}

} // namespace

int fill_to_end(Section &section, const Input &in)
{
    const QueueNode *queue = section.queue;
    if (queue != nullptr && queue->next->code == 1)
        ++EVENTS;
    if (out_of_time())
        return OK;
    if (observer != nullptr)
        observer->fill(queue != nullptr);
    return queue == nullptr ? fill_with_last(section, in) : fill_with_queue(section, in);
}

int never_ends(const Input &in)
{
    complain_here(in, "P2 never reaches the end of the i-block!");
    return TEXT_REPORTED;
}

} // namespace orlo

#include "gather/ring.h"

namespace orlo::gather {

void Ring::clear()
{
    next.clear();
    values.assign(4, {});
    order.clear();
    field = 2;
}

void Ring::add_start(std::uint32_t value)
{
    const auto event = static_cast<std::uint32_t>(next.size());
    if (event == 0) {
        next.push_back(0);
    } else {
        next.push_back(next[tail]);
        next[tail] = event;
    }
    tail = event;
    values[2].push_back(value);
}

void Ring::begin_section(std::size_t pfield)
{
    field = pfield;
    if (values.size() <= pfield)
        values.resize(pfield + 1);
    values[pfield].assign(next.size(), 0);
    cursor = tail;
}

void Ring::store_next(std::uint32_t value)
{
    cursor                = next[cursor];
    values[field][cursor] = value;
}

// the event is a copy of the cursor's
void Ring::store_beside(std::uint32_t value)
{
    const auto event = static_cast<std::uint32_t>(next.size());
    next.push_back(next[cursor]);
    next[cursor] = event;
    for (std::vector<std::uint32_t> &column : values)
        if (!column.empty())
            column.push_back(column[cursor]);
    values[field][event] = value;
    if (cursor == tail)
        tail = event;
    cursor = event;
}

void Ring::grow(std::uint32_t value)
{
    store_beside(value);
    if (values[3].size() > cursor)
        values[3][cursor] = values[3][chord];
}

void Ring::put_in_order()
{
    order.clear();
    order.reserve(next.size());
    if (next.empty())
        return;
    std::uint32_t event = next[tail];
    do { // ends at the head again
        order.push_back(event);
        event = next[event];
    } while (event != next[tail]);
}

std::uint32_t Ring::origin(std::size_t index, std::size_t pfield) const { return values[pfield][order[index]]; }

} // namespace orlo::gather

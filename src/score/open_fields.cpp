// Events are put in the order of their groups and, within a group, of time: an event's neighbours stand beside it then. Ramps go
// first, since they need numbers alone; references may take what a ramp has given.

#include "score/open_fields.h"

#include "score/build_score.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_set>

namespace orlo::score {
namespace {

constexpr double MISSING = std::numeric_limits<double>::quiet_NaN();

// events that have open p-fields, with the others of their groups, by group and time
std::vector<std::size_t> in_time_order(const std::vector<Event> &events, const Instruments &instruments, std::size_t first,
                                       const std::vector<Open> &all)
{
    const auto                      group = [&](std::size_t i) { return group_of(instruments, events[i]); };
    std::unordered_set<std::size_t> wanted; // as large as the section: there may be more groups, and many sections
    for (const Open &open : all)
        wanted.insert(group(open.event));
    std::vector<std::size_t> order;
    for (std::size_t i = first; i < events.size(); ++i)
        if (wanted.contains(group(i)))
            order.push_back(i);
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return group(a) != group(b) ? group(a) < group(b) : events[a].start < events[b].start;
    });
    return order;
}

// Open p-fields and the events around them.
struct Neighbours {
    Score                    &score;
    const Instruments        &instruments;
    std::size_t               first;    // event of the section
    std::vector<std::size_t>  order;    // events, by group and time
    std::vector<std::size_t>  place_of; // of an event of the section in that order
    std::vector<const Open *> open;     // by p-field, then by place
};

std::size_t place(const Neighbours &n, std::size_t event) { return n.place_of[event - n.first]; }

// the event so many places further, or null when it is of another group
const Event *neighbour(const Neighbours &n, std::size_t from, bool next)
{
    if (next ? from + 1 == n.order.size() : from == 0)
        return nullptr;
    const Event &event = n.score.events[n.order[from]];
    const Event &other = n.score.events[n.order[next ? from + 1 : from - 1]];
    return group_of(n.instruments, event) == group_of(n.instruments, other) ? &other : nullptr;
}

double &value_of(const Neighbours &n, const Open &open)
{
    return n.score.values[n.score.events[open.event].first + static_cast<std::size_t>(open.field) - 1];
}

// ramps first ... last of one p-field in neighbouring events
void fill_ramps(Neighbours &n, std::size_t first, std::size_t last)
{
    const Score &score  = n.score;
    const int    field  = n.open[first]->field;
    const Event *before = neighbour(n, place(n, n.open[first]->event), false);
    const Event *after  = neighbour(n, place(n, n.open[last]->event), true);
    const double from   = before != nullptr ? field_value(score, *before, field) : MISSING;
    const double to     = after != nullptr ? field_value(score, *after, field) : MISSING;
    if (std::isnan(from) || std::isnan(to)) {
        add_trouble(n.score, score.events[n.open[first]->event].line,
                    field_name(field) + " is a ramp without a number before it and behind it");
        return;
    }
    for (std::size_t i = first; i <= last; ++i) {
        const double span       = after->start - before->start;
        const double way        = score.events[n.open[i]->event].start - before->start;
        value_of(n, *n.open[i]) = span > 0 ? std::lerp(from, to, way / span) : from; // lerp: the difference may be no number
    }
}

void fill_all_ramps(Neighbours &n)
{
    const auto is_ramp = [&](std::size_t i) { return i < n.open.size() && n.open[i]->mark == Mark::ramp; };
    for (std::size_t i = 0; i < n.open.size(); ++i) {
        if (!is_ramp(i))
            continue;
        const std::size_t first = i;
        while (is_ramp(i + 1) && n.open[i + 1]->field == n.open[first]->field &&
               neighbour(n, place(n, n.open[i]->event), true) == &n.score.events[n.open[i + 1]->event])
            ++i;
        fill_ramps(n, first, i);
    }
}

void fill_reference(Neighbours &n, const Open &open)
{
    const Score &score = n.score;
    const Event *other = neighbour(n, place(n, open.event), open.mark == Mark::next);
    const double value = other != nullptr ? field_value(score, *other, open.source) : MISSING;
    if (std::isnan(value))
        add_trouble(n.score, score.events[open.event].line,
                    field_name(open.field) + " refers to a p-field that is no number or not there");
    value_of(n, open) = value;
}

// those that refer to the previous event in time order, those that refer to the next one backwards: they may refer to each other
void fill_references(Neighbours &n)
{
    std::stable_sort(n.open.begin(), n.open.end(),
                     [&](const Open *a, const Open *b) { return place(n, a->event) < place(n, b->event); });
    for (const Open *open : n.open)
        if (open->mark == Mark::previous)
            fill_reference(n, *open);
    for (auto open = n.open.rbegin(); open != n.open.rend(); ++open)
        if ((*open)->mark == Mark::next)
            fill_reference(n, **open);
}

} // namespace

void fill_open_fields(Score &score, const Instruments &instruments, std::size_t first, const std::vector<Open> &open)
{
    if (open.empty())
        return;
    Neighbours n{score, instruments, first, in_time_order(score.events, instruments, first, open), {}, {}};
    n.place_of.resize(score.events.size() - first);
    for (std::size_t i = 0; i < n.order.size(); ++i)
        n.place_of[n.order[i] - first] = i;
    for (const Open &each : open)
        n.open.push_back(&each);
    std::stable_sort(n.open.begin(), n.open.end(), [&](const Open *a, const Open *b) {
        return a->field != b->field ? a->field < b->field : place(n, a->event) < place(n, b->event);
    });
    fill_all_ramps(n);
    fill_references(n);
}

} // namespace orlo::score

// S2 has a frame of its own, because one choice fills several events: the group's further values are chord members, which the
// block gains.

#include "ddf/second_order.h"

#include "ddf/ddf.h"
#include "ddf/distributions.h"
#include "ddf/generator.h"
#include "diag/messages.h"
#include "events/timing.h"
#include "lang/values.h"
#include "output/numerics.h"

#include <algorithm>
#include <new>
#include <utility>

namespace orlo {
namespace {

constexpr std::size_t MAX_GROUPS = 128; // of one set
constexpr std::size_t MAX_VALUES = 128; // of one group

struct GroupSet {
    std::vector<float>       values; // of all groups, one after another
    std::vector<std::size_t> ends;   // of each group, behind its last value
    ChoiceState              choice;
};

bool ends_group(char c) { return is_blank(c) || c == ']' || c == ')' || c == ',' || c == '/'; }

// group -> value { [ "'" | ":" ] value } [ "'" | ":" ]
int get_S2_element(GroupSet &set, Input &in)
{
    const std::size_t start = set.values.size();
    do { // at most MAX_VALUES values
        if (set.values.size() - start == MAX_VALUES)
            return OUT_OF_BOUNDS;
        float value = 0.0F;
        if (get_input_type(value, in) == 0)
            return VALUES_OR_BRACKETS;
        set.values.push_back(value);
        if (peek(in) == '\'' || peek(in) == ':')
            ++in.pos;
    } while (!ends_group(peek(in)));
    set.ends.push_back(set.values.size());
    return OK;
}

// groups -> group | "[" group { group } "]"
int get_groups(GroupSet &set, Input &in)
{
    if (peek(in) != '[')
        return get_S2_element(set, in);
    ++in.pos;
    if (const int result = skip_items(in); result != OK)
        return result;
    if (peek(in) == ']')
        return NOTHING_ENTERED;
    do { // at most MAX_GROUPS groups
        if (set.ends.size() == MAX_GROUPS)
            return OUT_OF_BOUNDS;
        const int result = get_S2_element(set, in);
        if (result != OK)
            return result == VALUES_OR_BRACKETS ? static_cast<int>(VALUE_MISSING) : result;
        if (const int skipped = skip_items(in); skipped != OK)
            return skipped;
    } while (peek(in) != ']');
    ++in.pos;
    return OK;
}

// set -> weight [ "*" | "x" ] groups
int get_group_set(GroupSet &set, Frame &frame, Input &in)
{
    if (const int result = get_weight(frame, in, MISSING_WEIGHT); result != OK)
        return result;
    Choice mode{};
    if (const int result = get_choice(mode, in); result != OK)
        return result;
    if (const int result = get_groups(set, in); result != OK)
        return result;
    set.choice = init_did(mode, set.ends.size());
    return skip_items(in);
}

// s2 -> name "(" span set { set } ")"
int get_S2_data(std::vector<GroupSet> &sets, Frame &frame, Input &in)
{
    if (const int result = get_dynfunc_dur(frame.span, in); result != OK)
        return result;
    do { // at most MAX_SETS sets
        if (sets.size() == MAX_SETS)
            return OUT_OF_BOUNDS;
        GroupSet set{};
        if (const int result = get_group_set(set, frame, in); result != OK)
            return result;
        sets.push_back(std::move(set));
    } while (peek(in) != ')');
    ++in.pos;
    return hundred_percent(frame.weights.data(), static_cast<int>(frame.weights.size())) != 0 ? OK : BAD_WEIGHTS;
}

// stores a group's values: the first in the event itself, the others as chord members
int store_group(const GroupSet &set, std::size_t group, Section &section)
{
    const std::size_t start = group == 0 ? 0 : set.ends[group - 1];
    for (std::size_t i = start; i < set.ends[group]; ++i) {
        const float value = set.values[i];
        IS_FUSED          = i == start ? 0 : 1;
        if (IS_FUSED != 0) {
            ++EVENTS;
            ++EVENT_NO;
        }
        if (store_value(section.list, section.cursor, value) == 0)
            return OUT_OF_MEMORY;
        if (IN_LOOP != 0 && StoreInQ(section.queue, IS_FUSED, value) == 0)
            return OUT_OF_MEMORY;
        LAST_VAL = value;
    }
    if (IN_TYPE == TYPE_IN)
        LAST_VAL = RoundF(LAST_VAL);
    return OK;
}

int generate(Section &section, Input &in)
{
    std::vector<GroupSet> sets;
    Frame                 frame{};
    if (const int result = get_S2_data(sets, frame, in); result != OK)
        return result;
    float               first = 0.0F;
    float               last  = 0.0F;
    const std::uint64_t count = covered_events(frame.span, section, in, first, last);
    for (std::uint64_t step = 0; step < count; ++step) { // ends with the count or the block
        if (EVENT_NO >= EVENTS) {
            truncate(section, in);
            break;
        }
        const int         n      = static_cast<int>(sets.size());
        const int         chosen = std::min(prob_result(frame.weights.data(), n), n - 1);
        GroupSet         &set    = sets[static_cast<std::size_t>(chosen)];
        const std::size_t group  = get_set_element(set.choice, set.ends.size()) - 1;
        if (const int result = store_group(set, group, section); result != OK)
            return result;
        ++EVENT_NO;
    }
    return OK;
}

} // namespace

int do_S2(Section &section, Input &in)
{
    if (P_NO < 4)
        return S2_ONLY_FROM_P4;
    try {
        return generate(section, in);
    } catch (const std::bad_alloc &) {
        return OUT_OF_MEMORY;
    }
}

} // namespace orlo

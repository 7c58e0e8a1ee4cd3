// The values of a set's groups lie one after another in one array, so that a set costs two allocations however many groups it has.

#include "ddf/second_order.h"

#include "base/numerics.h"
#include "diag/messages.h"
#include "events/block.h"
#include "events/storing.h"
#include "words/values.h"

#include <utility>

namespace orlo {
namespace {

bool ends_group(char c) { return is_blank(c) || c == ']' || c == ')' || c == ',' || c == '/'; }

// group -> value { [ "'" | ":" ] value } [ "'" | ":" ]
int get_S2_element(GroupSet &set, Input &in)
{
    const std::size_t start = set.values.size();
    do { // at most MAX_GROUP_VALUES values
        if (set.values.size() - start == MAX_GROUP_VALUES)
            return OUT_OF_BOUNDS;
        const std::uint32_t begin = in.pos;
        float               value = 0.0F;
        if (!get_input_type(value, in))
            return VALUES_OR_BRACKETS;
        tell_number(in, Part::value, static_cast<double>(value), begin);
        set.values.push_back(value);
        if (peek(in) == '\'' || peek(in) == ':')
            ++in.pos;
    } while (!ends_group(peek(in)));
    tell_number(in, Part::list_end, static_cast<double>(set.values.size() - start), in.pos);
    set.ends.push_back(set.values.size());
    return OK;
}

// groups -> group | "[" group { group } "]"
int get_groups(GroupSet &set, Input &in)
{
    if (peek(in) != '[')
        return get_S2_element(set, in);
    ++in.pos;
    if (const int error = skip_items(in))
        return error;
    if (peek(in) == ']')
        return NOTHING_ENTERED;
    do { // at most MAX_GROUPS groups
        if (set.ends.size() == MAX_GROUPS)
            return OUT_OF_BOUNDS;
        if (const int error = get_S2_element(set, in))
            return error == VALUES_OR_BRACKETS ? static_cast<int>(VALUE_MISSING) : error;
        if (const int error = skip_items(in))
            return error;
    } while (peek(in) != ']');
    ++in.pos;
    return OK;
}

// stores a value and, in a loop, keeps it for the fill
int store_member(float value, Section &section)
{
    if (!store_value(section, value))
        return OUT_OF_MEMORY;
    LAST_VAL = value;
    return keep_for_loop(section, value);
}

} // namespace

int check_pfield(const SecondOrder &, const Input &) { return P_NO < 4 ? S2_ONLY_FROM_P4 : OK; }

// set -> weight [ "*" | "x" ] groups
int get_set(SecondOrder &data, Frame &frame, Input &in)
{
    if (const int error = get_weight(frame, in, MISSING_WEIGHT))
        return error;
    Choice mode{};
    if (const int error = get_choice(mode, in))
        return error;
    GroupSet set{};
    if (const int error = get_groups(set, in))
        return error;
    set.choice = init_did(mode, set.ends.size());
    data.sets.push_back(std::move(set));
    return OK;
}

int store_group(SecondOrder &data, std::size_t set, Section &section)
{
    GroupSet         &chosen = data.sets[set];
    const std::size_t group  = get_set_element(chosen.choice, chosen.ends.size()) - 1;
    const std::size_t start  = group == 0 ? 0 : chosen.ends[group - 1];
    for (std::size_t i = start; i < chosen.ends[group]; ++i) {
        IS_FUSED = i == start ? 0 : 1;
        if (IS_FUSED != 0) {
            ++EVENTS;
            ++EVENT_NO;
        }
        if (const int error = store_member(chosen.values[i], section))
            return error;
    }
    if (IN_TYPE == TYPE_IN)
        LAST_VAL = RoundF(LAST_VAL);
    return OK;
}

} // namespace orlo

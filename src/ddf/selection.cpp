// Each set remembers its own choices; only the set that is chosen for an event draws an element.

#include "ddf/selection.h"

#include "diag/messages.h"

#include <utility>

namespace orlo {

// set -> weight [ "*" | "x" ] values
int get_set(Selection &data, Frame &frame, Input &in)
{
    if (const int error = get_weight(frame, in, MISSING_WEIGHT))
        return error;
    Choice mode{};
    if (const int error = get_choice(mode, in))
        return error;
    SelectionSet set{};
    if (const int error = get_values(set.elements, in))
        return error;
    set.choice = init_did(mode, set.elements.size());
    data.sets.push_back(std::move(set));
    return OK;
}

int make_value(Selection &data, std::size_t set, const Place &, float &value)
{
    SelectionSet &chosen = data.sets[set];
    value                = chosen.elements[get_set_element(chosen.choice, chosen.elements.size()) - 1];
    return OK;
}

} // namespace orlo

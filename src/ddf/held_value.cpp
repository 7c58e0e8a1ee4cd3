// The one generator without weights: it holds a single set, and that set is a bare value.

#include "ddf/held_value.h"

#include "diag/messages.h"
#include "words/values.h"

namespace orlo {

// set -> value
int get_set(HeldValue &data, Frame &, Input &in)
{
    const std::uint32_t begin = in.pos;
    if (!get_input_type(data.value, in))
        return BAD_WALK_RANGE;
    tell_number(in, Part::value, static_cast<double>(data.value), begin);
    return OK;
}

int make_value(HeldValue &data, std::size_t, const Place &, float &value)
{
    value = data.value;
    return OK;
}

} // namespace orlo

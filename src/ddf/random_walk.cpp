// The value is the position before the step, so a walk begins exactly at its starting value.

#include "ddf/random_walk.h"

#include "base/distributions.h"
#include "base/numerics.h"
#include "diag/messages.h"
#include "events/block.h"
#include "input/scanners.h"
#include "words/values.h"

#include <cmath>

namespace orlo {
namespace {

// moves over a bracket that may be left out
int take_optional(char bracket, Input &in)
{
    if (peek(in) != bracket)
        return OK;
    ++in.pos;
    return skip_items(in);
}

int get_bound(float &bound, Part part, Input &in)
{
    const std::uint32_t begin = in.pos;
    if (!get_input_type(bound, in))
        return BAD_WALK_RANGE;
    tell_number(in, part, static_cast<double>(bound), begin);
    return skip_items(in);
}

// bounds -> [ "[" ] value value [ "]" ]
int get_bounds(WalkSet &set, Input &in)
{
    if (const int error = take_optional('[', in))
        return error;
    if (const int error = get_bound(set.low, Part::low, in))
        return error;
    if (const int error = get_bound(set.high, Part::high, in))
        return error;
    if (set.low > set.high)
        swapf(set.low, set.high);
    if (!std::isfinite(set.high - set.low)) // a walk has no place in a range without a width
        return BAD_WALK_RANGE;
    return take_optional(']', in);
}

} // namespace

// set -> weight bounds window start
int get_set(RandomWalk &data, Frame &frame, Input &in)
{
    if (const int error = get_weight(frame, in, MISSING_WEIGHT))
        return error;
    WalkSet set{};
    tell_number(in, Part::bounds, 0.0, in.pos);
    if (const int error = get_bounds(set, in))
        return error;
    const std::uint32_t window = in.pos;
    if (!get_f(set.window, in) || set.window < 0.0F || set.window > 1.0F)
        return BAD_WINDOW;
    tell_number(in, Part::window, static_cast<double>(set.window), window);
    if (const int error = skip_items(in))
        return error;
    const std::uint32_t begin = in.pos;
    float               start = 0.0F;
    if (!get_input_type(start, in) || start < set.low || start > set.high)
        return BAD_WALK_START;
    tell_number(in, Part::start, static_cast<double>(start), begin);
    if (set.low != set.high)
        set.position = (start - set.low) / (set.high - set.low);
    data.sets.push_back(set);
    return OK;
}

int make_value(RandomWalk &data, std::size_t set, const Place &, float &value)
{
    WalkSet &walk = data.sets[set];
    if (observer != nullptr) {
        const Window window = window_around(walk.position, walk.window);
        observer->walked(walk.position, window.low, window.high);
    }
    value = rand_window(walk.position, walk.low, walk.high, walk.window);
    return OK;
}

} // namespace orlo

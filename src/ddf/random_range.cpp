// A single value is a range without width, so that every set costs its draws whatever it holds.

#include "ddf/random_range.h"

#include "base/distributions.h"
#include "diag/messages.h"

namespace orlo {

// set -> weight range
int get_set(RandomRange &data, Frame &frame, Input &in)
{
    if (const int error = get_weight(frame, in, MISSING_WEIGHT))
        return error;
    RangeData range{};
    if (const int error = get_range(range, in))
        return error;
    if (zero_refused(frame.span) && (range.low == 0.0F || range.high == 0.0F))
        return ZERO_P2_IN_DDF;
    data.sets.push_back(range);
    return OK;
}

int make_value(RandomRange &data, std::size_t set, const Place &, float &value)
{
    const RangeData &range = data.sets[set];
    value                  = mk_rval(range.type, range.low, range.high);
    return OK;
}

} // namespace orlo

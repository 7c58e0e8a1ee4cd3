// Both ends are drawn for every event, start before end, also where they are single values.

#include "ddf/motion.h"

#include "base/distributions.h"
#include "diag/messages.h"
#include "words/curve_letters.h"

namespace orlo {
namespace {

bool holds_zero(const RangeData &range) { return range.low == 0.0F || range.high == 0.0F; }

float draw(const RangeData &range) { return mk_rval(range.type, range.low, range.high); }

} // namespace

// set -> weight curve range range
int get_set(Motion &data, Frame &frame, Input &in)
{
    if (const int error = get_weight(frame, in, MISSING_WEIGHT))
        return error;
    MotionSet set{};
    if (const int error = get_curve_type(in, set.curve, set.exponent, frame.span > 0.0F))
        return error;
    if (const int error = skip_items(in))
        return error;
    if (const int error = get_range(set.start, in))
        return error;
    if (const int error = skip_items(in))
        return error;
    if (const int error = get_range(set.end, in))
        return error;
    if (zero_refused(frame.span) && (holds_zero(set.start) || holds_zero(set.end)))
        return ZERO_P2_IN_DDF;
    data.sets.push_back(set);
    return OK;
}

int make_value(Motion &data, std::size_t set, const Place &place, float &value)
{
    const MotionSet &motion = data.sets[set];
    const float      start  = draw(motion.start);
    const float      end    = draw(motion.end);
    value                   = curve_at(place, motion.curve, motion.exponent, start, end);
    return OK;
}

} // namespace orlo

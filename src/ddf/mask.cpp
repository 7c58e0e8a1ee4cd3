// The exponent stands directly before the elements, as p2 reads one place before the element that was drawn.

#include "ddf/mask.h"

#include "base/random.h"
#include "diag/messages.h"
#include "events/block.h"
#include "words/curve_letters.h"

#include <utility>

namespace orlo {

// set -> weight curve values values
int get_set(Mask &data, Frame &frame, Input &in)
{
    if (const int error = get_weight(frame, in, MISSING_WEIGHT))
        return error;
    MaskSet set{};
    float   exponent = 1.0F;
    if (const int error = get_curve_type(in, set.curve, exponent, frame.span > 0.0F))
        return error;
    set.record.push_back(exponent);
    if (const int error = skip_items(in))
        return error;
    if (const int error = get_values(set.record, in))
        return error;
    set.first_count = set.record.size() - 1;
    if (const int error = skip_items(in))
        return error;
    if (const int error = get_values(set.record, in))
        return error;
    set.second_count = set.record.size() - 1 - set.first_count;
    data.sets.push_back(std::move(set));
    return OK;
}

int make_value(Mask &data, std::size_t set, const Place &place, float &value)
{
    const MaskSet &mask     = data.sets[set];
    const bool     in_p2    = P_NO == 2;
    const float    exponent = in_p2 ? 1.0F : mask.record[0];
    const float    chance   = curve_at(place, mask.curve, exponent, 1.0F, 0.0F);

    const bool        from_first = chance >= draw_uniform();
    const std::size_t count      = from_first ? mask.first_count : mask.second_count;
    const std::size_t drawn      = static_cast<std::size_t>(draw_int()) % count;
    const std::size_t list       = (from_first ? 0 : mask.first_count) + (in_p2 ? 0 : 1);
    value                        = mask.record[list + drawn];
    return OK;
}

} // namespace orlo

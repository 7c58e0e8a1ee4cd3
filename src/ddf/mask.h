// MS: each value comes from one of two lists; the chance of the first falls along a curve from certainty to nothing.
#pragma once

#include "ddf/generator.h"

namespace orlo {

struct MaskSet {
    float              curve;        // curve code
    std::vector<float> record;       // the exponent of the curve "v", the first list, the second list
    std::size_t        first_count;  // elements of the first list
    std::size_t        second_count; // elements of the second list
};

struct Mask {
    std::vector<MaskSet> sets;
};

[[nodiscard]] int get_set(Mask &data, Frame &frame, Input &in);
[[nodiscard]] int make_value(Mask &data, std::size_t set, const Place &place, float &value);

} // namespace orlo

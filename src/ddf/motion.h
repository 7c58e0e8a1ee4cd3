// MO: the value moves along a curve from a start to an end, each of which may be a random range.
#pragma once

#include "ddf/generator.h"

namespace orlo {

struct MotionSet {
    float     curve;    // curve code
    float     exponent; // of the curve "v"
    RangeData start;
    RangeData end;
};

struct Motion {
    std::vector<MotionSet> sets;
};

[[nodiscard]] int get_set(Motion &data, Frame &frame, Input &in);
[[nodiscard]] int make_value(Motion &data, std::size_t set, const Place &place, float &value);

} // namespace orlo

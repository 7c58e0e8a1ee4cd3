// RA: every value is drawn at random between two bounds.
#pragma once

#include "ddf/generator.h"

namespace orlo {

struct RandomRange {
    std::vector<RangeData> sets;
};

[[nodiscard]] int get_set(RandomRange &data, Frame &frame, Input &in);
[[nodiscard]] int make_value(RandomRange &data, std::size_t set, const Place &place, float &value);

} // namespace orlo

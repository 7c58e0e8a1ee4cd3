// RW: every value is near the one before, inside a window that travels in a range.
#pragma once

#include "ddf/generator.h"

namespace orlo {

struct WalkSet {
    float low;
    float high;
    float window;   // width, a fraction of the range
    float position; // of the walk, a fraction of the range; moved by every value of the set
};

struct RandomWalk {
    std::vector<WalkSet> sets;
};

[[nodiscard]] int get_set(RandomWalk &data, Frame &frame, Input &in);
[[nodiscard]] int make_value(RandomWalk &data, std::size_t set, const Place &place, float &value);

} // namespace orlo

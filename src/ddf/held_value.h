// HO: one value for the whole span.
#pragma once

#include "ddf/generator.h"

namespace orlo {

struct HeldValue {
    float value;
};

template <> inline constexpr Traits traits<HeldValue>{false, false};

[[nodiscard]] int get_set(HeldValue &data, Frame &frame, Input &in);
[[nodiscard]] int make_value(HeldValue &data, std::size_t set, const Place &place, float &value);

} // namespace orlo

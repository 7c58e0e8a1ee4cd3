// SE: elements of a list are picked at random, freely or without repetition.
#pragma once

#include "ddf/generator.h"

namespace orlo {

struct SelectionSet {
    std::vector<float> elements;
    ChoiceState        choice;
};

struct Selection {
    std::vector<SelectionSet> sets;
};

[[nodiscard]] int get_set(Selection &data, Frame &frame, Input &in);
[[nodiscard]] int make_value(Selection &data, std::size_t set, const Place &place, float &value);

} // namespace orlo

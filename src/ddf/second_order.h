// S2: selects groups of values, each sounding together as a chord.
#pragma once

#include "ddf/generator.h"
#include "events/section.h"

namespace orlo {

inline constexpr std::size_t MAX_GROUPS       = 128; // of one set
inline constexpr std::size_t MAX_GROUP_VALUES = 128; // of one group

struct GroupSet {
    std::vector<float>       values; // of all groups, one after another
    std::vector<std::size_t> ends;   // of each group, after its last value
    ChoiceState              choice;
};

struct SecondOrder {
    std::vector<GroupSet> sets;
};

template <> inline constexpr Traits traits<SecondOrder>{true, true};

/// Refuses p2 and p3, before anything is read. @return 0 or 62
[[nodiscard]] int check_pfield(const SecondOrder &data, const Input &in);

[[nodiscard]] int get_set(SecondOrder &data, Frame &frame, Input &in);

/// Chooses a group of a set and stores its values: the first in the event after the cursor, the others as its chord members, which
/// the block gains. @return 0 or 32
[[nodiscard]] int store_group(SecondOrder &data, std::size_t set, Section &section);

} // namespace orlo

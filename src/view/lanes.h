// lanes.h: what the p-fields hold: range, count and histogram of each. Reads scores, draws nothing.
#pragma once

#include "view/scale.h"
#include "view/scores.h"

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace orlo::view {

inline constexpr int         FIRST_LANE     = 3;  ///< p1 and p2 have none: they are colour and place
inline constexpr int         MOST_LANES     = 40; ///< p-fields beyond have none
inline constexpr std::size_t HISTOGRAM_BINS = 24;

/// One p-field of all events.
struct Lane {
    int                                     field = 0;   ///< number of the p-field, 4 is p4
    std::string                             name;        ///< "p4", or "p4 velocity" where it has another name
    std::size_t                             count   = 0; ///< events with a number in it
    std::size_t                             missing = 0; ///< events that have the p-field, but no number in it
    Range                                   range;       ///< of the numbers; both ends 0 where there is none
    std::array<std::size_t, HISTOGRAM_BINS> bins{};      ///< values in equal parts of the range, low to high; all equal: the middle
};

/// The bin of a value that lies in the range.
std::size_t bin_of(const Range &range, double value);

/// The lanes of p3 and all p-fields above that at least one event has.
/// @return at most MOST_LANES, in order
std::vector<Lane> lanes_of(const Score &score);

} // namespace orlo::view

// distinct.h: how many different values there are, up to a bound.
#pragma once

#include "gather/piece.h"

#include <bit>
#include <cstdint>
#include <vector>

namespace orlo::gather {

class Distinct {
  public:
    void clear()
    {
        slots.assign(SLOTS, EMPTY);
        found = 0;
    }

    /// Adds a value by its bits; a NaN is none, and -0 is 0.
    void add(float value)
    {
        if (found > MOST_DISTINCT || value != value)
            return;
        const auto bits = std::bit_cast<std::uint32_t>(value + 0.0F);
        for (std::size_t at = (bits * 2654435769U) >> 17U;; at = (at + 1) % SLOTS) { // a third of the slots is taken at most
            if (slots[at] == bits)
                return;
            if (slots[at] == EMPTY) {
                slots[at] = bits;
                ++found;
                return;
            }
        }
    }

    /// MOST_DISTINCT + 1 when there are more.
    [[nodiscard]] std::size_t count() const { return found; }

  private:
    static constexpr std::size_t   SLOTS = 32768;
    static constexpr std::uint32_t EMPTY = 0xFFFFFFFFU; // a NaN

    std::vector<std::uint32_t> slots = std::vector<std::uint32_t>(SLOTS, EMPTY);
    std::size_t                found = 0;
};

} // namespace orlo::gather

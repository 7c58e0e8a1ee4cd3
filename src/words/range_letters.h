// The letters that choose the distribution of a random range.
#pragma once

#include "base/distributions.h"
#include "input/line_reader.h"

namespace orlo {

struct RangeLetter {
    char  letter;
    Range range;
};

inline constexpr RangeLetter range_letters[] = {
    {'b', Range::beta}, {'f', Range::uniform},    {'g', Range::gaussian},  {'h', Range::high},
    {'l', Range::low},  {'t', Range::triangular}, {'x', Range::bilateral},
};

/// Whether a letter chooses a distribution, in either case. Only tests call it: a letter is read or is none.
[[nodiscard]] bool is_rrange_type(char c);

/// Reads an optional distribution letter. @return its code, 0 without one
[[nodiscard]] int get_rrange_type(Input &in);

} // namespace orlo

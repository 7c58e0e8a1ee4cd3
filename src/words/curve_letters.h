// The letters of curves.
#pragma once

#include "base/curves.h"
#include "input/line_reader.h"

namespace orlo {

struct CurveLetter {
    char  letter;
    Curve curve;
};

inline constexpr CurveLetter curve_letters[] = {
    {'c', Curve::mirrored}, {'e', Curve::square}, {'f', Curve::line}, {'l', Curve::root}, {'s', Curve::sine}, {'v', Curve::power},
};

/// Reads an optional curve letter and an optional "*" after it. Without a letter the curve is the straight line.
/// @param curve,exponent get the curve's code and the exponent of "v" (1 for the others)
/// @return 0; 63 for a bad exponent, 64 for a "*" where time_allowed is false
[[nodiscard]] int get_curve_type(Input &in, float &curve, float &exponent, bool time_allowed);

} // namespace orlo

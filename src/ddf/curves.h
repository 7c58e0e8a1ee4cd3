// Curves: how a value moves from its start to its end. Pure functions but for the reader of the curve letter.
#pragma once

#include "input/line_reader.h"

#include <cstdint>

namespace orlo {

inline constexpr int TIME_CURVE = 100; // added to the code of a curve that follows the beat instead of the event's number

/// Reads an optional curve letter and an optional "*" behind it. Without a letter the curve is the straight line.
/// @param curve,exponent get the curve's code and the exponent of "v" (1 for the others)
/// @return 0; 63 for a bad exponent, 64 for a "*" where time_allowed is false
[[nodiscard]] int get_curve_type(Input &in, float &curve, float &exponent, bool time_allowed);

/// Value at time t of a move that lasts total: end from total on, start up to 0, 0 for an unknown code in between.
[[nodiscard]] float tplot_val(int code, float t, float total, float start, float end, double exponent);

/// Value at event i, counted from 0, of a move over n events; start when n is 1, 0 for an unknown code.
[[nodiscard]] float pplot_val(std::uint64_t i, std::uint64_t n, int code, float start, float end, double exponent);

} // namespace orlo

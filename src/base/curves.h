// Curves: how a value moves from its start to its end. Pure functions.
#pragma once

#include <cstdint>

namespace orlo {

/// Shape of a move, by its code.
enum class Curve : int { line, square, root, power, sine, mirrored };

inline constexpr int TIME_CURVE = 100; // added to the code of a curve that follows the beat instead of the event's number

/// Value at time t of a move that lasts total: end from total on, start up to 0, 0 for an unknown code in between.
[[nodiscard]] float tplot_val(int code, float t, float total, float start, float end, double exponent);

/// Value at event i, counted from 0, of a move over n events; start when n is 1, 0 for an unknown code.
[[nodiscard]] float pplot_val(std::uint64_t i, std::uint64_t n, int code, float start, float end, double exponent);

} // namespace orlo

// Random values: distributions, weighted choice, the moving window and the relative deviation of every stored value.
// The number of draws of each function is part of what a seed reproduces. Nothing here fails.
#pragma once

namespace orlo {

/// Shape of a random range, by its letter in the input.
enum class Range : int { uniform, low, high, triangular, gaussian, bilateral, beta };

/// Random value between two bounds.
/// @param type a Range as a number; any other number gives 0 without a draw
/// Draws: uniform 1, triangular 2, gaussian 12; low and high 1, bilateral 1, beta 2, each more when a draw is refused.
[[nodiscard]] float mk_rval(int type, float low, float high);

/// Sum of 12 uniform draws (a gaussian by the central limit theorem), scaled to a mean of 0.5, clamped to [0, 1].
[[nodiscard]] float gauss();

/// Beta distribution with both parameters 0.2 (Joehnk's method, Metrika 8, 1964), in [0, 1].
[[nodiscard]] float beta();

/// Bilateral exponential around 0.5, in [0, 1].
[[nodiscard]] float bilex();

/// Exponential, dense near 0, in [0, 1].
[[nodiscard]] float expone_left();

/// A value moved at random by up to half of deviation * value to either side. Always one draw.
[[nodiscard]] float add_rdev(float value, float deviation);

/// A part of [0, 1].
struct Window {
    float low;
    float high;
};

/// The window of a width around a position, shifted to lie in [0, 1].
[[nodiscard]] Window window_around(float position, float width);

/// Moves a position inside [0, 1] to a uniform draw in a window around it that is shifted to lie in [0, 1].
/// One draw per attempt; at most 2^24 attempts, after which the position stays.
/// @return the position before the move
[[nodiscard]] float rwindow(float &position, float width);

/// The position before a move of rwindow, scaled to low..high.
[[nodiscard]] float rand_window(float &position, float low, float high, float width);

/// Index of an alternative chosen by weight; one draw always. The result is n when the draw exceeds the sum of the weights.
[[nodiscard]] int prob_result(const float *weights, int n);

/// 1 when the weights add up to 1 within 0.00001, else 0.
[[nodiscard]] bool hundred_percent(const float *weights, int n);

} // namespace orlo

// tempo.h: beats of a score's section, or ticks of a MIDI file, to seconds. Reads no text.
#pragma once

#include <cstddef>
#include <vector>

namespace orlo::score {

/// From a point on a beat has a length, up to the next point.
struct TempoPoint {
    double beat;    ///< ascending from point to point; the first is 0
    double length;  ///< of a beat there, in seconds
    double seconds; ///< where the point is; set by place_points
};

/// How the length of a beat gets from one point to the next.
enum class Between {
    steps, ///< it stays, up to the next point
    moves, ///< it changes evenly with the beats; between two points at one beat it jumps
};

/// Sets TempoPoint::seconds.
void place_points(std::vector<TempoPoint> &points, Between between);

/// When a beat is; the length of the last point goes on for ever.
/// @param points placed; without any a beat is a second
/// @return seconds
double seconds_at(const std::vector<TempoPoint> &points, Between between, double beat);

} // namespace orlo::score

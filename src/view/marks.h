// marks.h: what is drawn of each series: notes, dots, bars, as SVG elements or path data. Along the time axis coordinates are
// fractions of the plan's time range times a width; down, pixels. Both have one decimal. Reads plans and scores.
#pragma once

#include "view/plan.h"
#include "view/scores.h"

#include <string>
#include <vector>

namespace orlo::view {

/// Where notes and dots are put: the width that the time range takes, moved to a place.
struct Place {
    double width; ///< of the time range
    double x;     ///< where it begins
    double y;     ///< top of the roll or lane
};

/// A time, in tenths.
std::int64_t tenths_x(const Plan &plan, const Place &place, double time);

/// Path data of one series within one slice of the time: a browser passes over slices that are out of sight.
struct Piece {
    std::size_t series;
    std::string data;
};

/// Notes as rectangles, an element each, in order of the file.
/// @return for each series, empty where it has none
std::vector<std::string> note_elements(const Plan &plan, const Score &score, const Place &place);

/// Notes as rectangles, to be filled.
/// @return by series, none empty
std::vector<Piece> note_outlines(const Plan &plan, const Score &score, const Place &place);

/// Notes as lines along their middle, to be stroked as wide as a note is high; those of a piece that touch or overlap are one.
/// @return by series, none empty
std::vector<Piece> note_lines(const Plan &plan, const Score &score, const Place &place);

/// The values of a lane as dots, to be stroked with round ends; in a plan of many events dots of the same place are one, dots one
/// above another a line.
/// @return by series, none empty
std::vector<Piece> value_dots(const Plan &plan, const Score &score, const Lane &lane, const Place &place);

/// A lane's histogram as bars to the right, the longest as long as the width.
/// @return path data, to be filled; empty where nothing was counted
std::string histogram_bars(const Lane &lane, const Place &place);

} // namespace orlo::view

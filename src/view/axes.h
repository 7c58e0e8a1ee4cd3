// axes.h: gridlines and labels of a drawing, as SVG elements. The classes that they name are styled by whoever puts them into a
// document: "t" text at the end of its box, "k" keys that are black on a piano, "g" a gridline, "G" a stronger one.
#pragma once

#include "view/plan.h"

#include <string>

namespace orlo::view {

/// Stripes and lines after the roll, as wide as told.
/// @param width an SVG length, "100%" or "780"
std::string roll_grid(const Plan &plan, const std::string &width);

/// Names of keys and rows, right-aligned at x.
std::string roll_labels(const Plan &plan, double x);

/// Lines after a lane.
std::string lane_grid(const Lane &lane, const std::string &width);

/// Values at a lane's lines, right-aligned at x.
std::string lane_labels(const Lane &lane, double x);

/// The colour class and the style class of a series: "c0 y0".
std::string series_classes(std::size_t series);

} // namespace orlo::view

// plan.h: where things stand in a drawing of a score, in whatever form it is written: who has which colour, how high roll and
// lanes are, at what height an event stands. Lengths are pixels. Reads scores, writes nothing.
#pragma once

#include "view/lanes.h"
#include "view/scale.h"
#include "view/scores.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace orlo::view {

inline constexpr int         COLOURS      = 8;  ///< told apart also by colour-blind people
inline constexpr int         STYLES       = 3;  ///< ways to draw in one colour: half filled, outlined, filled
inline constexpr int         MOST_SERIES  = 96; ///< the last one stands for all further instruments
inline constexpr double      LANE_HEIGHT  = 72;
inline constexpr double      LANE_PADDING = 4;         ///< between the edge of a lane and its lowest or highest value
inline constexpr int         LANE_TICKS   = 4;         ///< at most
inline constexpr double      ROW_HEIGHT   = 16;        ///< of an instrument without pitches
inline constexpr std::size_t MOST_VALUES  = 1'000'000; ///< numbers that a page keeps to show them

/// One instrument, or all that have no place of their own.
struct Series {
    std::string name;
    std::size_t events;
    int         row; ///< row below the pitches, 0 is the first; -1: every event has a pitch
};

/// The measures of a drawing.
struct Plan {
    bool                many;    ///< one path a series, events of the same place are merged
    bool                details; ///< a page keeps the events' numbers
    Range               time;    ///< all starts and ends, from 0 on unless half of it would be empty, with a margin; low < high
    Range               keys;    ///< half a key beyond the lowest and the highest pitch; both 0 where there is none
    bool                pitched; ///< at least one event has a pitch
    int                 rows;    ///< rows of instruments below the pitches
    double              pitch_height; ///< of the part with pitches, 0 where there is none
    double              roll_height;  ///< pitches and rows
    double              note_height;  ///< of one note
    std::vector<Series> series;
    std::vector<Lane>   lanes;
    int                 lanes_left_out;
};

Plan plan_of(const Score &score);

/// An instrument's name as it is shown: "i1" for "1"; names that are no numbers stay.
std::string instrument_name(const std::string &name);

/// The series that an event belongs to, an index into Plan::series.
int series_of(const Event &event);

/// The middle of an event's note, down from the top of the roll.
double note_y(const Plan &plan, const Score &score, const Event &event);

/// The middle of a row, down from the top of the roll.
double row_y(const Plan &plan, int row);

/// A pitch, down from the top of the roll.
double key_y(const Plan &plan, double key);

/// A value in its lane, down from the top of the lane.
double value_y(const Lane &lane, double value);

} // namespace orlo::view

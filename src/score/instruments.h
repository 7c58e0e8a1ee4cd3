// instruments.h: the instruments of a Csound score, by number or name, and their groups: instruments whose numbers have the same
// whole part, or one name, carry p-fields from one to the other. Reads no text.
#pragma once

#include "score/score.h"

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace orlo::score {

/// The instruments of a score that is being read; their names stand in Score::instruments.
struct Instruments {
    std::vector<std::size_t>             group_of; ///< instrument: its group; groups are numbered from 0 on, without a gap
    std::size_t                          groups = 0;
    std::unordered_map<double, int>      numbers;                                                    ///< p1: instrument
    std::unordered_map<double, int>      wholes;                                                     ///< whole part of p1: group
    std::unordered_map<std::string, int> names;                                                      ///< name: instrument
    double                               last_number     = std::numeric_limits<double>::quiet_NaN(); ///< mostly asked for again
    int                                  last_instrument = 0;
};

/// The instrument of a number, which is added when it is new.
/// @return index into Score::instruments
int numbered_instrument(Instruments &instruments, Score &score, double number);

/// The same for a name in quotes.
int named_instrument(Instruments &instruments, Score &score, std::string_view name);

/// The group of an event's instrument.
std::size_t group_of(const Instruments &instruments, const Event &event);

/// A number with as few digits as give it back.
std::string shortest(double number);

} // namespace orlo::score

// scale.h: what an axis needs: a range, where a value stands in it, round numbers to mark it with, their labels. Pure functions.
#pragma once

#include <string>
#include <vector>

namespace orlo::view {

/// Finite ends, low <= high; their distance is finite, too.
struct Range {
    double low  = 0;
    double high = 0;
};

/// A mark on an axis.
struct Tick {
    double      value;
    std::string label;
};

/// Where a value stands.
/// @return 0 at the low end, 1 at the high end, 0.5 where both ends are the same
double fraction(const Range &range, double value);

/// Widens a range that holds a value, or makes one of a first value.
/// @param empty the range holds nothing yet; false afterwards
void include(Range &range, bool &empty, double value);

/// Multiples of 1, 2 or 5 times a power of ten inside a range, with as many digits as tell them apart.
/// @param most ticks, >= 2
/// @return at most that many; where no two numbers of the range can be told apart, its low end alone
std::vector<Tick> nice_ticks(const Range &range, int most);

/// Name of a MIDI key: 60 is "C4", 61 is "C♯4". Octaves below 0 have a minus.
std::string key_name(int key);

/// The same in ASCII: 60 is "c4", 61 is "c#4".
std::string plain_key_name(int key);

/// Is a MIDI key black on a piano?
bool is_black(int key);

/// Marks of a pitch axis: all keys, or some of each octave, or every few C, or, beyond what has names, numbers.
/// @param keys MIDI key numbers
/// @param most names that have room one above another
std::vector<Tick> key_ticks(const Range &keys, int most);

/// A time for people: "32.4 s", above a minute "154 s (2:34)"; "16 beats".
std::string time_text(double time, bool beats);

} // namespace orlo::view

// rhythm.h: how a measure is divided: beats, halves, and tuplets where notes ask for them. Whole numbers, but for the times that
// are looked at. Knows nothing of notes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace orlo::exporting {

using Units = std::int64_t;

inline constexpr Units  QUARTER  = 3360;           // 32nd parts of a quarter, and of its third, fifth and seventh ones, are whole
inline constexpr Units  SHORTEST = QUARTER / 32;   // a 128th note
inline constexpr double NEAR     = 0.003;          // quarters: what lies so near is meant
inline constexpr double CLOSE    = NEAR * QUARTER; // the same in units
inline constexpr double EXACT    = 0.001;          // quarters: the same for parts so fine that any time is near to one

struct Meter {
    int beats = 4; ///< of a measure
    int unit  = 4; ///< of its beats: 8 is an eighth
};

[[nodiscard]] Units measure_of(Meter meter);

/// The metre has beats of three units: 6/8.
[[nodiscard]] bool is_compound(Meter meter);

/// Where the beats of a measure begin; those of 5/8 and the like are of two or three units.
[[nodiscard]] std::vector<Units> beats_of(Meter meter);

/// Some notes in the time of others.
struct Tuplet {
    Units start; ///< from the measure's
    Units length;
    int   actual; ///< 3 in the time of 2
    int   normal;
};

/// A stretch of a measure.
struct Stretch {
    Units start; ///< from the measure's
    Units length;
    int   actual = 1; ///< of the tuplet that it is a part of
    int   normal = 1;

    [[nodiscard]] Units end() const { return start + length; }
    [[nodiscard]] Units nominal() const { return length * actual / normal; } ///< as it is written
};

/// What a stretch is divided into; nothing for the shortest.
[[nodiscard]] std::vector<Stretch> parts_of(const Stretch &stretch, Meter meter, std::span<const Tuplet> tuplets);

/// A division of a measure.
struct Division {
    bool                fits = true;
    std::size_t         astray; ///< if not: the time that is furthest from all divisions
    double              distance;
    std::vector<Tuplet> tuplets; ///< in the order of their starts
    std::vector<Units>  times;   ///< that were given, in whole units
};

/// Divides a measure so that times begin its parts.
/// @param times units from its start, ascending, none further than CLOSE outside of it
[[nodiscard]] Division divide(Meter meter, std::span<const double> times);

/// Quarters from the nearest time that a usual division has: 32nd notes, or a third, fifth, sixth or seventh of a quarter.
[[nodiscard]] double distance_from_usual(double units);

} // namespace orlo::exporting

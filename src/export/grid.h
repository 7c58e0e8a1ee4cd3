// grid.h: beats of the whole piece against its seconds. The seconds are given; beats only make the grid on which notes are written.
#pragma once

#include "export/music.h"

#include <cstddef>
#include <vector>

namespace orlo::exporting {

/// Between two points beats go evenly; before the first and behind the last one as beside it.
struct GridPoint {
    double beat;
    double second;
};

struct Grid {
    std::vector<GridPoint> points;       ///< ascending in both; two at least
    std::int32_t           block = NONE; ///< whose beats they are, index into Music::blocks; NONE: a beat is a second
};

/// Which block the beats are taken from.
enum class MapChoice { fitting, block, none };

struct MapWish {
    MapChoice     choice = MapChoice::fitting;
    std::uint32_t block  = 0; ///< number of the block, for MapChoice::block
};

/// The grid of a block: its events' beats and seconds, from beat 0 on.
/// @param block index; NONE for a grid on which a beat is a second
[[nodiscard]] Grid grid_of(const Music &music, std::int32_t block);

/// The grid of the block that most events fit, by their own beats.
[[nodiscard]] Grid fitting_grid(const Music &music);

/// The grid that is wished for; one on which a beat is a second where there is no such block.
[[nodiscard]] Grid chosen_grid(const Music &music, MapWish wish);

/// Beats at a time in seconds.
[[nodiscard]] double beat_at(const Grid &grid, double second);

/// Seconds at a beat.
[[nodiscard]] double second_at(const Grid &grid, double beat);

/// How far events lie from their own beats.
struct Distance {
    double      beats;   ///< largest
    double      seconds; ///< the same at the tempo there
    std::size_t events;  ///< that lie further than FITS from them
};

inline constexpr double FITS = 0.002; // beats: what lies so near is on its beat

[[nodiscard]] Distance distance_of(const Music &music, const Grid &grid);

} // namespace orlo::exporting

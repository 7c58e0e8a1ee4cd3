// Blocks convert their starts and their intervals each for itself, so that their beats need not meet: the beats of one are taken
// for all, and what others have there is told.

#include "export/grid.h"

#include <algorithm>
#include <cmath>

namespace orlo::exporting {
namespace {

constexpr std::size_t MOST_TRIED = 16; // blocks whose beats are tried: those with most events

// the point from which on a second lies
const GridPoint *segment_at(const Grid &grid, double second)
{
    const auto later = std::upper_bound(grid.points.begin() + 1, grid.points.end() - 1, second,
                                        [](double at, const GridPoint &point) { return at < point.second; });
    return &*later - 1;
}

bool follows(const GridPoint &point, const GridPoint &last) { return point.beat > last.beat && point.second > last.second; }

// behind the last event its tempo goes on
void add_last(Grid &grid, const Music &music)
{
    double seconds = 1.0; // of a beat
    if (grid.block != NONE) {
        const Block &of = music.blocks[static_cast<std::size_t>(grid.block)];
        for (std::size_t i = of.first; i < of.first + of.count; ++i)
            if (music.notes[i].beat >= grid.points.back().beat && music.notes[i].beats > 0.0)
                seconds = music.notes[i].duration / music.notes[i].beats;
    }
    grid.points.push_back({grid.points.back().beat + 1.0, grid.points.back().second + seconds});
}

} // namespace

Grid grid_of(const Music &music, std::int32_t block)
{
    Grid grid{{{0.0, 0.0}}, block};
    if (block != NONE) {
        const Block &of = music.blocks[static_cast<std::size_t>(block)];
        for (std::size_t i = of.first; i < of.first + of.count; ++i) {
            const GridPoint point{music.notes[i].beat, music.notes[i].start};
            if (follows(point, grid.points.back()))
                grid.points.push_back(point);
        }
    }
    add_last(grid, music);
    return grid;
}

double beat_at(const Grid &grid, double second)
{
    const GridPoint *point = segment_at(grid, second);
    const GridPoint &next  = point[1];
    return point->beat + (second - point->second) * (next.beat - point->beat) / (next.second - point->second);
}

double second_at(const Grid &grid, double beat)
{
    const auto       later = std::upper_bound(grid.points.begin() + 1, grid.points.end() - 1, beat,
                                              [](double at, const GridPoint &point) { return at < point.beat; });
    const GridPoint &next  = *later;
    const GridPoint &point = *(later - 1);
    return point.second + (beat - point.beat) * (next.second - point.second) / (next.beat - point.beat);
}

Distance distance_of(const Music &music, const Grid &grid)
{
    Distance distance{};
    for (const Note &note : music.notes) {
        if (std::isnan(note.beat))
            continue;
        const double     beats   = std::fabs(beat_at(grid, note.start) - note.beat);
        const GridPoint *point   = segment_at(grid, note.start);
        const double     seconds = beats * (point[1].second - point->second) / (point[1].beat - point->beat);
        distance.events += beats > FITS ? 1U : 0U;
        if (beats > distance.beats) {
            distance.beats   = beats;
            distance.seconds = seconds;
        }
    }
    return distance;
}

Grid fitting_grid(const Music &music)
{
    std::vector<std::int32_t> blocks(music.blocks.size());
    for (std::size_t i = 0; i < blocks.size(); ++i)
        blocks[i] = static_cast<std::int32_t>(i);
    const auto has_more = [&music](std::int32_t a, std::int32_t b) {
        const std::size_t of_a = music.blocks[static_cast<std::size_t>(a)].count;
        const std::size_t of_b = music.blocks[static_cast<std::size_t>(b)].count;
        return of_a != of_b ? of_a > of_b : a < b;
    };
    std::sort(blocks.begin(), blocks.end(), has_more);
    if (blocks.size() > MOST_TRIED)
        blocks.resize(MOST_TRIED);
    Grid        best   = grid_of(music, NONE);
    std::size_t fewest = music.notes.size() + 1;
    for (const std::int32_t block : blocks) {
        Grid              grid   = grid_of(music, block);
        const std::size_t astray = distance_of(music, grid).events;
        if (astray < fewest) {
            fewest = astray;
            best   = std::move(grid);
        }
    }
    return best;
}

Grid chosen_grid(const Music &music, MapWish wish)
{
    switch (wish.choice) {
    case MapChoice::fitting:
        return fitting_grid(music);
    case MapChoice::block:
        for (std::size_t i = 0; i < music.blocks.size(); ++i)
            if (music.blocks[i].number == wish.block)
                return grid_of(music, static_cast<std::int32_t>(i));
        break;
    case MapChoice::none:
        break;
    }
    return grid_of(music, NONE);
}

} // namespace orlo::exporting

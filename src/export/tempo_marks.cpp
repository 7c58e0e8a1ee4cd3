// The tempo of each quarter is that of its seconds. Changes of one direction that follow each other are a ramp: one word where it
// begins, one number where it ends.

#include "export/tempo_marks.h"

#include <algorithm>
#include <cmath>

namespace orlo::exporting {
namespace {

constexpr double       SLIGHT     = 0.003; // share of the tempo: a smaller change is none
constexpr double       NOTICEABLE = 0.02;  // a larger one is shown
constexpr std::int64_t NEXT       = 4;     // quarters up to the next change of a ramp
constexpr std::size_t  RAMP       = 3;     // changes that make one
constexpr std::int64_t RESTLESS   = 4;     // more shown than every so many quarters: none are

bool differ(double a, double b, double share) { return std::fabs(a / b - 1.0) > share; }

// a mark for each quarter whose tempo is another one
std::vector<TempoMark> changes_of(const Grid &grid, std::int64_t quarters)
{
    std::vector<TempoMark> changes;
    for (std::int64_t quarter = 0; quarter < std::max<std::int64_t>(quarters, 1); ++quarter) {
        const auto   beat  = static_cast<double>(quarter);
        const double tempo = 60.0 / (second_at(grid, beat + 1.0) - second_at(grid, beat));
        if (changes.empty() || differ(tempo, changes.back().tempo, SLIGHT))
            changes.push_back({quarter, tempo, false, {}});
    }
    return changes;
}

// behind the last change of the ramp that begins with a change
std::size_t end_of_ramp(const std::vector<TempoMark> &changes, std::size_t first)
{
    const bool  faster = changes[first].tempo > changes[first - 1].tempo;
    std::size_t next   = first + 1;
    while (next < changes.size() && changes[next].quarter - changes[next - 1].quarter <= NEXT &&
           (changes[next].tempo > changes[next - 1].tempo) == faster)
        ++next;
    return next;
}

} // namespace

TempoMarks tempo_marks(const Grid &grid, std::int64_t quarters)
{
    TempoMarks              all{changes_of(grid, quarters), {}};
    std::vector<TempoMark> &marks = all.marks;
    marks.front().shown           = true;
    double       shown            = marks.front().tempo;
    std::int64_t count            = 1;
    for (std::size_t i = 1; i < marks.size();) {
        const std::size_t ramp = end_of_ramp(marks, i);
        const std::size_t end  = ramp - i >= RAMP ? ramp : i + 1;
        TempoMark        &last = marks[end - 1];
        if (differ(last.tempo, shown, NOTICEABLE)) {
            if (end > i + 1)
                marks[i].words = marks[i].tempo > marks[i - 1].tempo ? "accel." : "rit.";
            last.shown = true;
            shown      = last.tempo;
            ++count;
        }
        i = end;
    }
    if (count <= RESTLESS || count * RESTLESS <= quarters)
        return all;
    for (TempoMark &mark : marks) {
        mark.shown = &mark == &marks.front();
        mark.words.clear();
    }
    all.said.emplace_back("the tempo moves from beat to beat: only the first one is shown");
    return all;
}

} // namespace orlo::exporting

#include "explain/hints/hints.h"

#include <algorithm>
#include <tuple>

namespace orlo::explain {

Hints find_hints(const Piece &piece, bool midi)
{
    Finder finder{piece, midi, {}};
    look_at_text(finder);
    look_at_definitions(finder);
    look_at_decimals(finder);
    look_at_seeds(finder);
    look_at_letters(finder);
    look_at_sharps(finder);
    look_at_starts(finder);
    look_at_rhythms(finder); // before what comes of them
    look_at_intervals(finder);
    look_at_sections(finder);
    look_at_lists(finder);
    look_at_values(finder);
    look_at_spans(finder);
    look_at_midi(finder);
    const bool full = finder.found.size() == MOST_HINTS;
    keep_quiet(finder);
    const auto earlier = [](const Hint &a, const Hint &b) {
        return std::tie(a.place.file, a.place.begin, a.kind, a.place.end) <
               std::tie(b.place.file, b.place.begin, b.kind, b.place.end);
    };
    std::sort(finder.found.begin(), finder.found.end(), earlier);
    return {std::move(finder.found), full};
}

} // namespace orlo::explain

// A stretch is halved until all times in it begin a half, or a tuplet has them: a tuplet takes the longest stretch whose middle
// begins nothing, for there it can't be told as two. Halving ends with the shortest note.

#include "export/rhythm.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace orlo::exporting {
namespace {

constexpr Units FINEST = QUARTER / 28; // part of a tuplet; finer ones could be taken for others

struct TupletKind {
    int actual;
    int normal;
};
constexpr TupletKind KINDS[]  = {{3, 2}, {5, 4}, {7, 4}};
constexpr TupletKind SEXTUPLE = {6, 4};

bool is_power(Units nominal)
{
    return nominal % SHORTEST == 0 && std::has_single_bit(static_cast<std::uint64_t>(nominal / SHORTEST));
}

Units unit_of(Meter meter) { return 4 * QUARTER / meter.unit; }

// lengths of the parts of a measure, in units of the metre
std::vector<int> groups_of(Meter meter)
{
    const int beats = meter.beats;
    if (is_compound(meter))
        return std::vector<int>(static_cast<std::size_t>(beats / 3), 3);
    if (beats <= 3)
        return std::vector<int>(static_cast<std::size_t>(beats), 1);
    if (meter.unit <= 4 && beats == 5)
        return {3, 2};
    if (meter.unit <= 4 && beats == 6)
        return {3, 3};
    if (meter.unit <= 4 && beats == 7)
        return {4, 3};
    std::vector<int> groups(static_cast<std::size_t>(beats / 2), 2);
    groups.back() += beats % 2;
    return groups;
}

std::vector<Stretch> even_parts(const Stretch &of, int count, int actual, int normal)
{
    std::vector<Stretch> parts;
    parts.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        parts.push_back({of.start + i * of.length / count, of.length / count, actual, normal});
    return parts;
}

std::vector<Stretch> parts_of_measure(Meter meter)
{
    std::vector<Stretch> parts;
    Units                start = 0;
    for (const int group : groups_of(meter)) {
        parts.push_back({start, group * unit_of(meter)});
        start += parts.back().length;
    }
    return parts;
}

// What is to be divided, and what was found.
struct Search {
    Meter                   meter;
    std::span<const double> times;
    std::vector<Tuplet>     tuplets;
    std::vector<Units>      found; // -1: none yet
};

// times inside a stretch, by their indices; those on its ends are taken out
struct Inner {
    std::size_t begin;
    std::size_t end;

    [[nodiscard]] std::size_t size() const { return end - begin; }
};

Inner inner_of(const Search &search, const Stretch &stretch)
{
    const auto from = std::upper_bound(search.times.begin(), search.times.end(), static_cast<double>(stretch.start) + CLOSE);
    const auto to   = std::lower_bound(from, search.times.end(), static_cast<double>(stretch.end()) - CLOSE);
    return {static_cast<std::size_t>(from - search.times.begin()), static_cast<std::size_t>(to - search.times.begin())};
}

// whether all times begin a part when a stretch has parts of one length
bool all_on(const Search &search, Inner inner, Units start, Units part)
{
    const double most = part >= QUARTER / 8 ? CLOSE : EXACT * QUARTER;
    for (std::size_t i = inner.begin; i < inner.end; ++i) {
        const double offset = search.times[i] - static_cast<double>(start);
        const double parts  = std::round(offset / static_cast<double>(part));
        if (std::fabs(offset - parts * static_cast<double>(part)) > most)
            return false;
    }
    return true;
}

void put_on(Search &search, Inner inner, Units start, Units part)
{
    for (std::size_t i = inner.begin; i < inner.end; ++i)
        search.found[i] = start + part * std::llround((search.times[i] - static_cast<double>(start)) / static_cast<double>(part));
}

bool is_plain(Search &search, Inner inner, const Stretch &stretch)
{
    for (const Units part : {QUARTER / 4, QUARTER / 8, SHORTEST}) {
        if (!all_on(search, inner, 0, part) || stretch.nominal() < part)
            continue;
        put_on(search, inner, 0, part);
        return true;
    }
    return false;
}

// into how many halves the parts of a tuplet of that length may be divided; -1: there is none so long
int most_halvings(Units length)
{
    if (length > 4 * QUARTER)
        return -1;
    return length == 4 * QUARTER ? 0 : length == 2 * QUARTER ? 1 : 3;
}

bool take_tuplet(Search &search, Inner inner, const Stretch &stretch)
{
    if (stretch.length == 4 * QUARTER && inner.size() < 2)
        return false;
    for (int halvings = 0; halvings <= most_halvings(stretch.length); ++halvings)
        for (const TupletKind kind : KINDS) {
            const Units part = stretch.length / kind.actual >> halvings;
            if (part < FINEST || stretch.length % kind.actual != 0 || !all_on(search, inner, stretch.start, part))
                continue;
            put_on(search, inner, stretch.start, part);
            const auto odd  = std::count_if(search.found.begin() + static_cast<std::ptrdiff_t>(inner.begin),
                                            search.found.begin() + static_cast<std::ptrdiff_t>(inner.end), [&](Units time) {
                                               return (time - stretch.start) % (stretch.length / kind.actual) != 0;
                                           });
            const bool six  = kind.actual == 3 && halvings == 1 && odd > 1;
            const auto used = six ? SEXTUPLE : kind;
            search.tuplets.push_back({stretch.start, stretch.length, used.actual, used.normal});
            return true;
        }
    return false;
}

// two triplets of sixteenths make a sextuplet
void join_triplets(Search &search, const Stretch &stretch, std::size_t first)
{
    const std::size_t count = search.tuplets.size() - first;
    if (stretch.length != QUARTER || count != 2)
        return;
    for (std::size_t i = first; i < search.tuplets.size(); ++i)
        if (search.tuplets[i].actual != 3 || search.tuplets[i].length != stretch.length / 2)
            return;
    search.tuplets.resize(first);
    search.tuplets.push_back({stretch.start, stretch.length, SEXTUPLE.actual, SEXTUPLE.normal});
}

bool solve(Search &search, const Stretch &stretch);

bool solve_parts(Search &search, const std::vector<Stretch> &parts)
{
    return !parts.empty() && std::all_of(parts.begin(), parts.end(), [&](const Stretch &part) { return solve(search, part); });
}

bool solve_halves(Search &search, const Stretch &stretch)
{
    const std::size_t        first = search.tuplets.size();
    const std::vector<Units> found = search.found;
    if (solve_parts(search, parts_of(stretch, search.meter, {}))) {
        join_triplets(search, stretch, first);
        return true;
    }
    search.tuplets.resize(first);
    search.found = found;
    return false;
}

void put_ends(Search &search, const Stretch &stretch)
{
    for (const Units at : {stretch.start, stretch.end()}) {
        const auto from = std::lower_bound(search.times.begin(), search.times.end(), static_cast<double>(at) - CLOSE);
        for (auto time = from; time != search.times.end() && *time <= static_cast<double>(at) + CLOSE; ++time)
            search.found[static_cast<std::size_t>(time - search.times.begin())] = at;
    }
}

bool solve(Search &search, const Stretch &stretch)
{
    const Inner inner = inner_of(search, stretch);
    put_ends(search, stretch);
    if (inner.size() == 0 || is_plain(search, inner, stretch))
        return true;
    if (!is_power(stretch.nominal()))
        return solve_parts(search, parts_of(stretch, search.meter, {}));
    if (stretch.length < QUARTER / 8)
        return false;
    const double middle      = static_cast<double>(stretch.start) + static_cast<double>(stretch.length) / 2.0;
    const bool   middle_used = std::any_of(search.times.begin() + static_cast<std::ptrdiff_t>(inner.begin),
                                           search.times.begin() + static_cast<std::ptrdiff_t>(inner.end),
                                           [middle](double time) { return std::fabs(time - middle) <= CLOSE; });
    if (middle_used)
        return solve_halves(search, stretch) || take_tuplet(search, inner, stretch);
    return take_tuplet(search, inner, stretch) || solve_halves(search, stretch);
}

} // namespace

Units measure_of(Meter meter) { return meter.beats * unit_of(meter); }

bool is_compound(Meter meter) { return meter.unit >= 8 && meter.beats % 3 == 0; }

std::vector<Units> beats_of(Meter meter)
{
    std::vector<Units> beats;
    const bool         even  = meter.unit <= 4;
    Units              start = 0;
    for (const int group : groups_of(meter)) {
        const Units length = group * unit_of(meter);
        for (Units inner = 0; inner < length; inner += even ? unit_of(meter) : length)
            beats.push_back(start + inner);
        start += length;
    }
    return beats;
}

std::vector<Stretch> parts_of(const Stretch &stretch, Meter meter, std::span<const Tuplet> tuplets)
{
    if (stretch.actual == 1) {
        const auto at = std::lower_bound(tuplets.begin(), tuplets.end(), stretch.start,
                                         [](const Tuplet &tuplet, Units start) { return tuplet.start < start; });
        if (at != tuplets.end() && at->start == stretch.start && at->length == stretch.length)
            return even_parts(stretch, at->actual, at->actual, at->normal);
    }
    const Units nominal = stretch.nominal();
    if (stretch.actual == 1 && stretch.start == 0 && stretch.length == measure_of(meter) && groups_of(meter).size() > 1)
        return parts_of_measure(meter);
    if (nominal <= SHORTEST)
        return {};
    return even_parts(stretch, is_power(nominal) ? 2 : 3, stretch.actual, stretch.normal);
}

Division divide(Meter meter, std::span<const double> times)
{
    Search   search{meter, times, {}, std::vector<Units>(times.size(), -1)};
    Division division{solve(search, {0, measure_of(meter)}), 0, 0.0, std::move(search.tuplets), std::move(search.found)};
    if (division.fits)
        return division;
    for (std::size_t i = 0; i < times.size(); ++i)
        if (const double distance = distance_from_usual(times[i]); distance > division.distance) {
            division.distance = distance;
            division.astray   = i;
        }
    return division;
}

double distance_from_usual(double units)
{
    double least = QUARTER;
    for (const Units part : {QUARTER / 8, QUARTER / 6, QUARTER / 5, QUARTER / 7})
        least = std::min(least, std::fabs(units - static_cast<double>(part) * std::round(units / static_cast<double>(part))));
    return least / static_cast<double>(QUARTER);
}

} // namespace orlo::exporting

// A chord is written with one value where that shows the beats, else it is cut where a part of the measure begins; each cut makes a
// shorter stretch, down to one that is a value.

#include "export/notation.h"

#include <algorithm>
#include <bit>

namespace orlo::exporting {
namespace {

constexpr int LONGEST_VALUE = 8; // a breve

// the value of a length, or none
bool set_value(Sign &sign, Units nominal)
{
    if (nominal <= 0 || nominal % SHORTEST != 0)
        return false;
    const auto parts  = static_cast<std::uint64_t>(nominal / SHORTEST);
    const bool dotted = parts % 3 == 0 && std::has_single_bit(parts / 3) && parts > 3;
    if (!dotted && !std::has_single_bit(parts))
        return false;
    sign.dots  = dotted ? 1 : 0;
    sign.value = std::countr_zero(dotted ? parts / 3 * 2 : parts);
    return sign.value <= LONGEST_VALUE;
}

// A measure of a voice, and what is written of it.
struct Layout {
    Meter                   meter;
    std::span<const Tuplet> tuplets;
    std::vector<Sign>       signs;
};

struct Piece {
    Units               begin;
    Units               end;
    const WrittenChord *chord; // none: a rest
};

// parts of a stretch that a piece begins and ends in
struct Crossed {
    const Stretch *first;
    const Stretch *last;
};

Crossed crossed_by(const std::vector<Stretch> &parts, const Piece &piece)
{
    const Stretch *first =
        &*std::find_if(parts.begin(), parts.end(), [&](const Stretch &part) { return piece.begin < part.end(); });
    const Stretch *last = &*std::find_if(parts.begin(), parts.end(), [&](const Stretch &part) { return piece.end <= part.end(); });
    return {first, last};
}

bool is_inside(const Tuplet &tuplet, Units time) { return tuplet.start < time && time < tuplet.start + tuplet.length; }

// whether a value over several parts of a stretch shows where they begin
bool is_readable(const Layout &layout, const Stretch &of, Crossed crossed, const Piece &piece, bool halves)
{
    for (const Tuplet &tuplet : layout.tuplets)
        if (of.actual == 1 && (is_inside(tuplet, piece.begin) || is_inside(tuplet, piece.end)))
            return false;
    const Stretch &first  = *crossed.first;
    const Stretch &last   = *crossed.last;
    const bool     begins = piece.begin == first.start;
    const bool     ends   = piece.end == last.end();
    if (begins && ends)
        return piece.chord != nullptr || of.actual > 1;
    if (piece.chord == nullptr || &last != &first + 1 || first.length != last.length)
        return false;
    const bool half_begins = piece.begin == first.start + first.length / 2;
    const bool half_ends   = piece.end == last.start + last.length / 2;
    return (begins && half_ends) || (halves && half_begins && (ends || half_ends));
}

void put(Layout &layout, const Stretch &of, const Piece &piece);

void put_sign(Layout &layout, const Stretch &of, const Piece &piece, Sign sign)
{
    sign.start  = piece.begin;
    sign.length = piece.end - piece.begin;
    sign.actual = of.actual;
    sign.normal = of.normal;
    sign.chord  = piece.chord;
    layout.signs.push_back(sign);
}

void put_crossing(Layout &layout, const Stretch &of, const std::vector<Stretch> &parts, const Piece &piece)
{
    const Crossed  crossed = crossed_by(parts, piece);
    const Stretch &first   = *crossed.first;
    const Stretch &last    = *crossed.last;
    if (&first == &last) {
        put(layout, first, piece);
        return;
    }
    Sign        sign{};
    const Units nominal = (piece.end - piece.begin) * first.actual / first.normal;
    if (is_readable(layout, first.actual > 1 ? first : of, crossed, piece, parts.size() == 2) && set_value(sign, nominal)) {
        put_sign(layout, first, piece, sign);
        return;
    }
    const Units cut = piece.begin == first.start ? last.start : first.end();
    put(layout, of, {piece.begin, cut, piece.chord});
    put(layout, of, {cut, piece.end, piece.chord});
}

void put(Layout &layout, const Stretch &of, const Piece &piece)
{
    Sign sign{};
    if (piece.begin == of.start && piece.end == of.end() && set_value(sign, of.nominal())) {
        put_sign(layout, of, piece, sign);
        return;
    }
    put_crossing(layout, of, parts_of(of, layout.meter, layout.tuplets), piece);
}

// ---- what signs have in common

void mark_tuplets(Layout &layout)
{
    for (const Tuplet &tuplet : layout.tuplets) {
        const auto in    = [&tuplet](const Sign &sign) { return sign.start >= tuplet.start; };
        const auto first = std::find_if(layout.signs.begin(), layout.signs.end(), in);
        const auto behind =
            std::find_if(first, layout.signs.end(), [&](const Sign &sign) { return sign.start >= tuplet.start + tuplet.length; });
        first->first_of_tuplet       = true;
        (behind - 1)->last_of_tuplet = true;
    }
}

void mark_ties(Layout &layout, Units begin)
{
    for (Sign &sign : layout.signs)
        if (sign.chord != nullptr) {
            sign.from_tie = begin + sign.start > sign.chord->start;
            sign.to_tie   = begin + sign.start + sign.length < sign.chord->end;
        }
}

int beams_of(const Sign &sign) { return sign.chord == nullptr ? 0 : std::max(QUARTER_VALUE - sign.value, 0); }

// from one note of a group to the last
void put_beams(std::vector<Sign> &signs, std::size_t first, std::size_t end)
{
    for (std::size_t i = first; i < end; ++i)
        for (int level = 0; level < beams_of(signs[i]); ++level) {
            const bool before = i > first && beams_of(signs[i - 1]) > level;
            const bool behind = i + 1 < end && beams_of(signs[i + 1]) > level;
            Beam      &beam   = signs[i].beams[static_cast<std::size_t>(level)];
            if (before)
                beam = behind ? Beam::on : Beam::end;
            else if (behind)
                beam = Beam::begin;
            else
                beam = i > first ? Beam::backward : Beam::forward;
        }
}

// notes of one beat or one tuplet
void mark_beams(Layout &layout)
{
    const std::vector<Units> beats = beats_of(layout.meter);
    const auto               group = [&](const Sign &sign) {
        for (const Tuplet &tuplet : layout.tuplets)
            if (sign.start >= tuplet.start && sign.start < tuplet.start + tuplet.length)
                return tuplet.start * 2 + 1;
        return *(std::upper_bound(beats.begin(), beats.end(), sign.start) - 1) * 2;
    };
    for (std::size_t first = 0; first < layout.signs.size();) {
        std::size_t end = first + 1;
        while (end < layout.signs.size() && beams_of(layout.signs[first]) > 0 && beams_of(layout.signs[end]) > 0 &&
               group(layout.signs[end]) == group(layout.signs[first]))
            ++end;
        if (end > first + 1)
            put_beams(layout.signs, first, end);
        first = end;
    }
}

std::vector<Tuplet> tuplets_in(const WrittenVoice &voice, Units begin, Units end, Reading &at)
{
    std::vector<Tuplet> tuplets;
    for (; at.tuplet < voice.tuplets.size() && voice.tuplets[at.tuplet].start < end; ++at.tuplet) {
        tuplets.push_back(voice.tuplets[at.tuplet]);
        tuplets.back().start -= begin;
    }
    return tuplets;
}

} // namespace

bool has_notes(const WrittenVoice &voice, Meter meter, std::int64_t measure, const Reading &at)
{
    return at.chord < voice.chords.size() && voice.chords[at.chord].start < (measure + 1) * measure_of(meter);
}

std::vector<Sign> signs_of(const WrittenVoice &voice, Meter meter, std::int64_t measure, Reading &at)
{
    const Units               length  = measure_of(meter);
    const Units               begin   = measure * length;
    const std::vector<Tuplet> tuplets = tuplets_in(voice, begin, begin + length, at);
    Layout                    layout{meter, tuplets, {}};
    if (!has_notes(voice, meter, measure, at)) {
        Sign rest{};
        rest.length        = length;
        rest.whole_measure = true;
        return {rest};
    }
    const Stretch whole{0, length};
    Units         now = 0;
    while (has_notes(voice, meter, measure, at)) { // each round but the last goes to the next chord
        const WrittenChord &chord = voice.chords[at.chord];
        if (chord.start - begin > now)
            put(layout, whole, {now, chord.start - begin, nullptr});
        now = std::min(chord.end - begin, length);
        put(layout, whole, {std::max<Units>(chord.start - begin, 0), now, &chord});
        if (chord.end > begin + length)
            break;
        ++at.chord;
    }
    if (now < length)
        put(layout, whole, {now, length, nullptr});
    mark_tuplets(layout);
    mark_ties(layout, begin);
    mark_beams(layout);
    return std::move(layout.signs);
}

} // namespace orlo::exporting

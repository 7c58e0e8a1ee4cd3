// Starts decide how a measure is divided; ends take part where they have a time of their own, and go to what is near where they do
// not fit.

#include "export/notation.h"

#include "base/markup.h"

#include <algorithm>
#include <cmath>

namespace orlo::exporting {
namespace {

constexpr double SHORT  = 0.55;  // of what is written: less is staccato
constexpr double FULL   = 0.985; // more is tenuto
constexpr Units  SOFT   = QUARTER / 4;
constexpr double MOSTLY = 0.5; // of the chords of a part: what more of them have need not be marked

// A time that a voice asks for.
struct Time {
    double      units; // from the start of the piece
    std::size_t chord;
    bool        is_end;
    bool        sure;
};

struct Quantizing {
    const Music           &music;
    const Grid            &grid;
    const NotationOptions &options;
    Notation               notation;
    double                 largest = 0.0; // quarters that an end was moved
    std::size_t            moved   = 0;
};

// starts, and ends that are not the next start
std::vector<Time> times_of(const Line &line)
{
    std::vector<Time> times;
    for (std::size_t i = 0; i < line.size(); ++i) {
        times.push_back({line[i].beat * QUARTER, i, false, true});
        if (i + 1 == line.size() || line[i].end < line[i + 1].beat - 2.0 * NEAR)
            times.push_back({line[i].end * QUARTER, i, true, line[i].sure});
    }
    return times;
}

std::int64_t measure_at(const Time &time, Meter meter)
{
    return static_cast<std::int64_t>(std::floor((time.units + CLOSE) / static_cast<double>(measure_of(meter))));
}

// the nearest time that a divided measure has for an end, behind a start in it
Units soft_end(double units, Units after, const std::vector<Tuplet> &tuplets)
{
    const auto inside = [&tuplets](double at) {
        return std::find_if(tuplets.begin(), tuplets.end(), [at](const Tuplet &tuplet) {
            return static_cast<double>(tuplet.start) < at && at < static_cast<double>(tuplet.start + tuplet.length);
        });
    };
    for (double at = units;; at = static_cast<double>(after + SHORTEST)) { // the second round ends behind the start
        const auto  tuplet = inside(at);
        const Units start  = tuplet == tuplets.end() ? 0 : tuplet->start;
        const Units part   = tuplet == tuplets.end() ? SOFT : tuplet->length / tuplet->actual;
        const auto  below  = static_cast<Units>(std::floor((at - static_cast<double>(start)) / static_cast<double>(part)));
        const Units lower  = start + below * part;
        const Units nearer = at - static_cast<double>(lower) < static_cast<double>(part) / 2.0 ? lower : lower + part;
        if (nearer > after)
            return nearer;
        if (lower + part > after)
            return lower + part;
    }
}

// What one measure of a voice asks for.
struct Bar {
    Units             start;
    std::vector<Time> times;
};

void take_tuplets(WrittenVoice &voice, const Bar &bar, const Division &division)
{
    for (Tuplet tuplet : division.tuplets) {
        tuplet.start += bar.start;
        voice.tuplets.push_back(tuplet);
    }
}

Division divide_bar(const Quantizing &to, const Bar &bar, bool starts_only)
{
    std::vector<double> times;
    for (const Time &time : bar.times)
        if (!time.is_end || (time.sure && !starts_only))
            times.push_back(time.units - static_cast<double>(bar.start));
    return divide(to.options.meter, times);
}

void set_time(WrittenVoice &voice, const Time &time, Units units)
{
    if (time.is_end)
        voice.chords[time.chord].end = units;
    else
        voice.chords[time.chord].start = units;
}

// false: its starts fit no division
bool write_bar(Quantizing &to, WrittenVoice &voice, const Bar &bar)
{
    Division   division    = divide_bar(to, bar, false);
    const bool starts_only = !division.fits;
    if (starts_only)
        division = divide_bar(to, bar, true);
    if (!division.fits)
        return false;
    take_tuplets(voice, bar, division);
    std::size_t next = 0;
    for (const Time &time : bar.times)
        if (!time.is_end || (time.sure && !starts_only))
            set_time(voice, time, bar.start + division.times[next++]);
    for (const Time &time : bar.times) {
        if (!time.is_end || (time.sure && !starts_only))
            continue;
        const Units  end = bar.start + soft_end(time.units - static_cast<double>(bar.start),
                                                voice.chords[time.chord].start - bar.start, division.tuplets);
        const double off = std::fabs(static_cast<double>(end) - time.units) / QUARTER;
        to.moved += off > NEAR ? 1U : 0U;
        to.largest = std::max(to.largest, off);
        set_time(voice, time, end);
    }
    return true;
}

// a chord without an end of its own ends with the next one; none reaches into it
void close_gaps(WrittenVoice &voice)
{
    for (std::size_t i = 0; i + 1 < voice.chords.size(); ++i)
        if (WrittenChord &chord = voice.chords[i]; chord.end < 0 || chord.end > voice.chords[i + 1].start)
            chord.end = voice.chords[i + 1].start;
}

bool write_voice(Quantizing &to, const Line &line, WrittenVoice &voice)
{
    for (const Chord &chord : line)
        voice.chords.push_back({-1, -1, Articulation::none, chord.notes});
    const std::vector<Time> times = times_of(line);
    const Meter             meter = to.options.meter;
    for (std::size_t first = 0; first < times.size();) {
        const std::int64_t measure = measure_at(times[first], meter);
        Bar                bar{measure * measure_of(meter), {}};
        for (; first < times.size() && measure_at(times[first], meter) == measure; ++first)
            bar.times.push_back(times[first]);
        if (!write_bar(to, voice, bar))
            return false;
    }
    close_gaps(voice);
    return true;
}

// ---- how notes are played

Articulation articulation_of(const Quantizing &to, const Chord &chord, const WrittenChord &written)
{
    const double sounds = chord.sound - chord.beat;
    const double share  = sounds * QUARTER / static_cast<double>(written.end - written.start);
    return share < SHORT                          ? Articulation::staccato
           : share > FULL && !to.options.sounding ? Articulation::tenuto
                                                  : Articulation::none;
}

void mark_chords(Quantizing &to, const Staff &staff, WrittenStaff &written)
{
    for (std::size_t v = 0; v < staff.voices.size(); ++v)
        for (std::size_t i = 0; i < staff.voices[v].size(); ++i) {
            WrittenChord &chord = written.voices[v].chords[i];
            chord.articulation  = articulation_of(to, staff.voices[v][i], chord);
        }
}

// what most chords of a part have is not marked but said
void say_articulation(Quantizing &to, std::size_t part)
{
    std::size_t all = 0;
    std::size_t marked[3]{};
    for (const WrittenStaff &staff : to.notation.staves)
        if (staff.part == part)
            for (const WrittenVoice &voice : staff.voices)
                for (const WrittenChord &chord : voice.chords) {
                    ++all;
                    ++marked[static_cast<int>(chord.articulation)];
                }
    for (const Articulation usual : {Articulation::staccato, Articulation::tenuto}) {
        if (static_cast<double>(marked[static_cast<int>(usual)]) <= MOSTLY * static_cast<double>(all))
            continue;
        for (WrittenStaff &staff : to.notation.staves)
            if (staff.part == part) {
                staff.usual = usual;
                for (WrittenVoice &voice : staff.voices)
                    for (WrittenChord &chord : voice.chords)
                        if (chord.articulation == usual)
                            chord.articulation = Articulation::none;
            }
        to.notation.said.push_back(joined({name_of(to.music.parts[part]), ": most notes sound ",
                                           usual == Articulation::tenuto ? "full" : "less than about half of their length",
                                           ", and are not marked ", usual == Articulation::tenuto ? "tenuto" : "staccato"}));
    }
}

// ---- bounds

std::string count_measures(Quantizing &to)
{
    Units end = 0;
    for (const WrittenStaff &staff : to.notation.staves)
        for (const WrittenVoice &voice : staff.voices)
            end = std::max(end, voice.chords.back().end);
    const Units length   = measure_of(to.options.meter);
    to.notation.measures = (end + length - 1) / length;
    if (to.notation.measures > MOST_MEASURES)
        return joined({"it has ", count_text(static_cast<std::size_t>(to.notation.measures)), " measures; ",
                       count_text(MOST_MEASURES), " are the most"});
    if (to.notation.measures * static_cast<std::int64_t>(to.notation.staves.size()) > MOST_BARS)
        return joined({"it has ", count_text(static_cast<std::size_t>(to.notation.measures)), " measures on ",
                       std::to_string(to.notation.staves.size()), " staves; ", count_text(MOST_BARS),
                       " measures of all staves are the most"});
    std::int64_t signs = 0; // at least
    for (const WrittenStaff &staff : to.notation.staves)
        for (const WrittenVoice &voice : staff.voices)
            for (const WrittenChord &chord : voice.chords)
                signs += static_cast<std::int64_t>(chord.notes.size()) * (1 + (chord.end - chord.start) / length);
    return signs > MOST_SIGNS ? joined({"it needs more than ", count_text(MOST_SIGNS), " written notes"}) : std::string{};
}

void say_ends(Quantizing &to)
{
    if (to.moved > 0)
        to.notation.said.push_back(
            joined({counted(to.moved, "note"), to.moved == 1 ? " ends" : " end",
                    " off the grid, and the nearest time was written, up to ", number_text(to.largest, 3), " beats away"}));
}

} // namespace

Notation notation_of(const Music &music, const Grid &grid, const NotationOptions &options)
{
    Quantizing to{music, grid, options, {}};
    to.notation.meter = options.meter;
    Staves staves     = staves_of(music, grid, options);
    to.notation.said  = std::move(staves.said);
    to.notation.fault = std::move(staves.fault);
    if (!to.notation.fault.empty())
        return std::move(to.notation);
    for (const Staff &staff : staves.staves) {
        WrittenStaff &written = to.notation.staves.emplace_back();
        written.part          = staff.part;
        written.number        = staff.number;
        for (const Line &line : staff.voices)
            if (!write_voice(to, line, written.voices.emplace_back())) {
                to.notation.fault = joined({"voices of ", name_of(music.parts[staff.part]),
                                            " meet within a beat in divisions that have nothing in common; --grid 16 takes the "
                                            "nearest sixteenths"});
                return std::move(to.notation);
            }
        mark_chords(to, staff, written);
    }
    to.notation.fault = count_measures(to);
    if (!to.notation.fault.empty())
        return std::move(to.notation);
    for (std::size_t part = 0; part < music.parts.size(); ++part)
        say_articulation(to, part);
    say_ends(to);
    return std::move(to.notation);
}

} // namespace orlo::exporting

// The notes of a block follow each other by its intervals and are one line, however long they sound; those of a score are a line as
// long as none sounds far into the next one. Lines that overlap become voices.

#include "export/voices.h"

#include "base/markup.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace orlo::exporting {
namespace {

constexpr double TOGETHER  = 2.0 * NEAR; // quarters: what starts so near is a chord
constexpr double LEAST     = 1.0 / 32;   // quarters of a note, however short it sounds
constexpr double LEGATO    = 0.15;       // of a note, that it may sound into the next one of its line
constexpr double FAR       = 2.0;        // lengths of a note of a score: a rest follows when the next one is further off
constexpr double LAST_BEAT = 1e9;        // quarters; far more than there can be measures
constexpr int    WHOLE     = 4;          // quarters

// A note as it stands on the grid.
struct Placed {
    std::size_t note;
    double      beat;
    double      end; // of what is written, as far as the note knows
    double      sound;
    bool        sure;
};

struct Placing {
    const Music           &music;
    const Grid            &grid;
    const NotationOptions &options;
    const bool             all_moved; // to the grid
    Staves                 staves          = {};
    double                 largest_beats   = 0.0; // how far the grid has moved a start
    double                 largest_seconds = 0.0;
    std::size_t            moved           = 0;
};

double beat_of(const Placing &placing, const Note &note)
{
    return placing.options.own_beats && !std::isnan(note.beat) ? note.beat : beat_at(placing.grid, note.start);
}

// times that notes may end at when they end as they sound: eighths of a quarter and triplets
bool is_usual(double beat)
{
    for (const double part : {8.0, 6.0})
        if (std::fabs(beat * part - std::round(beat * part)) <= NEAR * part)
            return true;
    return false;
}

Placed placed(const Placing &placing, std::size_t index)
{
    const Note &note = placing.music.notes[index];
    Placed      of{index, beat_of(placing, note), std::numeric_limits<double>::infinity(), 0.0, true};
    const bool  own = placing.options.own_beats && !std::isnan(note.beats);
    of.sound        = own ? note.beat + note.beats : beat_at(placing.grid, note.start + note.duration);
    if (placing.options.sounding) {
        of.end  = std::max(of.sound, of.beat + LEAST);
        of.sure = is_usual(of.end) && of.sound - of.beat >= LEAST;
    } else if (note.interval > 0.0) { // none or 0: the next start
        of.end = of.beat + note.interval;
    }
    return of;
}

// ---- what has no rhythm

// the first note that no division of its measure has
struct Astray {
    std::size_t note;
    double      distance;
};

std::optional<Astray> astray(const Placing &placing, const std::vector<Placed> &notes)
{
    const Meter         meter   = placing.options.meter;
    const auto          measure = static_cast<double>(measure_of(meter));
    std::vector<double> times;
    std::size_t         first = 0;
    for (std::size_t i = 0; i <= notes.size(); ++i) {
        const double number = i < notes.size() ? std::floor((notes[i].beat * QUARTER + CLOSE) / measure) : -1.0;
        if (i > first && (i == notes.size() || number != std::floor((notes[first].beat * QUARTER + CLOSE) / measure))) {
            const Division division = divide(meter, times);
            if (!division.fits)
                return Astray{notes[first + division.astray].note, division.distance};
            first = i;
            times.clear();
        }
        if (i < notes.size())
            times.push_back(notes[i].beat * QUARTER - number * measure);
    }
    return std::nullopt;
}

std::string place_of(const Music &music, const Note &note)
{
    std::string text;
    if (note.line > 0)
        text = joined({", line ", std::to_string(note.line)});
    if (note.block != NONE)
        text += joined({", block ", std::to_string(music.blocks[static_cast<std::size_t>(note.block)].number)});
    return text;
}

std::string fault_of(const Placing &placing, Astray found)
{
    const Note       &note  = placing.music.notes[found.note];
    const std::string about = joined({"the note at ", number_text(note.start), " s (beat ", number_text(beat_of(placing, note)),
                                      place_of(placing.music, note), ") has no rhythm: "});
    const std::string why   = found.distance > NEAR
                                  ? joined({"the nearest 32nd note or tuplet is ", number_text(found.distance, 2), " beats off"})
                                  : std::string{"no division of its beat has all that begins there"};
    const bool        others =
        !placing.options.own_beats && !std::isnan(note.beat) && std::fabs(beat_of(placing, note) - note.beat) > FITS;
    return joined({about, why, "; --grid 16 takes the nearest sixteenths", others ? ", --map own the beats of each block" : ""});
}

// to the nearest parts of the grid
void move_to_grid(Placing &placing, std::vector<Placed> &notes)
{
    const double part = static_cast<double>(WHOLE) / *placing.options.grid;
    for (Placed &note : notes) {
        const double before = note.beat;
        note.beat           = part * std::round(before / part);
        note.end            = std::max(part * std::round(note.end / part), note.beat + part);
        note.sure           = true;
        const double error  = std::fabs(note.beat - before);
        placing.moved += error > NEAR ? 1U : 0U;
        if (error <= placing.largest_beats)
            continue;
        placing.largest_beats   = error;
        placing.largest_seconds = std::fabs(second_at(placing.grid, note.beat) - second_at(placing.grid, before));
    }
}

// puts notes in the order of their starts, on times that measures have
void give_rhythm(Placing &placing, std::vector<Placed> &notes)
{
    std::stable_sort(notes.begin(), notes.end(), [](const Placed &a, const Placed &b) { return a.beat < b.beat; });
    for (const Placed &note : notes)
        if (!(note.beat > -NEAR && std::max(note.beat, note.sound) < LAST_BEAT)) {
            placing.staves.fault = joined({"the note at ", number_text(placing.music.notes[note.note].start),
                                           " s begins before 0 or ends far behind all measures"});
            return;
        }
    if (const std::optional<Astray> found = astray(placing, notes); !found && !placing.all_moved)
        return;
    else if (found && !placing.options.grid)
        placing.staves.fault = fault_of(placing, *found);
    else
        move_to_grid(placing, notes);
}

// ---- lines

// notes of one start are a chord
Line line_of(const std::vector<Placed> &notes)
{
    Line line;
    for (const Placed &note : notes) {
        if (line.empty() || note.beat - line.back().beat > TOGETHER) {
            line.push_back({note.beat, note.end, note.sound, note.sure, {note.note}});
            continue;
        }
        Chord &chord = line.back();
        chord.end    = std::max(chord.end, note.end);
        chord.sound  = std::max(chord.sound, note.sound);
        chord.notes.push_back(note.note);
    }
    return line;
}

// notes of one start and one end are a chord
std::vector<Chord> chords_of(std::vector<Placed> notes)
{
    std::vector<Chord> chords;
    for (std::size_t first = 0; first < notes.size();) {
        std::size_t end = first;
        while (end < notes.size() && notes[end].beat - notes[first].beat <= TOGETHER)
            ++end;
        std::stable_sort(notes.begin() + static_cast<std::ptrdiff_t>(first), notes.begin() + static_cast<std::ptrdiff_t>(end),
                         [](const Placed &a, const Placed &b) { return a.sound < b.sound; });
        const std::size_t before = chords.size();
        for (; first < end; ++first) {
            const Placed &note = notes[first];
            if (chords.size() == before || note.sound - chords.back().sound > TOGETHER)
                chords.push_back({note.beat, note.end, note.sound, note.sure, {note.note}});
            else
                chords.back().notes.push_back(note.note);
        }
    }
    return chords;
}

// The lines of a score: a chord goes to the first line in which nothing sounds far beyond its start.
std::vector<Line> lines_of(std::vector<Chord> chords)
{
    std::vector<Line> lines;
    for (Chord &chord : chords) {
        const auto free = std::find_if(lines.begin(), lines.end(), [&](const Line &line) {
            const Chord &last = line.back();
            return last.beat < chord.beat - NEAR && last.sound - chord.beat <= std::max(NEAR, LEGATO * (last.sound - last.beat));
        });
        if (free != lines.end())
            free->push_back(std::move(chord));
        else if (lines.size() < MOST_STAVES * VOICES)
            lines.push_back({std::move(chord)});
        else
            return {};
    }
    return lines;
}

// In a score nothing tells a rest from a short note: one that is followed by more than its own length is as long as it sounds.
void end_chords(Line &line, bool of_block)
{
    for (std::size_t i = 0; i < line.size(); ++i) {
        Chord       &chord = line[i];
        const double next  = i + 1 < line.size() ? line[i + 1].beat : std::numeric_limits<double>::infinity();
        const bool   rest  = !of_block && next - chord.beat > FAR * (chord.sound - chord.beat) + NEAR;
        if (rest || (std::isinf(chord.end) && std::isinf(next))) {
            chord.end  = chord.sound;
            chord.sure = is_usual(chord.end);
        }
        chord.end = std::max(chord.end, chord.beat + LEAST);
        chord.end = chord.end > next - TOGETHER ? next : chord.end;
    }
}

std::vector<Line> lines_of_group(const Placing &placing, std::vector<Placed> notes)
{
    const bool        of_block = placing.music.notes[notes.front().note].block != NONE;
    std::vector<Line> lines;
    if (placing.options.sounding) {
        for (Chord &chord : chords_of(std::move(notes)))
            lines.push_back({std::move(chord)});
        return lines;
    }
    if (of_block)
        lines.push_back(line_of(notes));
    else
        lines = lines_of(chords_of(std::move(notes)));
    for (Line &line : lines)
        end_chords(line, of_block);
    return lines;
}

std::vector<Line> lines_of_part(Placing &placing, std::vector<std::vector<Placed>> groups)
{
    std::vector<Line> lines;
    for (std::vector<Placed> &notes : groups) {
        give_rhythm(placing, notes);
        if (!placing.staves.fault.empty())
            return {};
        for (Line &line : lines_of_group(placing, std::move(notes)))
            lines.push_back(std::move(line));
    }
    return lines;
}

// ---- voices

double height_of(const Music &music, const std::vector<Line> &voice)
{
    double      sum   = 0.0;
    std::size_t count = 0;
    for (const Line &line : voice)
        for (const Chord &chord : line)
            for (const std::size_t note : chord.notes)
                if (const double pitch = pitch_of(music, music.notes[note]); std::isfinite(pitch)) {
                    sum += pitch;
                    ++count;
                }
    return count == 0 ? 0.0 : sum / static_cast<double>(count);
}

using Voices = std::vector<std::vector<Line>>;

// the voices of lines that hang together, the highest first, behind those of the staves that are there
void add_voices(const Music &music, Voices cluster, Voices &all)
{
    std::vector<std::pair<double, std::size_t>> order;
    for (std::size_t i = 0; i < cluster.size(); ++i)
        order.emplace_back(-height_of(music, cluster[i]), i);
    std::sort(order.begin(), order.end());
    all.resize(std::max(all.size(), cluster.size()));
    for (std::size_t i = 0; i < order.size(); ++i)
        for (Line &line : cluster[order[i].second])
            all[i].push_back(std::move(line));
}

// false: there are too many at a time
bool take_line(Voices &cluster, Line &line)
{
    const auto free = std::find_if(cluster.begin(), cluster.end(), [&line](const std::vector<Line> &voice) {
        return voice.back().back().end <= line.front().beat + TOGETHER;
    });
    if (free != cluster.end())
        free->push_back(std::move(line));
    else if (cluster.size() < MOST_STAVES * VOICES)
        cluster.push_back({std::move(line)});
    else
        return false;
    return true;
}

bool find_voices(const Music &music, std::vector<Line> lines, Voices &voices)
{
    std::stable_sort(lines.begin(), lines.end(), [](const Line &a, const Line &b) { return a.front().beat < b.front().beat; });
    Voices cluster;
    double end = -LAST_BEAT; // of all lines of the cluster
    for (Line &line : lines) {
        if (line.front().beat >= end - TOGETHER) {
            add_voices(music, std::move(cluster), voices);
            cluster.clear();
        }
        end = std::max(end, line.back().end);
        if (!take_line(cluster, line))
            return false;
    }
    add_voices(music, std::move(cluster), voices);
    return true;
}

void add_staves(Placing &placing, std::size_t part, Voices voices)
{
    const std::size_t count = (voices.size() + VOICES - 1) / VOICES;
    for (std::size_t v = 0; v < voices.size(); ++v) {
        if (v % VOICES == 0)
            placing.staves.staves.push_back({part, v / VOICES, {}});
        Line &line = placing.staves.staves.back().voices.emplace_back();
        for (Line &next : voices[v])
            for (Chord &chord : next)
                line.push_back(std::move(chord));
    }
    if (count > 1)
        placing.staves.said.push_back(joined({name_of(placing.music.parts[part]), " has ", std::to_string(voices.size()),
                                              " voices at a time, and stands on ", std::to_string(count), " staves"}));
}

// notes by part, and there by block
std::vector<std::vector<std::vector<Placed>>> groups_of(const Placing &placing)
{
    std::vector<std::vector<std::vector<Placed>>> groups(placing.music.parts.size());
    std::vector<std::int32_t>                     last(placing.music.parts.size(), NONE - 1); // block of the last note
    for (std::size_t i = 0; i < placing.music.notes.size(); ++i) {
        const Note &note = placing.music.notes[i];
        const auto  part = static_cast<std::size_t>(note.part);
        if (last[part] != note.block)
            groups[part].emplace_back();
        last[part] = note.block;
        groups[part].back().push_back(placed(placing, i));
    }
    return groups;
}

void say_grid(Placing &placing)
{
    if (placing.moved > 0)
        placing.staves.said.push_back(
            joined({counted(placing.moved, "note"), " moved to the grid, up to ", number_text(placing.largest_beats, 3),
                    " beats or ", number_text(placing.largest_seconds, 3), " s"}));
    else if (placing.options.grid)
        placing.staves.said.emplace_back("all notes have a rhythm of their own, and none was moved to the grid");
}

} // namespace

Staves staves_of(const Music &music, const Grid &grid, const NotationOptions &options, bool all_moved)
{
    Placing placing{music, grid, options, all_moved};
    auto    groups = groups_of(placing);
    for (std::size_t part = 0; part < groups.size(); ++part) {
        Voices voices;
        if (groups[part].empty())
            continue;
        auto lines = lines_of_part(placing, std::move(groups[part]));
        if (!placing.staves.fault.empty())
            return std::move(placing.staves);
        if (lines.empty() || !find_voices(music, std::move(lines), voices)) {
            placing.staves.fault =
                joined({name_of(music.parts[part]), " has more than ", std::to_string(MOST_STAVES * VOICES), " voices at a time"});
            return std::move(placing.staves);
        }
        add_staves(placing, part, std::move(voices));
    }
    say_grid(placing);
    return std::move(placing.staves);
}

} // namespace orlo::exporting

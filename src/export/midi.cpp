// The ticks of an onset are reckoned from the tempos as they are written, in whole microseconds, so that nothing adds up: an onset
// is at most half a tick from its time, wherever it stands.

#include "export/midi.h"

#include "base/markup.h"
#include "export/channels.h"
#include "export/midi_track.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace orlo::exporting {
namespace {

constexpr int    TICKS         = 960;      // of a quarter note, if that is fine enough
constexpr int    MOST_TICKS    = 30720;    // the largest multiple of it that a header can hold
constexpr double FINEST_TEMPO  = 1.9;      // seconds of a quarter note up to which half a tick is a millisecond
constexpr double LONGEST_BEAT  = 16777215; // microseconds, 24 bits
constexpr double MICROSECONDS  = 1e6;
constexpr double MOST_TICK     = 4e15; // up to there a double tells ticks apart
constexpr int    KEY_OF_ZERO   = 12;   // of semitone 0, four octaves below middle C
constexpr int    MOST_KEY      = 127;
constexpr int    MOST_VALUE    = 127;
constexpr int    USUAL         = 80; // velocity where nothing tells loud from soft
constexpr int    NO_PITCH      = 60; // key where nothing is a pitch
constexpr int    NAME          = 3;  // kinds of meta events
constexpr int    MARKER        = 6;
constexpr int    PORT          = 0x21;
constexpr int    TEMPO         = 0x51;
constexpr int    METER         = 0x58;
constexpr int    NOTE_OFF      = 0x80; // status bytes
constexpr int    NOTE_ON       = 0x90;
constexpr int    CONTROL       = 0xB0;
constexpr int    PROGRAM       = 0xC0;
constexpr int    BEND          = 0xE0;
constexpr int    SEMITONE_BEND = 8192; // of the whole range either way

std::string big_endian(std::uint64_t number, int bytes)
{
    std::string text;
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        text += static_cast<char>((number >> static_cast<unsigned>(shift)) & 0xFFU);
    return text;
}

// ---- time

// A tempo as it is written, from a tick on.
struct TempoMark {
    std::uint64_t tick;
    double        second;
    std::uint64_t microseconds; // of a quarter note
};

struct Clock {
    int                    division; // ticks of a quarter note
    std::vector<TempoMark> marks;
};

double seconds_of_tick(const Clock &clock, const TempoMark &mark)
{
    return static_cast<double>(mark.microseconds) / MICROSECONDS / clock.division;
}

std::uint64_t tick_at(const Clock &clock, double second)
{
    const auto  later = std::upper_bound(clock.marks.begin() + 1, clock.marks.end(), second,
                                         [](double at, const TempoMark &mark) { return at < mark.second; });
    const auto &mark  = *(later - 1);
    return mark.tick + static_cast<std::uint64_t>(std::llround(std::max(second - mark.second, 0.0) / seconds_of_tick(clock, mark)));
}

// the slowest beat of a grid, in seconds
double longest_beat(const Grid &grid)
{
    double longest = 0.0;
    for (std::size_t i = 0; i + 1 < grid.points.size(); ++i)
        longest = std::max(longest,
                           (grid.points[i + 1].second - grid.points[i].second) / (grid.points[i + 1].beat - grid.points[i].beat));
    return longest;
}

Clock clock_of(const Grid &grid)
{
    Clock clock{TICKS, {}};
    while (longest_beat(grid) > FINEST_TEMPO * clock.division / TICKS && clock.division < MOST_TICKS) // doubles up to the largest
        clock.division *= 2;
    for (std::size_t i = 0; i + 1 < grid.points.size(); ++i) {
        const GridPoint &from  = grid.points[i];
        const GridPoint &to    = grid.points[i + 1];
        const double     beat  = MICROSECONDS * (to.second - from.second) / (to.beat - from.beat);
        const auto       whole = static_cast<std::uint64_t>(std::llround(std::clamp(beat, 1.0, LONGEST_BEAT)));
        if (!clock.marks.empty() && clock.marks.back().microseconds == whole)
            continue;
        const std::uint64_t tick   = clock.marks.empty() ? 0 : tick_at(clock, from.second);
        double              second = 0.0; // of that tick, as it is written
        if (!clock.marks.empty()) {
            const TempoMark &last = clock.marks.back();
            second                = last.second + static_cast<double>(tick - last.tick) * seconds_of_tick(clock, last);
            if (tick == last.tick) { // too short for a tempo of its own
                clock.marks.back().microseconds = whole;
                continue;
            }
        }
        clock.marks.push_back({tick, second, whole});
    }
    return clock;
}

// ---- what a note becomes

struct Loudness {
    const MidiOptions &options;
    double             softest = std::numeric_limits<double>::infinity(); // decibels
    double             loudest = -std::numeric_limits<double>::infinity();
};

int loudness_field(const Loudness &loudness, const Music &music, const Note &note)
{
    if (loudness.options.velocity && loudness.options.velocity->field > 0)
        return loudness.options.velocity->field - 4;
    return field_with(fields_of(music, note), Meaning::amplitude);
}

// decibels of a note; NOTHING where it has none
double decibels_of(const Loudness &loudness, const Music &music, const Note &note)
{
    const double value = value_at(music, note, loudness_field(loudness, music, note));
    if (loudness.options.velocity && loudness.options.velocity->decibels)
        return value;
    return value > 0.0 ? 20.0 * std::log10(value) : NOTHING;
}

Loudness loudness_of(const Music &music, const MidiOptions &options)
{
    Loudness loudness{options};
    for (const Note &note : music.notes) {
        const double decibels = decibels_of(loudness, music, note);
        if (!std::isfinite(decibels))
            continue;
        loudness.softest = std::min(loudness.softest, decibels);
        loudness.loudest = std::max(loudness.loudest, decibels);
    }
    return loudness;
}

int velocity_of(const Loudness &loudness, const Music &music, const Note &note)
{
    const VelocityRule rule     = loudness.options.velocity.value_or(VelocityRule{});
    const double       decibels = decibels_of(loudness, music, note);
    if (!std::isfinite(decibels))
        return USUAL;
    if (!(loudness.loudest > loudness.softest))
        return std::clamp(USUAL, rule.least, rule.greatest);
    const double share = (decibels - loudness.softest) / (loudness.loudest - loudness.softest);
    return static_cast<int>(std::lround(rule.least + share * (rule.greatest - rule.least)));
}

// What is decided of a note before it is written.
struct Sound {
    const Note   *note;
    std::uint64_t on;
    std::uint64_t off;
    int           key;
    int           bend; // -8192 to 8191
    int           velocity;
    Given         given;
    bool          left_out; // another one strikes its key at the same time, and no channel is left
};

// a key and what is left of a pitch; a pitch beyond the keys goes by octaves to the nearest that there is
struct Keyed {
    int    key;
    double cents; // a semitone is 1
    bool   moved;
};

Keyed key_of(double semitones)
{
    double pitch = semitones + KEY_OF_ZERO;
    Keyed  keyed{NO_PITCH, 0.0, false};
    if (!std::isfinite(pitch))
        return keyed;
    keyed.moved = pitch < -0.5 || pitch >= MOST_KEY + 0.5;
    if (keyed.moved) {
        const double octaves = pitch < 0.0 ? std::ceil((-0.5 - pitch) / 12.0) : -std::ceil((pitch - MOST_KEY - 0.5) / 12.0 + 1e-9);
        pitch += 12.0 * octaves;
    }
    keyed.key   = std::clamp(static_cast<int>(std::lround(pitch)), 0, MOST_KEY);
    keyed.cents = pitch - keyed.key;
    return keyed;
}

constexpr double TUNED = 0.0005; // semitones: what lies so near is the key itself

int bend_of(double semitones, int range)
{
    if (std::fabs(semitones) < TUNED)
        return 0;
    return std::clamp(static_cast<int>(std::lround(semitones / range * SEMITONE_BEND)), -SEMITONE_BEND, SEMITONE_BEND - 1);
}

// ---- tracks

struct Range {
    double least;
    double greatest;
};

struct Writer {
    const Music              &music;
    const MidiOptions        &options;
    std::vector<std::string> &said;
    Clock                     clock;
    Loudness                  loudness;
    Channels                  channels;
    std::uint64_t             end       = 0;
    std::size_t               pitchless = 0;
    std::size_t               moved     = 0;
    std::size_t               cut       = 0;
    std::size_t               detuned   = 0;
    std::size_t               left_out  = 0;
    std::map<int, Range>      ranges    = {}; // of the p-fields that are controllers
};

int bend_range(const MidiOptions &options) { return options.mpe ? MPE_RANGE : USUAL_RANGE; }

Sound sound_of(Writer &writer, const Note &note)
{
    const double semitones = pitch_of(writer.music, note);
    const Keyed  keyed     = key_of(semitones);
    writer.pitchless += std::isfinite(semitones) ? 0U : 1U;
    writer.moved += keyed.moved ? 1U : 0U;
    Sound sound{&note,
                tick_at(writer.clock, note.start),
                tick_at(writer.clock, note.start + note.duration),
                keyed.key,
                bend_of(keyed.cents, bend_range(writer.options)),
                velocity_of(writer.loudness, writer.music, note),
                {},
                false};
    sound.off      = std::max(sound.off, sound.on + 1);
    sound.velocity = std::clamp(sound.velocity, 1, MOST_VALUE);
    return sound;
}

// controllers of a note; values from 0 to 1 are spread over all, others are taken as they are
void add_controllers(Writer &writer, MidiTrack &track, const Sound &sound, int channel)
{
    for (const auto &[field, controller] : writer.options.controllers) {
        const double value = value_at(writer.music, *sound.note, field - 4);
        if (!std::isfinite(value))
            continue;
        const auto range = writer.ranges.find(field);
        const bool whole = range == writer.ranges.end() || range->second.greatest > 1.0 || range->second.least < 0.0;
        const long level = std::lround(whole ? value : value * MOST_VALUE);
        add_message(track, sound.on, Rank::setting, CONTROL | channel, controller,
                    static_cast<int>(std::clamp(level, 0L, static_cast<long>(MOST_VALUE))));
    }
}

void add_sound(Writer &writer, MidiTrack &track, const Sound &sound)
{
    const int channel = sound.given.channel;
    add_controllers(writer, track, sound, channel);
    if (sound.given.bent) {
        const int bend = sound.bend + SEMITONE_BEND;
        add_message(track, sound.on, Rank::bend, BEND | channel, bend & MOST_VALUE, bend >> 7U);
    }
    add_message(track, sound.on, Rank::strike, NOTE_ON | channel, sound.key, sound.velocity);
    add_message(track, sound.off, Rank::release, NOTE_OFF | channel, sound.key, 0);
    writer.end = std::max(writer.end, sound.off);
}

// sets the range of bends by its registered parameter
void add_bend_range(MidiTrack &track, int channel, int range)
{
    for (const auto &[controller, value] : {std::pair{101, 0}, {100, 0}, {6, range}, {38, 0}, {101, 127}, {100, 127}})
        add_message(track, 0, Rank::setting, CONTROL | channel, controller, value);
}

// a note of the same key ends where the next one begins on its channel
void end_before(Writer &writer, std::vector<Sound> &sounds, Sound &sound)
{
    if (sound.given.before == NO_NOTE)
        return;
    Sound &before = sounds[sound.given.before];
    if (before.on == sound.on) {
        sound.left_out = true;
        ++writer.left_out;
        return;
    }
    before.off = sound.on;
    ++writer.cut;
}

// the notes of a track in the order of their times, each on a channel
void add_sounds(Writer &writer, MidiTrack &track, std::vector<Sound> &sounds, ChannelUser &user)
{
    const auto earlier = [](const Sound &a, const Sound &b) { return a.on != b.on ? a.on < b.on : a.note < b.note; };
    std::sort(sounds.begin(), sounds.end(), earlier);
    for (std::size_t i = 0; i < sounds.size(); ++i) {
        Sound &sound = sounds[i];
        sound.given  = writer.channels.give(user, i, sound.on, sound.off, sound.key, sound.bend);
        writer.detuned += sound.given.detuned ? 1U : 0U;
        end_before(writer, sounds, sound);
    }
    for (const Sound &sound : sounds) {
        if (sound.left_out)
            continue;
        if (sound.given.first)
            add_bend_range(track, sound.given.channel, bend_range(writer.options));
        add_sound(writer, track, sound);
    }
}

// the notes of a part, or of a block
MidiTrack track_of(Writer &writer, const Part &part, const std::string &name, std::vector<Sound> &sounds, ChannelUser &user)
{
    MidiTrack track;
    add_meta(track, 0, Rank::head, NAME, name);
    if (writer.channels.ports() > 1)
        add_meta(track, 0, Rank::head, PORT, big_endian(user.port, 1));
    const auto program = writer.options.programs.find(part.name);
    if (writer.options.mpe) // the zone of the first channel has all others
        for (const auto &[controller, value] :
             {std::pair{101, 0}, {100, 6}, {6, CHANNELS - 1}, {101, MOST_VALUE}, {100, MOST_VALUE}})
            add_message(track, 0, Rank::setting, CONTROL, controller, value);
    if (program != writer.options.programs.end())
        add_message(track, 0, Rank::setting, PROGRAM | (writer.options.mpe ? 0 : user.own.front()), program->second - 1);
    add_sounds(writer, track, sounds, user);
    return track;
}

MidiTrack conductor_of(const Writer &writer)
{
    MidiTrack track;
    add_meta(track, 0, Rank::head, NAME, writer.music.title);
    int power = 0;
    while (1 << power < writer.options.unit)
        ++power;
    constexpr char CLOCKS[] = {24, 8}; // of a click of the metronome; 32nd notes of a quarter
    add_meta(track, 0, Rank::head, METER,
             std::string{static_cast<char>(writer.options.beats), static_cast<char>(power)} + std::string(CLOCKS, 2));
    for (const TempoMark &mark : writer.clock.marks)
        add_meta(track, mark.tick, Rank::tempo, TEMPO, big_endian(mark.microseconds, 3));
    for (const Block &block : writer.music.blocks) {
        const std::string text = block.comment.empty() ? joined({"block ", std::to_string(block.number)}) : block.comment;
        add_meta(track, tick_at(writer.clock, block.seconds), Rank::marker, MARKER, text);
    }
    return track;
}

ChannelUser user_of(Writer &writer, const Part &part)
{
    if (writer.options.mpe)
        return writer.channels.add_mpe_user();
    const auto wanted = writer.options.channels.find(part.name);
    return writer.channels.add_user(wanted == writer.options.channels.end() ? -1 : wanted->second - 1);
}

std::vector<Sound> sounds_of(Writer &writer, std::int32_t part, std::int32_t block)
{
    std::vector<Sound> sounds;
    for (const Note &note : writer.music.notes)
        if (note.part == part && (block == NONE || note.block == block))
            sounds.push_back(sound_of(writer, note));
    return sounds;
}

void find_ranges(Writer &writer)
{
    for (const auto &[field, controller] : writer.options.controllers)
        for (const Note &note : writer.music.notes) {
            const double value = value_at(writer.music, note, field - 4);
            if (!std::isfinite(value))
                continue;
            const auto [range, is_new] = writer.ranges.try_emplace(field, Range{value, value});
            range->second              = {std::min(range->second.least, value), std::max(range->second.greatest, value)};
        }
}

void add_count(std::vector<std::string> &said, std::size_t count, std::string_view noun, std::string_view rest)
{
    if (count > 0)
        said.push_back(joined({counted(count, noun), " ", rest}));
}

void say_grid(Writer &writer, const Grid &grid)
{
    if (grid.block == NONE) {
        writer.said.push_back("a quarter note is a second");
        return;
    }
    const Distance    distance = distance_of(writer.music, grid);
    const std::string number   = std::to_string(writer.music.blocks[static_cast<std::size_t>(grid.block)].number);
    if (distance.events == 0)
        writer.said.push_back(joined({"the beats are those of block ", number, ", and all notes are on their own"}));
    else
        writer.said.push_back(joined({"the beats are those of block ", number, "; ", counted(distance.events, "note"),
                                      " of other blocks elsewhere than on their own beats, up to ", number_text(distance.beats, 3),
                                      " beats or ", number_text(distance.seconds, 3), " s"}));
}

void say_all(Writer &writer)
{
    if (writer.clock.division != TICKS)
        writer.said.push_back(
            joined({"a quarter note has ", std::to_string(writer.clock.division), " ticks, for the tempo is slow"}));
    if (writer.channels.ports() > 1)
        writer.said.push_back(joined({"the channels are on ", std::to_string(writer.channels.ports()), " ports"}));
    add_count(writer.said, writer.pitchless, "note", "without a pitch: key 60");
    add_count(writer.said, writer.moved, "note", "moved by octaves into the keys 0 to 127");
    add_count(writer.said, writer.cut, "note", "cut where its key is struck again");
    add_count(writer.said, writer.left_out, "note", "left out, for its key is struck at the same time and no channel is left");
    add_count(writer.said, writer.detuned, "note", "out of tune, for no channel with its bend is left");
}

// ---- the file

std::string fault_of(const Music &music, const Clock &clock)
{
    double end = 0.0;
    for (const Note &note : music.notes)
        end = std::max(end, note.start + note.duration);
    const double ticks = end / seconds_of_tick(clock, clock.marks.back());
    return std::isfinite(ticks) && ticks < MOST_TICK ? ""
                                                     : "a note ends at " + number_text(end) + " s, which no MIDI file can hold";
}

// a track for each part, or for each block
std::vector<MidiTrack> tracks_of(Writer &writer)
{
    std::vector<MidiTrack>   tracks;
    std::vector<ChannelUser> users;
    for (const Part &part : writer.music.parts)
        users.push_back(user_of(writer, part));
    for (std::size_t p = 0; p < writer.music.parts.size(); ++p) {
        const Part &part = writer.music.parts[p];
        if (!writer.options.by_block || writer.music.blocks.empty()) {
            std::vector<Sound> sounds = sounds_of(writer, static_cast<std::int32_t>(p), NONE);
            tracks.push_back(track_of(writer, part, name_of(part), sounds, users[p]));
        }
    }
    if (writer.options.by_block)
        for (std::size_t b = 0; b < writer.music.blocks.size(); ++b) {
            const Block       &block  = writer.music.blocks[b];
            const Part        &part   = writer.music.parts[static_cast<std::size_t>(block.part)];
            std::vector<Sound> sounds = sounds_of(writer, block.part, static_cast<std::int32_t>(b));
            tracks.push_back(track_of(writer, part, joined({name_of(part), ", block ", std::to_string(block.number)}), sounds,
                                      users[static_cast<std::size_t>(block.part)]));
        }
    return tracks;
}

} // namespace

std::string write_midi(const Music &music, const MidiOptions &options, std::vector<std::string> &said, std::FILE *file)
{
    const Grid  grid = chosen_grid(music, {options.map, options.map_block});
    Writer      writer{music, options, said, clock_of(grid), loudness_of(music, options), {}};
    std::string fault = fault_of(music, writer.clock);
    if (!fault.empty())
        return fault;
    find_ranges(writer);
    std::vector<MidiTrack> tracks = tracks_of(writer);
    tracks.insert(tracks.begin(), conductor_of(writer));
    std::string head{"MThd"};
    head += big_endian(6, 4) + big_endian(1, 2) + big_endian(tracks.size(), 2) +
            big_endian(static_cast<std::uint64_t>(writer.clock.division), 2);
    if (std::fwrite(head.data(), 1, head.size(), file) != head.size())
        return NOT_WRITTEN;
    for (MidiTrack &track : tracks) {
        const std::string chunk = chunk_of(track, writer.end);
        if (std::fwrite(chunk.data(), 1, chunk.size(), file) != chunk.size())
            return NOT_WRITTEN;
    }
    say_grid(writer, grid);
    say_all(writer);
    return {};
}

} // namespace orlo::exporting

// All tracks are read first, since a tempo may stand in any of them: notes keep their ticks until the tempo map is complete.
// Every read looks at what is left of its track. A track that breaks off, or holds what can't be, ends there; the next one is found
// by the length that the track's own head gives.

#include "score/midi_reader.h"

#include "score/tempo.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace orlo::score {
namespace {

constexpr std::size_t HEAD          = 8;   // bytes of a chunk's name and length
constexpr std::size_t HEADER        = 6;   // bytes in the header chunk, at least
constexpr double      USUAL_QUARTER = 0.5; // seconds, where no tempo is given
constexpr std::size_t CHANNELS      = 16;
constexpr std::size_t KEYS          = 128;
constexpr std::size_t FIELDS        = 5;
constexpr int         MOST_TRACKS   = 65535; // that a header can tell
constexpr std::size_t NO_NOTE       = static_cast<std::size_t>(-1);

// What is left of a track, or of the file.
struct Bytes {
    std::string_view left;
};

// A note whose times are still ticks.
struct Note {
    std::uint64_t start;
    std::uint64_t end;
    int           channel; // 0 is the first
    int           key;
    int           velocity;
    int           track; // 1 is the first
    std::size_t   later; // the next open note of its channel and key
};

// Open notes of a key, the first struck first.
struct Queue {
    std::size_t first = NO_NOTE;
    std::size_t last  = NO_NOTE;
};

struct TempoChange {
    std::uint64_t tick;
    double        quarter; // seconds
};

struct File {
    Score                   &score;
    std::size_t              most_notes;
    int                      division = 0; // ticks of a quarter, or 0
    double                   tick     = 0; // seconds, where there is no quarter
    std::vector<Note>        notes    = {};
    std::vector<TempoChange> tempo    = {};
    bool                     full     = false;
};

// A track that is being read.
struct Track {
    Bytes                             bytes;
    int                               number; // 1 is the first
    std::uint64_t                     now    = 0;
    int                               status = 0; // that still holds; 0: none does
    bool                              ended  = false;
    std::uint64_t                     strays = 0; // note-offs without a note
    std::array<Queue, CHANNELS *KEYS> open   = {};
};

unsigned byte_at(std::string_view bytes, std::size_t i) { return static_cast<unsigned char>(bytes[i]); }

// a number of so many bytes, the highest first
std::uint32_t big_endian(std::string_view bytes, std::size_t at, std::size_t count)
{
    std::uint32_t value = 0;
    for (std::size_t i = at; i < at + count; ++i)
        value = value << 8U | byte_at(bytes, i);
    return value;
}

std::string_view take(Bytes &bytes, std::size_t count)
{
    const std::string_view taken = bytes.left.substr(0, count);
    bytes.left.remove_prefix(taken.size());
    return taken;
}

std::string track_text(int number) { return "track " + std::to_string(number) + ": "; }

void trouble(File &file, const Track &track, const std::string &text)
{
    add_trouble(file.score, 0, track_text(track.number) + text);
}

// quantity -> { byte with its top bit set } byte, four bytes at most
bool take_quantity(Bytes &bytes, std::uint32_t &value)
{
    value = 0;
    for (std::size_t i = 0; i < 4 && i < bytes.left.size(); ++i) {
        const unsigned byte = byte_at(bytes.left, i);
        value               = value << 7U | (byte & 0x7fU);
        if (byte < 0x80U) {
            bytes.left.remove_prefix(i + 1);
            return true;
        }
    }
    return false;
}

void strike(File &file, Track &track, int channel, int key, int velocity)
{
    if (file.notes.size() == file.most_notes) {
        trouble(file, track, "more than " + std::to_string(file.most_notes) + " notes: the rest is left out");
        file.full = true;
        return;
    }
    const std::size_t note  = file.notes.size();
    Queue            &queue = track.open[static_cast<std::size_t>(channel) * KEYS + static_cast<std::size_t>(key)];
    file.notes.push_back({track.now, track.now, channel, key, velocity, track.number, NO_NOTE});
    if (queue.first == NO_NOTE)
        queue.first = note;
    else
        file.notes[queue.last].later = note;
    queue.last = note;
}

void release(File &file, Track &track, int channel, int key)
{
    Queue &queue = track.open[static_cast<std::size_t>(channel) * KEYS + static_cast<std::size_t>(key)];
    if (queue.first == NO_NOTE) {
        ++track.strays;
        return;
    }
    Note &note  = file.notes[queue.first];
    note.end    = track.now;
    queue.first = note.later;
}

// channel-message -> data [ data ], after its status
bool read_channel_message(File &file, Track &track)
{
    const unsigned         kind    = static_cast<unsigned>(track.status) >> 4U;
    const int              channel = track.status & 15;
    const std::size_t      count   = kind == 0xc || kind == 0xd ? 1 : 2;
    const std::string_view data    = take(track.bytes, count);
    if (data.size() < count || byte_at(data, 0) > 127 || byte_at(data, count - 1) > 127)
        return false;
    if (kind == 0x9 && byte_at(data, 1) > 0)
        strike(file, track, channel, static_cast<int>(byte_at(data, 0)), static_cast<int>(byte_at(data, 1)));
    else if (kind == 0x8 || kind == 0x9)
        release(file, track, channel, static_cast<int>(byte_at(data, 0)));
    return true;
}

// meta-event -> type quantity data
bool read_meta_event(File &file, Track &track)
{
    const std::string_view type   = take(track.bytes, 1);
    std::uint32_t          length = 0;
    if (type.empty() || !take_quantity(track.bytes, length) || track.bytes.left.size() < length)
        return false;
    const std::string_view data = take(track.bytes, length);
    track.ended                 = byte_at(type, 0) == 0x2f;
    if (byte_at(type, 0) == 0x51) {
        const std::uint32_t microseconds = length == 3 ? big_endian(data, 0, 3) : 0;
        if (microseconds == 0)
            trouble(file, track, "a tempo that can't be is left out");
        else
            file.tempo.push_back({track.now, microseconds / 1e6});
    }
    return true;
}

bool read_exclusive(Track &track)
{
    std::uint32_t length = 0;
    if (!take_quantity(track.bytes, length) || track.bytes.left.size() < length)
        return false;
    take(track.bytes, length);
    return true;
}

// event -> quantity ( [ status ] data | 0xff meta-event | ( 0xf0 | 0xf7 ) quantity data )
bool read_track_event(File &file, Track &track)
{
    std::uint32_t delta = 0;
    if (!take_quantity(track.bytes, delta) || track.bytes.left.empty())
        return false;
    track.now += delta;
    const unsigned first = byte_at(track.bytes.left, 0);
    if (first < 0x80)
        return track.status != 0 && read_channel_message(file, track);
    take(track.bytes, 1);
    track.status = first < 0xf0 ? static_cast<int>(first) : 0;
    if (track.status != 0)
        return read_channel_message(file, track);
    if (first == 0xff)
        return read_meta_event(file, track);
    return (first == 0xf0 || first == 0xf7) && read_exclusive(track);
}

// notes that are still open end with their track
void end_open_notes(File &file, Track &track)
{
    std::size_t count = 0;
    for (const Queue &queue : track.open)
        for (std::size_t note = queue.first; note != NO_NOTE; note = file.notes[note].later) {
            file.notes[note].end = track.now;
            ++count;
        }
    if (count > 0)
        trouble(file, track,
                std::to_string(count) + (count == 1 ? " note is" : " notes are") + " never released: shown to the track's end");
    if (track.strays > 0)
        trouble(file, track, std::to_string(track.strays) + (track.strays == 1 ? " note-off has" : " note-offs have") + " no note");
}

void read_track(File &file, std::string_view bytes, int number)
{
    Track      track{{bytes}, number};
    const bool whole = !bytes.empty();
    while (!track.ended && !file.full && !track.bytes.left.empty()) {
        const std::size_t at = bytes.size() - track.bytes.left.size();
        if (!read_track_event(file, track)) {
            trouble(file, track, "byte " + std::to_string(at) + ": what stands there is broken: the rest of the track is left out");
            end_open_notes(file, track);
            return;
        }
    }
    if (!track.ended && !file.full)
        trouble(file, track, whole ? "it has no end of track" : "it is empty");
    else if (!track.bytes.left.empty() && !file.full)
        trouble(file, track, std::to_string(track.bytes.left.size()) + " bytes behind its end are left out");
    end_open_notes(file, track);
}

// chunk -> name length data
// false at the end of the file
bool take_chunk(File &file, Bytes &bytes, std::string_view &name, std::string_view &data)
{
    if (bytes.left.empty())
        return false;
    if (bytes.left.size() < HEAD) {
        add_trouble(file.score, 0, std::to_string(bytes.left.size()) + " bytes at the end of the file are left out");
        return false;
    }
    const std::string_view head   = take(bytes, HEAD);
    const std::uint32_t    length = big_endian(head, 4, 4);
    name                          = head.substr(0, 4);
    if (length > bytes.left.size())
        add_trouble(file.score, 0, "the file ends " + std::to_string(length - bytes.left.size()) + " bytes too early");
    data = take(bytes, length);
    return true;
}

// division -> ticks of a quarter | frames of a second, ticks of a frame
bool read_division(File &file, std::uint32_t division)
{
    if (division < 0x8000U) {
        file.division = static_cast<int>(division);
        return division > 0;
    }
    const double        frames = 256.0 - (division >> 8U);
    const std::uint32_t ticks  = division & 0xffU;
    file.tick                  = ticks > 0 ? 1 / ((frames == 29 ? 30 / 1.001 : frames) * ticks) : 0;
    return ticks > 0;
}

bool read_header(File &file, std::string_view data, std::uint32_t &tracks)
{
    if (data.size() < HEADER) {
        add_trouble(file.score, 0, "the header is too short");
        return false;
    }
    const std::uint32_t format = big_endian(data, 0, 2);
    tracks                     = big_endian(data, 2, 2);
    if (format > 1) {
        add_trouble(file.score, 0, "format " + std::to_string(format) + " is not read, only formats 0 and 1");
        return false;
    }
    if (!read_division(file, big_endian(data, 4, 2))) {
        add_trouble(file.score, 0, "its time has no unit: the division is 0");
        return false;
    }
    return true;
}

void read_tracks(File &file, Bytes &bytes, std::uint32_t expected)
{
    int              tracks = 0;
    std::string_view name;
    std::string_view data;
    while (!file.full && tracks < MOST_TRACKS && take_chunk(file, bytes, name, data))
        if (name == "MTrk")
            read_track(file, data, ++tracks);
    if (tracks == MOST_TRACKS && !bytes.left.empty())
        add_trouble(file.score, 0, "what stands behind " + std::to_string(MOST_TRACKS) + " tracks is left out");
    if (tracks != static_cast<int>(expected) && !file.full)
        add_trouble(file.score, 0, "the header says " + std::to_string(expected) + " tracks, there are " + std::to_string(tracks));
}

// points of the tempo, in ticks
std::vector<TempoPoint> tempo_points(File &file)
{
    if (file.division == 0)
        return {{0, file.tick, 0}};
    std::stable_sort(file.tempo.begin(), file.tempo.end(),
                     [](const TempoChange &a, const TempoChange &b) { return a.tick < b.tick; });
    std::vector<TempoPoint> points{{0, USUAL_QUARTER / file.division, 0}};
    for (const TempoChange &change : file.tempo)
        points.push_back({static_cast<double>(change.tick), change.quarter / file.division, 0});
    place_points(points, Between::steps);
    return points;
}

int instrument_of(Score &score, std::array<int, CHANNELS> &instruments, int channel)
{
    int &instrument = instruments[static_cast<std::size_t>(channel)];
    if (instrument < 0) {
        instrument = static_cast<int>(score.instruments.size());
        score.instruments.push_back("channel " + std::to_string(channel + 1));
    }
    return instrument;
}

void make_events(File &file)
{
    Score                        &score  = file.score;
    const std::vector<TempoPoint> points = tempo_points(file);
    std::array<int, CHANNELS>     instruments{};
    instruments.fill(-1);
    for (const Note &note : file.notes) {
        const double start      = seconds_at(points, Between::steps, static_cast<double>(note.start));
        const double duration   = seconds_at(points, Between::steps, static_cast<double>(note.end)) - start;
        const int    instrument = instrument_of(score, instruments, note.channel);
        const Event  event{score.values.size(), static_cast<int>(FIELDS), instrument, start, duration, 0};
        score.values.insert(score.values.end(), {note.channel + 1.0, start, duration, static_cast<double>(note.key),
                                                 static_cast<double>(note.velocity)});
        if (enters(score, event, track_text(note.track)))
            score.events.push_back(event);
        else
            score.values.resize(event.first);
    }
}

} // namespace

bool is_midi(std::string_view bytes) { return bytes.starts_with("MThd"); }

bool read_midi(std::string_view bytes, const Limits &limits, Score &score)
{
    File             file{score, limits.values / FIELDS};
    Bytes            rest{bytes};
    std::string_view name;
    std::string_view data;
    std::uint32_t    tracks = 0;
    const bool       good   = take_chunk(file, rest, name, data) && read_header(file, data, tracks);
    if (good) {
        read_tracks(file, rest, tracks);
        make_events(file);
        for (const char *field : {"channel", "start", "duration", "key", "velocity"})
            score.field_names.emplace_back(field);
        score.pitch_field = 4;
        score.pitch       = Pitch::key;
    }
    finish_score(score);
    return good;
}

} // namespace orlo::score

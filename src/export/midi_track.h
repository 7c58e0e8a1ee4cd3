// midi_track.h: the events of one track, put in the order of their times and made bytes. Knows no music.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orlo::exporting {

/// What comes first of the events at one time.
enum class Rank : std::uint8_t { head, release, tempo, marker, setting, bend, strike };

struct MidiEvent {
    std::uint64_t tick;
    Rank          rank;
    std::string   bytes; // without the time before it
};

struct MidiTrack {
    std::vector<MidiEvent> events;
};

/// Bytes of a number as a variable-length quantity, up to 28 bits.
void put_length(std::string &bytes, std::uint64_t number);

/// A meta event. @param kind as in the standard: 3 is a track's name, 6 a marker, 0x51 a tempo
void add_meta(MidiTrack &track, std::uint64_t tick, Rank rank, int kind, std::string_view data);

/// A channel message of one or two data bytes, 0 to 127 each; second below 0: there is none.
void add_message(MidiTrack &track, std::uint64_t tick, Rank rank, int status, int first, int second = -1);

/// The track as a chunk; times that no delta can hold are parted by empty texts.
/// @param end tick of its end
[[nodiscard]] std::string chunk_of(MidiTrack &track, std::uint64_t end);

inline constexpr std::uint64_t MOST_DELTA = 0x0FFFFFFF; // ticks between two events

} // namespace orlo::exporting

#include "export/midi_track.h"

#include <algorithm>
#include <numeric>

namespace orlo::exporting {
namespace {

constexpr int META      = 0xFF;
constexpr int TEXT      = 0x01;
constexpr int END_TRACK = 0x2F;

char byte_of(std::uint64_t number) { return static_cast<char>(number & 0xFFU); }

// four bytes, the highest first
void put_word(std::string &bytes, std::uint64_t number)
{
    for (const unsigned shift : {24U, 16U, 8U, 0U})
        bytes += byte_of(number >> shift);
}

std::string meta_bytes(int kind, std::string_view data)
{
    std::string bytes{static_cast<char>(META), static_cast<char>(kind)};
    put_length(bytes, data.size());
    return bytes += data;
}

// the time since the event before, in steps that a delta can hold
void put_delta(std::string &bytes, std::uint64_t ticks)
{
    for (; ticks > MOST_DELTA; ticks -= MOST_DELTA) {
        put_length(bytes, MOST_DELTA);
        bytes += meta_bytes(TEXT, {});
    }
    put_length(bytes, ticks);
}

} // namespace

void put_length(std::string &bytes, std::uint64_t number)
{
    for (unsigned shift = 21; shift > 0; shift -= 7)
        if (number >> shift != 0)
            bytes += static_cast<char>(((number >> shift) & 0x7FU) | 0x80U);
    bytes += static_cast<char>(number & 0x7FU);
}

void add_meta(MidiTrack &track, std::uint64_t tick, Rank rank, int kind, std::string_view data)
{
    track.events.push_back({tick, rank, meta_bytes(kind, data)});
}

void add_message(MidiTrack &track, std::uint64_t tick, Rank rank, int status, int first, int second)
{
    std::string bytes{static_cast<char>(status), static_cast<char>(first)};
    if (second >= 0)
        bytes += static_cast<char>(second);
    track.events.push_back({tick, rank, std::move(bytes)});
}

std::string chunk_of(MidiTrack &track, std::uint64_t end)
{
    std::vector<std::size_t> order(track.events.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&track](std::size_t a, std::size_t b) {
        const MidiEvent &first  = track.events[a];
        const MidiEvent &second = track.events[b];
        if (first.tick != second.tick)
            return first.tick < second.tick;
        return first.rank != second.rank ? first.rank < second.rank : a < b;
    });
    std::string   body;
    std::uint64_t now = 0;
    for (const std::size_t index : order) {
        const MidiEvent &event = track.events[index];
        put_delta(body, event.tick - now);
        body += event.bytes;
        now = event.tick;
    }
    put_delta(body, std::max(end, now) - now);
    body += meta_bytes(END_TRACK, {});
    std::string chunk{"MTrk"};
    put_word(chunk, body.size());
    return chunk += body;
}

} // namespace orlo::exporting

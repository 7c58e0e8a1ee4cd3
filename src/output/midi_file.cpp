// Source of the file layout: Standard MIDI Files 1.0 (MIDI Manufacturers Association, RP-001).

#include "output/midi_file.h"

#include "base/numerics.h"
#include "output/midi_numbers.h"

namespace orlo {
namespace {

constexpr std::uint32_t DIVISION         = 480; // ticks to a quarter note
constexpr std::uint32_t FORMAT           = 1;
constexpr std::int32_t  RELEASE_VELOCITY = 64;
constexpr std::int32_t  NOTE_ON_STATUS   = 144;
constexpr std::int32_t  NOTE_OFF_STATUS  = 128;

// a number's lowest bytes, most significant first
void put_bytes(std::FILE *out, std::uint64_t number, unsigned bytes)
{
    while (bytes-- > 0)
        std::putc(static_cast<int>(number >> (8 * bytes) & 0xFF), out);
}

void put_event(std::FILE *out, std::uint64_t delta, std::int32_t status, std::int32_t key, std::int32_t velocity)
{
    WriteVarLen(delta, out);
    std::putc(status & 0xFF, out);
    std::putc(key & 0xFF, out);
    std::putc(velocity & 0xFF, out);
}

} // namespace

void PutMidiHeader(std::FILE *out, std::uint32_t tracks)
{
    std::fputs("MThd", out);
    put_bytes(out, 6, 4);
    put_bytes(out, FORMAT, 2);
    put_bytes(out, tracks, 2);
    put_bytes(out, DIVISION, 2);
}

void PutTrack1(std::FILE *out, float end)
{
    const std::uint64_t time = ticks(end);
    PutTrkHeader(out, 18 + VLSize(time));
    put_bytes(out, 0x00FF580404021808, 8); // time signature: 4/4, 24 clocks a click, 8 thirty-seconds a quarter
    put_bytes(out, 0x00FF51030F4240, 7);   // tempo: 1,000,000 microseconds a quarter
    WriteVarLen(time, out);
    put_bytes(out, 0xFF2F00, 3);
}

void WriteTrack(std::FILE *out, const Event *list, std::uint64_t length)
{
    if (list == nullptr)
        return;
    PutTrkHeader(out, length + 4);
    float        previous = 0.0F;
    const Event *event    = list;
    do {
        event                     = event->next;
        const std::uint64_t delta = ticks(event->start - previous);
        const std::int32_t  key   = to_int32(static_cast<double>(event->pf[1]));
        if (event->code == 1)
            NoteOn(out, delta, key, to_int32(static_cast<double>(event->pf[0])), 0);
        else
            NoteOff(out, delta, key, 0);
        previous = event->start;
    } while (event != list);
    put_bytes(out, 0x00FF2F00, 4);
}

void PutTrkHeader(std::FILE *out, std::uint64_t length)
{
    std::fputs("MTrk", out);
    put_bytes(out, length, 4);
}

void NoteOn(std::FILE *out, std::uint64_t delta, std::int32_t key, std::int32_t velocity, std::int32_t channel)
{
    put_event(out, delta, NOTE_ON_STATUS + channel, key, velocity);
}

void NoteOff(std::FILE *out, std::uint64_t delta, std::int32_t key, std::int32_t channel)
{
    put_event(out, delta, NOTE_OFF_STATUS + channel, key, RELEASE_VELOCITY);
}

} // namespace orlo

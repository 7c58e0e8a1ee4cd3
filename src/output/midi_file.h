// Writes a converted event list as a Standard MIDI File of format 1: a tempo track and a note track.
// Bytes are written as they are; write errors are left to the stream's error flag.
#pragma once

#include "events/event_list.h"

#include <cstdint>
#include <cstdio>

namespace orlo {

/// Header chunk: format 1, 480 ticks to a quarter note.
void PutMidiHeader(std::FILE *out, std::uint32_t tracks);

/// Track 1: 4/4, 60 quarter notes a minute, and the end of the track at end seconds.
void PutTrack1(std::FILE *out, float end);

/// Track 2: the events of a converted list. @param length bytes of the events, as List2MIDI counted them
void WriteTrack(std::FILE *out, const Event *list, std::uint64_t length);

/// Start of a track chunk of so many bytes.
void PutTrkHeader(std::FILE *out, std::uint64_t length);

void NoteOn(std::FILE *out, std::uint64_t delta, std::int32_t key, std::int32_t velocity, std::int32_t channel);
void NoteOff(std::FILE *out, std::uint64_t delta, std::int32_t key, std::int32_t channel);

} // namespace orlo

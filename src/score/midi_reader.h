// midi_reader.h: a Standard MIDI File of format 0 or 1 as events: one from each note-on to its note-off. Opens no file.
#pragma once

#include "score/build_score.h"

#include <string_view>

namespace orlo::score {

/// Is this how a MIDI file begins?
bool is_midi(std::string_view bytes);

/// Reads a whole MIDI file. Its events have the fields channel (1 to 16), start and duration in seconds, key and velocity.
/// What is broken stands in the score's troubles, and what can be read of a broken track in its events.
/// @param bytes the file
/// @param score an empty score; the title is left alone
/// @return false, after a trouble, when the file can't be read at all
[[nodiscard]] bool read_midi(std::string_view bytes, const Limits &limits, Score &score);

} // namespace orlo::score

// options.h: the command line of orlo-export. Opens no file.
#pragma once

#include "export/midi.h"
#include "export/voices.h"

#include <map>
#include <string>

namespace orlo::exporting {

enum class Format { guess, csv, json, midi, musicxml };

/// What the command line asks for.
struct Options {
    std::string                in;
    std::string                out; ///< "-" is the standard output
    Format                     format = Format::guess;
    std::map<int, std::string> names; ///< of p-fields
    MidiOptions                midi;
    NotationOptions            notation; ///< its map and its meter are those of midi
};

/// What is to be done with a command line.
enum class Task {
    write,
    help,
    version,
    refuse, ///< a message was printed to standard error
};

/// Reads the command line.
[[nodiscard]] Task read_options(int argc, const char *const *argv, Options &options);

/// The text of --help.
const char *help_text();

} // namespace orlo::exporting

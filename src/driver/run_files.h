// The files of a run: opening, combining the input with what it includes, closing. Parses nothing, and decides nothing about
// events.
#pragma once

#include "input/include_pass.h"

#include <cstdio>

namespace orlo {

struct Files {
    std::FILE *in;  // the input, later the temporary file; null while closed
    std::FILE *out; // the score or MIDI file, null where none is named
    std::FILE *log; // null without one
    std::FILE *tmp; // the temporary file while it is written
};

/// Opens what the command line names, and makes the temporary file.
/// @param piece what is read of the input
/// @return false after the failure has been told
[[nodiscard]] bool open_files(Files &files, Extent piece);

/// Copies the input with its include files into the temporary file, which becomes the input. From here on the log is written.
/// @return 0, or an error; 999 when it has been told
[[nodiscard]] int combine_input(Files &files, Extent piece);

/// Closes everything and removes the temporary file. What trace and log have lost is told after a complete run only: no further
/// error follows the one that ended a run.
/// @return false when a file could not be written in full, which has been told
bool close_files(Files &files, bool complete);

} // namespace orlo

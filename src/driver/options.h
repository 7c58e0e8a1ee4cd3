// The command line: options and file names, the usage text and the banner. Opens no file.
#pragma once

#include "base/switches.h"

#include <cstdio>

namespace orlo {

extern const char
    *in_fname; // names from the command line, null when not given; written by get_options, null again by reset_options
extern const char *out_fname;
extern const char *log_fname;
extern const char *exp_fname;

/// What a letter after "-" switches on. An option with a name takes it from its own argument or from the next.
struct Option {
    char         letter;
    bool        *on;
    const char **name;    // null for an option without one
    const char  *value;   // how the usage text calls the name
    const char  *missing; // how the message about a missing name calls it
    const char  *meaning;
};

inline constexpr Option option_table[] = {
    {'l', &MKLOG, &log_fname, "<logfile>", "logfile", "screen ouput (text)"},
    {'m', &MKMIDI, nullptr, "", "", "outfile is a MIDI file (format 1)"},
    {'s', &SUPRESS, nullptr, "", "", "suppress non-error messages"},
    {'t', &SHOW_TEMPOS, nullptr, "", "", "verbose tempo information"},
    {'x', &MKEXP, &exp_fname, "<expfile>", "macro-expansion file", "macro expansions (text)"},
};

/// Reads "[options] infile outfile" into the settings and names.
/// @return 0, or 1 after a message or the usage text has been printed
[[nodiscard]] int get_options(int argc, const char *const *argv);

/// 1, with a message, when two of the run's files have the same name, or are one regular file by different names; else 0.
[[nodiscard]] int check_fnames();

void print_usage(std::FILE *stream);

/// The banner of a run: version, file names, kind of output.
void print_info(std::FILE *stream);

/// No name is given.
void reset_options();

} // namespace orlo

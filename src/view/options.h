// options.h: the command line of orlo-view. Opens no file.
#pragma once

#include "view/scores.h"

#include <string>

namespace orlo::view {

enum class Input { guess, score, midi, orlo };
enum class Picture { guess, html, svg, txt };

inline constexpr int LEAST_COLUMNS = 40; ///< of a roll for the terminal
inline constexpr int MOST_COLUMNS  = 1000;
inline constexpr int LEAST_ROWS    = 5;
inline constexpr int MOST_ROWS     = 500;

/// What the command line asks for.
struct Options {
    std::string in;  ///< name of the file; "-" is the standard input
    std::string out; ///< name of the picture; "-" is the standard output; empty: none was given
    Input       input       = Input::guess;
    Picture     picture     = Picture::guess;
    bool        pitch_given = false; ///< pitch_field and pitch were
    int         pitch_field = 0;     ///< 5 is p5; 0: there is none
    Pitch       pitch       = Pitch::none;
    int         columns     = 0; ///< 0: none was given
    int         rows        = 24;
};

/// What is to be done with a command line.
enum class Command {
    view,
    help,
    version,
    refuse, ///< a message was printed to standard error
};

/// Reads the command line.
[[nodiscard]] Command read_options(int argc, const char *const *argv, Options &options);

/// The text of --help.
const char *help_text();

/// Width of a roll for the terminal: the one that was given, else the environment's COLUMNS when it is within the limits, else 80.
int columns_of(const Options &options);

} // namespace orlo::view

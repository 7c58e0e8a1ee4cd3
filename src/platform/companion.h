// companion.h: what every companion program does around its task: memory that runs out, what is said of files, the exit status.
#pragma once

#include <string>

namespace orlo {

inline constexpr char STANDARD_OUTPUT[] = "-";

// exit statuses
inline constexpr int SUCCESS = 0;
inline constexpr int FAILURE = 1;
inline constexpr int USAGE   = 2; // the command line is wrong

/// Runs a task. Where memory runs out it is said, and what is not complete is removed.
/// @param program its name, which stands before what is said from here on
/// @return what the task returns, or FAILURE
int run_companion(const char *program, int (*task)(int argc, const char *const *argv), int argc, const char *const *argv);

/// Says what is wrong. @return false
bool complain(const std::string &text);
bool complain_of_memory(); ///< asks for none

/// Says that a file, "-" for the standard output, can't be written. @param fault why, or nothing. @return false
bool cant_write(const std::string &name, const std::string &fault);

/// Whether the standard output is open, where the name is "-"; else it is said. To be asked before a piece is run, which opens
/// streams that are closed on nothing.
[[nodiscard]] bool can_be_written(const std::string &name);

/// Prints a text to the standard output. @return false, after saying so, when it could not be written in full
[[nodiscard]] bool print(const char *text);

} // namespace orlo

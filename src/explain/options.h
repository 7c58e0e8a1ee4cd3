// options.h: the command line of orlo-explain. Opens no file.
#pragma once

#include <string>

namespace orlo::explain {

enum class Format { json, gcc, hints };

/// What the command line asks for.
struct Options {
    std::string piece;
    std::string out    = "-"; ///< "-" is the standard output
    bool        midi   = false;
    bool        events = true;
    Format      format = Format::json;
};

/// What is to be done with a command line.
enum class Task {
    explain,
    help,
    version,
    list_hints,
    refuse, ///< a message was printed to standard error
};

/// Reads the command line.
[[nodiscard]] Task read_options(int argc, const char *const *argv, Options &options);

/// The text of --help.
const char *help_text();

} // namespace orlo::explain

// whole_file.h: a file that appears whole or not at all: it is written under another name beside the one that it gets. Writes
// nothing itself.
#pragma once

#include <cstdio>
#include <string>

namespace orlo {

struct WholeFile {
    std::FILE  *stream = nullptr;
    std::string name;      // that it gets
    std::string temporary; // that it has; empty where it is written in place: a device, a pipe, or the standard output
};

/// Opens a file for writing, "-" is the standard output. An earlier file of the name stays until the new one is complete, and for
/// good where it may not be written. From here on what is written is removed when a signal ends the process.
/// @return what went wrong, as the system says it; empty when nothing did
[[nodiscard]] std::string open_whole(WholeFile &file, const std::string &name);

/// Closes the file, and gives it its name. A second time nothing is done.
/// @param complete all was written; if not, it goes, and an earlier file stays
/// @return what went wrong; empty when nothing did
[[nodiscard]] std::string close_whole(WholeFile &file, bool complete);

/// A file that goes when it is left before it was closed as complete.
struct WholeOutput {
    WholeFile   file;
    std::string fault; // of opening it; empty when it is open

    explicit WholeOutput(const std::string &name) : fault(open_whole(file, name)) {}
    WholeOutput(const WholeOutput &)            = delete;
    WholeOutput &operator=(const WholeOutput &) = delete;
    ~WholeOutput() { static_cast<void>(close_whole(file, false)); }
};

/// Removes what is not complete, if there is anything; to be called where the program ends in the middle.
void remove_unfinished();

} // namespace orlo

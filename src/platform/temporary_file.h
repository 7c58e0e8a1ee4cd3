// The temporary file that holds the combined input: its name, its exclusive creation, its removal, also by the ending signals.
#pragma once

#include <cstdio>

namespace orlo {

/// Creates a new file that the user alone may read, in the folder that TMPDIR names or, where that can't be, in the system's own,
/// and opens it for writing. From here on the file is removed when a signal ends the process. @return the stream, or null
[[nodiscard]] std::FILE *open_temporary_file();

/// Opens the finished file for reading. @return the stream, or null
[[nodiscard]] std::FILE *reopen_temporary_file();

/// Removes the file, if there is one.
void remove_temporary_file();

} // namespace orlo

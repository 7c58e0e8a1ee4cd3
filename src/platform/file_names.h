// file_names.h: what the names of files lead to, and giving and taking them.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

namespace orlo {

inline constexpr std::size_t LONGEST_NAME = 4096; // bytes of a name that is kept for an ending signal, its end among them

/// The file that a name leads to by links, also where that is not there yet; empty, and errno says why, where it leads nowhere.
[[nodiscard]] std::string led_to(const std::string &name);

/// Whether a name is that of something else than a regular file: a device, a pipe, a folder.
[[nodiscard]] bool is_special(const std::string &name);

/// Opens a file for reading, for the last time: where the system knows how, it removes the file with the stream, however the
/// program ends. @return the stream, or null
[[nodiscard]] std::FILE *open_last(const char *name);

/// Removes a file, if there is one; an ending signal may call it.
void remove_file(const char *name);

/// Gives a file the name of another one, which is replaced at once, if there is one. @return false, and errno says why
[[nodiscard]] bool replace_file(const std::string &name, const std::string &by);

} // namespace orlo

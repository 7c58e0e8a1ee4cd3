// new_file.h: making a file that nobody else has.
#pragma once

#include <cstdio>
#include <string>

namespace orlo {

/// Creates a file that the user alone may read, and opens it for writing.
/// @param pattern its name, which ends with "XXXXXX"; something that no file is called takes the place of that
/// @return the stream, or null, when there is no such file, and errno says why
[[nodiscard]] std::FILE *make_new_file(char *pattern);

/// Lets everybody read and write a new file who may do so with an earlier one, or with any that the user makes.
void share_as(std::FILE *file, const std::string &earlier);

/// Whether there is a file of the name that may not be written.
[[nodiscard]] bool is_protected(const std::string &name);

} // namespace orlo

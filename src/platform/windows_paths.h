// windows_paths.h: how Windows reads the names of files. Pure functions of texts, the same on every system; asks none.
#pragma once

#include <string_view>

namespace orlo::windows {

/// The folder in a path, with the slash, backslash or colon that ends it; empty where there is none.
[[nodiscard]] std::string_view folder_part(std::string_view path);

/// What follows the folder, without the blanks and dots at its end, which are no part of the name.
[[nodiscard]] std::string_view name_part(std::string_view path);

/// Whether a path is a device's: "NUL", "com1.txt", "\\.\x". Its folder and what follows a dot say nothing.
[[nodiscard]] bool is_device(std::string_view path);

/// Whether two names are one but for the case of A to Z.
[[nodiscard]] bool same_name(std::string_view a, std::string_view b);

} // namespace orlo::windows

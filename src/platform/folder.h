// folder.h: the folder that a program works in, and the one for what it keeps for a while.
#pragma once

#include <string>

namespace orlo {

/// Path of the working folder; empty when the system doesn't tell.
[[nodiscard]] std::string working_folder();

/// Path of the folder where files are kept for a while when the user names none; empty when there is none.
[[nodiscard]] std::string temporary_folder();

/// Goes to the folder that the program is meant to work in, where the system doesn't start it there.
void enter_folder();

} // namespace orlo

// folder.h: the folder that a program works in.
#pragma once

#include <string>

namespace orlo {

/// Path of the working folder; empty when the system doesn't tell.
[[nodiscard]] std::string working_folder();

/// Goes to the folder that the program is meant to work in, where the system doesn't start it there.
void enter_folder();

} // namespace orlo

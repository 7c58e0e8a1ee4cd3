// Paths are looked up from the root until the program has gone to a folder, so that "a" and "/a" would be one file. The host names
// the folder as shells do (POSIX.1-2017, PWD).

#include "platform/folder.h"

#include <climits>
#include <cstdlib>
#include <unistd.h>

namespace orlo {

std::string working_folder()
{
    char path[PATH_MAX];
    return getcwd(path, sizeof path) != nullptr ? path : "";
}

void enter_folder()
{
    if (const char *folder = std::getenv("PWD"))
        static_cast<void>(chdir(folder));
}

} // namespace orlo

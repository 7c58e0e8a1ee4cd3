// Paths are looked up from the root until the program has gone to a folder, so that "a" and "/a" would be one file. The host names
// the folder as shells do (POSIX.1-2017, PWD).

#include "platform/folder.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

extern "C" {
std::FILE *__real_fopen(const char *name, const char *mode);
std::FILE *__wrap_fopen(const char *name, const char *mode);
}

// the linker puts it in the place of fopen: the empty name would be that of the working folder, and is none (POSIX.1-2017, 4.13)
std::FILE *__wrap_fopen(const char *name, const char *mode)
{
    if (*name != '\0')
        return __real_fopen(name, mode);
    errno = ENOENT;
    return nullptr;
}

namespace orlo {

std::string working_folder()
{
    char path[PATH_MAX];
    return getcwd(path, sizeof path) != nullptr ? path : "";
}

std::string temporary_folder() { return "/tmp"; } // which there always is (POSIX.1-2017, 10.1)

void enter_folder()
{
    if (const char *folder = std::getenv("PWD"))
        static_cast<void>(chdir(folder));
}

} // namespace orlo

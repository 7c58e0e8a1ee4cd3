// In place of the C library's mkstemp (linker option --wrap): where the system's own folder is meant, the names are tmp/0, tmp/1,
// ... in the working folder, so that a test can look for the temporary file, and do something to it, without meeting other
// programs' files.

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>

extern "C" {
int __real_mkstemp(char *name);
int __wrap_mkstemp(char *name);
}

int __wrap_mkstemp(char *name)
{
    constexpr int MOST_NAMES = 100;
    static int    next       = 0;
    if (std::strncmp(name, P_tmpdir "/", sizeof P_tmpdir) != 0)
        return __real_mkstemp(name);
    int file = -1;
    errno    = EEXIST;
    for (int i = 0; i < MOST_NAMES && file < 0 && errno == EEXIST; ++i) {
        std::snprintf(name, std::strlen(name) + 1, "tmp/%d", next++);
        file = open(name, O_RDWR | O_CREAT | O_EXCL, 0600);
    }
    return file;
}

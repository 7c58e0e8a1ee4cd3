// In place of the C library's mkstemp (linker option --wrap): the files tmp/0, tmp/1, ... in the working folder, so that a test can
// look for the temporary file, and stand in its way, without meeting other programs' files.

#include <cstdio>
#include <fcntl.h>

extern "C" int __wrap_mkstemp(char *name);

int __wrap_mkstemp(char *name)
{
    static int next = 0;
    std::snprintf(name, sizeof "tmp/100", "tmp/%d", next++ % 100);
    return open(name, O_RDWR | O_CREAT | O_EXCL, 0600);
}

// In place of the C library's tmpnam (linker option --wrap): the names tmp/0, tmp/1, ... in the working folder, so that a test can
// look for the temporary file, and stand in its way, without meeting other programs' files.

#include <cstdio>

extern "C" char *__wrap_tmpnam(char *name);

char *__wrap_tmpnam(char *name)
{
    static int next = 0;
    std::snprintf(name, L_tmpnam, "tmp/%d", next++);
    return name;
}

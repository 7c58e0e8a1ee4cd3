// mkstemp makes a file that nobody else has or can read (POSIX.1-2017), whatever the umask says.

#include "platform/new_file.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orlo {
namespace {

// the mode of the earlier file, or what the user's mask leaves
mode_t mode_of(const std::string &name)
{
    struct stat about {};
    if (stat(name.c_str(), &about) == 0)
        return about.st_mode & 07777U;
    const mode_t mask = umask(0);
    umask(mask);
    return 0666U & ~mask;
}

} // namespace

int make_new_file(char *pattern) { return mkstemp(pattern); }

void share_as(int file, const std::string &earlier) { static_cast<void>(fchmod(file, mode_of(earlier))); }

bool is_protected(const std::string &name) { return faccessat(AT_FDCWD, name.c_str(), W_OK, AT_EACCESS) != 0 && errno != ENOENT; }

} // namespace orlo

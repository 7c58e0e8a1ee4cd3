// mkstemp makes a file that nobody else has or can read (POSIX.1-2017), whatever the umask says.

#include "platform/new_file.h"

#include "platform/file_names.h"

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

std::FILE *make_new_file(char *pattern)
{
    const int  file   = mkstemp(pattern);
    std::FILE *stream = file >= 0 ? fdopen(file, "w") : nullptr;
    if (file >= 0 && stream == nullptr) {
        const int error = errno;
        close(file);
        remove_file(pattern);
        errno = error;
    }
    return stream;
}

void share_as(std::FILE *file, const std::string &earlier) { static_cast<void>(fchmod(fileno(file), mode_of(earlier))); }

bool is_protected(const std::string &name) { return faccessat(AT_FDCWD, name.c_str(), W_OK, AT_EACCESS) != 0 && errno != ENOENT; }

} // namespace orlo

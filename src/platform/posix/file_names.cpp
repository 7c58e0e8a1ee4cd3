// rename replaces a file at once, and unlink may be called by a signal (POSIX.1-2017).

#include "platform/file_names.h"

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace orlo {
namespace {

constexpr int MOST_LINKS = 40; // that lead to a file, as the system has it

} // namespace

std::string led_to(const std::string &name)
{
    std::string at = name;
    for (int links = 0; links < MOST_LINKS; ++links) {
        char          path[LONGEST_NAME];
        const ssize_t length = readlink(at.c_str(), path, sizeof path);
        if (length < 0)
            return at;
        const std::string target{path, static_cast<std::size_t>(length)};
        at.resize(target.starts_with('/') ? 0 : at.rfind('/') + 1); // to the folder, which may be none
        at += target;
    }
    errno = ELOOP;
    return "";
}

bool is_special(const std::string &name)
{
    struct stat about {};
    return stat(name.c_str(), &about) == 0 && !S_ISREG(about.st_mode);
}

std::FILE *open_last(const char *name) { return std::fopen(name, "r"); }

void remove_file(const char *name) { static_cast<void>(unlink(name)); }

bool replace_file(const std::string &name, const std::string &by) { return std::rename(by.c_str(), name.c_str()) == 0; }

} // namespace orlo

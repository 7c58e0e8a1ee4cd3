// A file is known by its device and inode (sys/stat.h); one that does not exist yet by those of its folder and its last part.

#include "platform/file_identity.h"

#include <climits>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace orlo {
namespace {

constexpr int MOST_LINKS = 40; // symbolic links in a row that are followed, as the system does

FileIdentity identity_in(const struct stat &status)
{
    return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino), S_ISREG(status.st_mode),
            status.st_size == 0};
}

struct Path {
    char text[PATH_MAX];
    bool whole; // it fits; one that does not can't be opened either
};

Path make_path(const char *folder, int folder_length, const char *rest)
{
    Path      path{};
    const int length = std::snprintf(path.text, sizeof path.text, "%.*s%s", folder_length, folder, rest);
    path.whole       = length >= 0 && length < static_cast<int>(sizeof path.text);
    return path;
}

// path -> [ folder "/" ] name
const char *name_of(const char *path)
{
    const char *slash = std::strrchr(path, '/');
    return slash == nullptr ? path : slash + 1;
}

// the file that a chain of symbolic links would make
Path follow_links(const char *name)
{
    Path path = make_path("", 0, name);
    for (int i = 0; i < MOST_LINKS && path.whole; ++i) {
        char          target[PATH_MAX];
        const ssize_t length = readlink(path.text, target, sizeof target - 1);
        if (length < 0)
            break;
        target[length]      = '\0';
        const bool absolute = target[0] == '/';
        path                = make_path(path.text, absolute ? 0 : static_cast<int>(name_of(path.text) - path.text), target);
    }
    return path;
}

bool identify_folder(const Path &path, FileIdentity &identity)
{
    const auto length = static_cast<int>(name_of(path.text) - path.text);
    const Path folder = make_path(path.text, length, ".");
    return folder.whole && identify(folder.text, identity);
}

} // namespace

bool identify(std::FILE *stream, FileIdentity &identity)
{
    struct stat status {};
    if (fstat(fileno(stream), &status) != 0)
        return false;
    identity = identity_in(status);
    return true;
}

bool identify(const char *name, FileIdentity &identity)
{
    struct stat status {};
    if (stat(name, &status) != 0)
        return false;
    identity = identity_in(status);
    return true;
}

bool same_new_file(const char *a, const char *b)
{
    FileIdentity first_folder;
    FileIdentity second_folder;
    if (identify(a, first_folder) || identify(b, second_folder))
        return false;
    const Path first  = follow_links(a);
    const Path second = follow_links(b);
    return first.whole && second.whole && std::strcmp(name_of(first.text), name_of(second.text)) == 0 &&
           identify_folder(first, first_folder) && identify_folder(second, second_folder) && same(first_folder, second_folder);
}

} // namespace orlo

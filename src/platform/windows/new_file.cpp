// A file that is created exclusively is nobody else's. It can be removed while it is open, as Ctrl-C does, and who may read it is
// what its folder says.

#include "platform/new_file.h"

#include "platform/file_names.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <io.h>
#include <random>
#include <string_view>
#include <unistd.h>
#include <windows.h>

namespace orlo {
namespace {

constexpr std::string_view LETTERS = "abcdefghijklmnopqrstuvwxyz0123456789"; // case means nothing
constexpr std::size_t      CHOSEN  = 6;                                      // letters that are replaced
constexpr int              TRIES   = 100;

void choose(char *letters)
{
    std::random_device random;
    for (std::size_t at = 0; at < CHOSEN; ++at)
        letters[at] = LETTERS[random() % LETTERS.size()];
}

int error_of(DWORD error)
{
    switch (error) {
    case ERROR_FILE_EXISTS:
        return EEXIST;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
        return ENOENT;
    case ERROR_DISK_FULL:
        return ENOSPC;
    default:
        return EACCES;
    }
}

HANDLE create(const char *name)
{
    const DWORD  shared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE handle = CreateFileA(name, GENERIC_WRITE, shared, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        errno = error_of(GetLastError());
    return handle;
}

} // namespace

std::FILE *make_new_file(char *pattern)
{
    HANDLE handle = INVALID_HANDLE_VALUE;
    errno         = EEXIST;
    for (int tries = 0; handle == INVALID_HANDLE_VALUE && errno == EEXIST && tries < TRIES; ++tries) {
        choose(pattern + std::strlen(pattern) - CHOSEN);
        handle = create(pattern);
    }
    if (handle == INVALID_HANDLE_VALUE)
        return nullptr;
    const int  file   = _open_osfhandle(reinterpret_cast<intptr_t>(handle), _O_WRONLY | _O_BINARY);
    std::FILE *stream = file >= 0 ? _fdopen(file, "w") : nullptr;
    if (stream == nullptr) {
        file >= 0 ? static_cast<void>(_close(file)) : static_cast<void>(CloseHandle(handle));
        remove_file(pattern);
    }
    return stream;
}

void share_as(std::FILE *, const std::string &) {}

bool is_protected(const std::string &name) { return _access(name.c_str(), W_OK) != 0 && errno != ENOENT; }

} // namespace orlo

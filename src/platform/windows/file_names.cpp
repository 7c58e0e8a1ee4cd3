// MoveFileEx replaces a file at once. A file that is opened with "D" is removed by the system when it is closed.

#include "platform/file_names.h"

#include "platform/file_identity.h"
#include "platform/windows_paths.h"

#include <cerrno>
#include <windows.h>

namespace orlo {

std::string led_to(const std::string &name)
{
    const DWORD attributes = GetFileAttributesA(name.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0)
        return name;
    const HANDLE handle = CreateFileA(name.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return name;
    char        path[LONGEST_NAME];
    const DWORD length = GetFinalPathNameByHandleA(handle, path, sizeof path, 0);
    CloseHandle(handle);
    return length > 0 && length < sizeof path ? std::string{path, length} : name;
}

bool is_special(const std::string &name)
{
    FileIdentity identity;
    return windows::is_device(name) || (identify(name.c_str(), identity) && !identity.regular);
}

std::FILE *open_last(const char *name) { return std::fopen(name, "rD"); }

void remove_file(const char *name) { DeleteFileA(name); }

bool replace_file(const std::string &name, const std::string &by)
{
    if (MoveFileExA(by.c_str(), name.c_str(), MOVEFILE_REPLACE_EXISTING) != 0)
        return true;
    errno = EACCES;
    return false;
}

} // namespace orlo

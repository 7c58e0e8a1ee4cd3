// A file is known by the serial number of its volume and its index there (GetFileInformationByHandle); one that does not exist yet
// by those of its folder and its last part, in which case means nothing.

#include "platform/file_identity.h"

#include "platform/windows_paths.h"

#include <io.h>
#include <string>
#include <windows.h>

namespace orlo {
namespace {

// devices and pipes can't be told apart
bool identity_of(HANDLE handle, FileIdentity &identity)
{
    BY_HANDLE_FILE_INFORMATION about{};
    identity = {};
    if (handle == INVALID_HANDLE_VALUE || GetFileType(handle) != FILE_TYPE_DISK)
        return handle != INVALID_HANDLE_VALUE;
    if (GetFileInformationByHandle(handle, &about) == 0)
        return false;
    identity.volume  = about.dwVolumeSerialNumber;
    identity.number  = std::uint64_t{about.nFileIndexHigh} << 32 | about.nFileIndexLow;
    identity.regular = (about.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
    identity.empty   = about.nFileSizeHigh == 0 && about.nFileSizeLow == 0;
    return true;
}

std::wstring wide(std::string_view text)
{
    const auto   bytes  = static_cast<int>(text.size());
    const int    length = MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, nullptr, 0);
    std::wstring letters(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, letters.data(), length);
    return letters;
}

// as the system compares the names of files, letters beyond A to Z among them
bool same_letters(std::string_view a, std::string_view b)
{
    return CompareStringOrdinal(wide(a).c_str(), -1, wide(b).c_str(), -1, TRUE) == CSTR_EQUAL;
}

bool identify_folder(const char *name, FileIdentity &identity)
{
    const std::string folder{windows::folder_part(name)};
    return identify((folder + ".").c_str(), identity);
}

} // namespace

bool identify(std::FILE *stream, FileIdentity &identity)
{
    return identity_of(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream))), identity);
}

bool identify(const char *name, FileIdentity &identity)
{
    const DWORD  shared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE handle =
        CreateFileA(name, FILE_READ_ATTRIBUTES, shared, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return false;
    const bool found = identity_of(handle, identity);
    CloseHandle(handle);
    return found;
}

bool same_new_file(const char *a, const char *b)
{
    FileIdentity first;
    FileIdentity second;
    if (windows::is_device(a) || windows::is_device(b) || identify(a, first) || identify(b, second))
        return false;
    const std::string_view one   = windows::name_part(a);
    const std::string_view other = windows::name_part(b);
    return (windows::same_name(one, other) || same_letters(one, other)) && identify_folder(a, first) &&
           identify_folder(b, second) && same(first, second);
}

} // namespace orlo

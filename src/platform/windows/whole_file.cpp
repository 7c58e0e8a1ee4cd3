// The name for the time being is one in the folder of the file, so that MoveFileEx, which replaces a file at once, stays within a
// volume. A link is followed first: what it leads to is replaced, not the link.

#include "platform/whole_file.h"

#include "platform/ending_signals.h"
#include "platform/file_identity.h"
#include "platform/new_file.h"
#include "platform/windows_paths.h"

#include <cerrno>
#include <cstring>
#include <io.h>
#include <windows.h>

namespace orlo {
namespace {

constexpr std::size_t LONGEST_PATH = 4096;

char unfinished[LONGEST_PATH]; // settled before file_exists is set
bool file_exists = false;      // changed while ending signals are held back

std::string last_error() { return std::strerror(errno); }

// the file that a name leads to; the name where there is no link
std::string resolved(const std::string &name)
{
    const DWORD attributes = GetFileAttributesA(name.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0)
        return name;
    const HANDLE handle = CreateFileA(name.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return name;
    char        path[LONGEST_PATH];
    const DWORD length = GetFinalPathNameByHandleA(handle, path, sizeof path, 0);
    CloseHandle(handle);
    return length > 0 && length < sizeof path ? std::string{path, length} : name;
}

std::string open_in_place(WholeFile &file, const std::string &name)
{
    file.stream = std::fopen(name.c_str(), "w");
    return file.stream != nullptr ? "" : last_error();
}

// the new file as a stream
std::string open_beside(WholeFile &file)
{
    const std::string pattern = file.name + ".XXXXXX";
    if (pattern.size() >= sizeof unfinished)
        return std::strerror(ENAMETOOLONG);
    std::memcpy(unfinished, pattern.c_str(), pattern.size() + 1);
    const int number = make_new_file(unfinished);
    if (number < 0)
        return last_error();
    file.temporary = unfinished;
    file_exists    = true;
    on_ending_signal(remove_unfinished);
    file.stream = _fdopen(number, "w");
    return file.stream != nullptr ? "" : last_error();
}

void forget()
{
    file_exists = false;
    let_signals_end();
}

bool replace(const WholeFile &file)
{
    if (MoveFileExA(file.temporary.c_str(), file.name.c_str(), MOVEFILE_REPLACE_EXISTING) != 0)
        return true;
    errno = EACCES;
    return false;
}

} // namespace

// called in the thread of an ending signal as well
void remove_unfinished()
{
    if (file_exists)
        DeleteFileA(unfinished);
}

bool is_special(const std::string &name)
{
    FileIdentity identity;
    return windows::is_device(name) || (identify(name.c_str(), identity) && !identity.regular);
}

std::string open_whole(WholeFile &file, const std::string &name)
{
    file.temporary.clear();
    file.name = name;
    if (name == "-") {
        file.stream = stdout;
        return "";
    }
    if (is_special(name))
        return open_in_place(file, name);
    file.name = resolved(name);
    if (is_protected(file.name))
        return last_error();
    hold_ending_signals();
    std::string fault = open_beside(file);
    release_ending_signals();
    return fault;
}

std::string close_whole(WholeFile &file, bool complete)
{
    std::string fault;
    if (file.stream != nullptr && (std::fflush(file.stream) != 0 || std::ferror(file.stream) != 0))
        fault = last_error();
    if (file.stream != nullptr && file.stream != stdout && std::fclose(file.stream) != 0 && fault.empty())
        fault = last_error();
    file.stream = nullptr;
    if (file.temporary.empty())
        return fault;
    hold_ending_signals();
    if (complete && fault.empty() && !replace(file))
        fault = last_error();
    if (!complete || !fault.empty())
        DeleteFileA(file.temporary.c_str());
    file.temporary.clear();
    forget();
    release_ending_signals();
    return fault;
}

} // namespace orlo

// file_identity.h: which file is which, whatever names and streams lead to it. Changes nothing.
#pragma once

#include <cstdint>
#include <cstdio>

namespace orlo {

struct FileIdentity {
    std::uint64_t volume  = 0;
    std::uint64_t number  = 0;     // of the file in its volume
    bool          regular = false; // neither device nor pipe nor folder
    bool          empty   = false;
};

[[nodiscard]] inline bool same(const FileIdentity &a, const FileIdentity &b)
{
    return a.volume == b.volume && a.number == b.number;
}

/// What a stream leads to. @return false when the system can't tell
[[nodiscard]] bool identify(std::FILE *stream, FileIdentity &identity);

/// What a name leads to, also by links. @return false when there is nothing
[[nodiscard]] bool identify(const char *name, FileIdentity &identity);

/// Whether two names lead to one regular file, also by links. Devices and pipes are nobody's files.
[[nodiscard]] inline bool same_file(const char *a, const char *b)
{
    FileIdentity first;
    FileIdentity second;
    return identify(a, first) && identify(b, second) && first.regular && same(first, second);
}

/// Whether two names would make one file: neither exists, and their folders and last parts are the same.
[[nodiscard]] bool same_new_file(const char *a, const char *b);

} // namespace orlo

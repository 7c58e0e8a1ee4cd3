// Linux grants memory that it doesn't have (overcommit) and ends a process that touches it, without a word. RLIMIT_DATA counts what
// a process may touch: its data, heap and private writable mappings (getrlimit(2), since Linux 4.7); /proc/self/statm tells the
// same count in pages (proc(5)).

#include "platform/memory_limit.h"

#include "platform/posix/memory_left.h"

#include <cinttypes>
#include <cstdio>
#include <sys/resource.h>
#include <unistd.h>

namespace orlo {
namespace {

constexpr std::uint64_t SPARED = 16; // one part in so many of what is left stays with everybody else

// bytes of data that the process holds, or 0
std::uint64_t bytes_held()
{
    std::FILE *file = std::fopen("/proc/self/statm", "r");
    if (file == nullptr)
        return 0;
    std::uint64_t pages = 0; // after size, resident, shared, text and lib
    const bool    read  = std::fscanf(file, "%*u %*u %*u %*u %*u %" SCNu64, &pages) == 1;
    std::fclose(file);
    return read ? pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)) : 0;
}

} // namespace

void limit_memory()
{
    const std::uint64_t left = memory_left("");
    const std::uint64_t held = bytes_held();
    rlimit              limit{};
    if (left == NOT_TOLD || held == 0 || getrlimit(RLIMIT_DATA, &limit) != 0 || limit.rlim_cur <= held + left - left / SPARED)
        return;
    limit.rlim_cur = held + left - left / SPARED;
    static_cast<void>(setrlimit(RLIMIT_DATA, &limit));
}

void on_exhaustion(void (*)()) {}

} // namespace orlo

// madvise(2) takes whole pages; where a system has no such advice, there is nothing to do.

#include "platform/large_pages.h"

#include <cstdint>
#include <sys/mman.h>
#include <unistd.h>

namespace orlo {

#ifdef MADV_HUGEPAGE
void prefer_large_pages(void *memory, std::size_t bytes)
{
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const auto skip = (page - reinterpret_cast<std::uintptr_t>(memory) % page) % page;
    if (skip < bytes)
        static_cast<void>(madvise(static_cast<char *>(memory) + skip, bytes - skip, MADV_HUGEPAGE));
}
#else
void prefer_large_pages(void *, std::size_t) {}
#endif

} // namespace orlo

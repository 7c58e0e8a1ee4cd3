// exhaustion.h: memory that runs out, as a value.
#pragma once

#include <new>

namespace orlo {

/// What work() returns, or the other value when memory was exhausted on the way. Where there are no exceptions the program has
/// ended by then, through what on_exhaustion was given.
template <class Work, class Value> auto unless_exhausted(Work work, [[maybe_unused]] Value exhausted) -> decltype(work())
{
#ifdef __cpp_exceptions
    try {
        return work();
    } catch (const std::bad_alloc &) {
        return exhausted;
    }
#else
    return work();
#endif
}

} // namespace orlo

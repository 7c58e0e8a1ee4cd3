// large_pages.h: memory that is used as a whole, by large pages where the system has them: it is asked for less often.
#pragma once

#include <cstddef>

namespace orlo {

/// Says that all of a piece of memory is going to be used. Nothing depends on it.
void prefer_large_pages(void *memory, std::size_t bytes);

} // namespace orlo

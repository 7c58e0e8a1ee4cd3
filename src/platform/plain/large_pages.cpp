#include "platform/large_pages.h"

namespace orlo {

void prefer_large_pages(void *, std::size_t) {}

} // namespace orlo

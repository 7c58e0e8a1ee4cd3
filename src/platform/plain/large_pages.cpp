#include "platform/large_pages.h"

namespace orlo {

void prefer_large_pages(void * /*memory*/, std::size_t /*bytes*/) {}

} // namespace orlo

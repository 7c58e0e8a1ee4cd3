// The host sets the limit. There are no exceptions here: a request that can't be met by the handler would write to address 0.

#include "platform/memory_limit.h"

#include <new>

namespace orlo {

void limit_memory() {}

void on_exhaustion(void (*end)()) { std::set_new_handler(end); }

} // namespace orlo

// Where the system grants no memory that it doesn't have, an allocation fails by itself.

#include "platform/memory_limit.h"

namespace orlo {

void limit_memory() {}

void on_exhaustion(void (* /*end*/)()) {}

} // namespace orlo

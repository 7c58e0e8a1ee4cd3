#include "base/observer.h"

namespace orlo {

const Observer *observer = nullptr;

} // namespace orlo

#include "explain/hints/hints.h"

namespace orlo::explain {

void look_at_letters(Finder &finder) { static_cast<void>(finder); }

} // namespace orlo::explain

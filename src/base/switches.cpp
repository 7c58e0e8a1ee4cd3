#include "base/switches.h"

namespace orlo {

bool MKMIDI      = false;
bool MKLOG       = false;
bool SUPRESS     = false;
bool MKEXP       = false;
bool SHOW_TEMPOS = false;

void reset_switches()
{
    MKMIDI      = false;
    MKLOG       = false;
    SUPRESS     = false;
    MKEXP       = false;
    SHOW_TEMPOS = false;
}

} // namespace orlo

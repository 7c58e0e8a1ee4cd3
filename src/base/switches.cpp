#include "base/switches.h"

namespace orlo {

bool MKMIDI;
bool MKLOG;
bool SUPRESS;
bool MKEXP;
bool SHOW_TEMPOS;

void reset_switches()
{
    MKMIDI      = false;
    MKLOG       = false;
    SUPRESS     = false;
    MKEXP       = false;
    SHOW_TEMPOS = false;
}

} // namespace orlo

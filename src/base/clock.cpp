#include "base/clock.h"

namespace orlo {
namespace {

constexpr float START_TEMPO = 60.0F;

} // namespace

double CUM_TIME;
double LAST_IB_DUR;
float  TEMPO;

void reset_clock()
{
    CUM_TIME    = 0.0;
    LAST_IB_DUR = 0.0;
    TEMPO       = START_TEMPO;
}

} // namespace orlo

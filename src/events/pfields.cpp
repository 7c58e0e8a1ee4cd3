#include "events/pfields.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace orlo {

std::int32_t  MAX_PFIELDS;
bool          DID_P[MOST_PFIELDS + 1];
std::int32_t *OUTS;
std::int32_t *RE_FW;
std::int32_t *FFT_SZ;

bool make_pfield_record(std::int32_t n)
{
    free_pfield_record();
    const auto slots = static_cast<std::size_t>(n - 1);

    OUTS   = static_cast<std::int32_t *>(std::calloc(slots, sizeof(std::int32_t)));
    RE_FW  = static_cast<std::int32_t *>(std::calloc(slots, sizeof(std::int32_t)));
    FFT_SZ = static_cast<std::int32_t *>(std::calloc(slots, sizeof(std::int32_t)));
    if (OUTS != nullptr && RE_FW != nullptr && FFT_SZ != nullptr)
        return true;
    free_pfield_record();
    return false;
}

void free_pfield_record()
{
    std::free(OUTS);
    std::free(RE_FW);
    std::free(FFT_SZ);
    OUTS   = nullptr;
    RE_FW  = nullptr;
    FFT_SZ = nullptr;
}

void clear_pfields_done() { std::fill(std::begin(DID_P), std::end(DID_P), false); }

void reset_pfields()
{
    free_pfield_record();
    clear_pfields_done();
    MAX_PFIELDS = 0;
}

} // namespace orlo

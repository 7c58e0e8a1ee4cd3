#include "output/midi_numbers.h"

#include "base/numerics.h"

namespace orlo {

std::uint64_t ticks(float seconds)
{
    const float count = seconds * TICKS_PER_SECOND;
    return count < 0.0F ? 0 : to_uint64(static_cast<double>(count));
}

unsigned VLSize(std::uint64_t value)
{
    unsigned bytes = 1;
    while ((value >>= 7) != 0)
        ++bytes;
    return bytes;
}

void WriteVarLen(std::uint64_t value, std::FILE *out)
{
    for (unsigned group = VLSize(value) - 1; group > 0; --group)
        std::putc(static_cast<int>((value >> (7 * group) & 0x7F) | 0x80), out);
    std::putc(static_cast<int>(value & 0x7F), out);
}

} // namespace orlo

// Times and numbers as a MIDI file holds them.
#pragma once

#include <cstdint>
#include <cstdio>

namespace orlo {

inline constexpr float TICKS_PER_SECOND = 480.0F;

/// Seconds as ticks, truncated; a negative time gives 0, one that is no number or out of range 2^63.
[[nodiscard]] std::uint64_t ticks(float seconds);

/// Bytes of a number as a variable-length quantity: seven bits each.
[[nodiscard]] unsigned VLSize(std::uint64_t value);

/// A number as a variable-length quantity: seven bits a byte, most significant first, the top bit set in all but the last.
void WriteVarLen(std::uint64_t value, std::FILE *out);

} // namespace orlo

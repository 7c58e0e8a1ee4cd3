// Where the events of a block live: memory that is handed out piece after piece and given back all at once. Knows nothing of what
// is kept in it.
#pragma once

#include <cstddef>

namespace orlo {

extern std::size_t ARENA_CHUNK; // bytes of the first chunk, 2^20 at start; 0 in tests, so that each piece can be refused

/// A piece of memory, aligned for a pointer, with nothing in it; null when memory is exhausted.
[[nodiscard]] void *take_piece(std::size_t bytes);

/// Gives every piece back.
void give_back_pieces();

} // namespace orlo

// The events of a block come one after another and go together, so that no piece needs a record of its own, and a walk over the
// list is a walk over memory. Chunks are chained; only the last one has room. A block that needs a second one needs many: those are
// larger, and the system gives them in large pages, which is a tenth of the time of a long run.

#include "events/arena.h"

#include "platform/large_pages.h"

#include <algorithm>
#include <cstdlib>

namespace orlo {

std::size_t ARENA_CHUNK = std::size_t{1} << 20;

namespace {

constexpr std::size_t MORE = 8; // times as large are the chunks behind the first

struct Chunk {
    Chunk *before; // the pieces lie after this
};

Chunk *last = nullptr; // the chunk that pieces are taken from, null when there is none
char  *next = nullptr; // the first byte of it that is free
char  *end  = nullptr;

bool add_chunk(std::size_t bytes)
{
    const bool        many  = last != nullptr;
    const std::size_t size  = std::max(many ? MORE * ARENA_CHUNK : ARENA_CHUNK, sizeof(Chunk) + bytes);
    auto             *chunk = static_cast<Chunk *>(std::malloc(size));
    if (chunk == nullptr)
        return false;
    if (many)
        prefer_large_pages(chunk, size);
    chunk->before = last;
    last          = chunk;
    next          = reinterpret_cast<char *>(chunk + 1);
    end           = reinterpret_cast<char *>(chunk) + size;
    return true;
}

} // namespace

void *take_piece(std::size_t bytes)
{
    bytes = (bytes + alignof(Chunk) - 1) / alignof(Chunk) * alignof(Chunk);
    if (bytes > static_cast<std::size_t>(end - next) && !add_chunk(bytes))
        return nullptr;
    void *piece = next;
    next += bytes;
    return piece;
}

void give_back_pieces()
{
    while (last != nullptr) {
        Chunk *before = last->before;
        std::free(last);
        last = before;
    }
    next = nullptr;
    end  = nullptr;
}

} // namespace orlo

// The first pass: copies the input into the combined input that everything else reads, with every included file in its place.
#pragma once

#include <cstdint>
#include <cstdio>

namespace orlo {

inline constexpr std::uint32_t MAX_INCLUDE_CALLS = 12;  // files copied in a run, the main input among them
inline constexpr std::size_t   MAX_INCLUDE_NAME  = 255; // characters of a file name

/// The part of a file that is the piece, in bytes.
struct Extent {
    std::uint64_t begin;
    std::uint64_t end; // after its last byte; WHOLE_FILE is further than any file reaches
};

inline constexpr std::uint64_t WHOLE_FILE = ~std::uint64_t{0};

/// Copies a file, replacing each "#include |name|" outside comments and score lines by the contents of the named file.
/// @param calls files copied so far in the run, grown by each call
/// An included file that is one of the run's outputs is refused, and spared.
/// @return OK, or a positive number after the failure has been printed
/// @param extent what is copied of it; the file stands at its beginning
[[nodiscard]] int parse_includes(std::FILE *in, std::FILE *out, std::uint32_t &calls, Extent extent = {0, WHOLE_FILE});

} // namespace orlo

// output_files.h: the files that a run writes. An earlier file of the same name is opened as it is and emptied when the first byte
// for it is on its way, so that a run that fails before leaves it. Writes nothing itself.
#pragma once

#include <cstddef>
#include <cstdio>

namespace orlo {

inline constexpr int MOST_OUTPUTS = 3; // score, trace and log

/// Opens a file for writing, and makes it when there is none. @return the stream, or null
[[nodiscard]] std::FILE *open_output(const char *name);

inline constexpr std::size_t LARGE_WRITE = 65536; // systems take pieces of this size, at multiples of it, for much less

/// Has one output of the run written in pieces of LARGE_WRITE, where it is a regular file in which nothing is shown meanwhile. To
/// be called before its first byte.
void write_in_large_pieces(std::FILE *output);

/// Says that bytes for an output are on their way: an earlier file is emptied, once. To be called before its first byte, at least.
/// @return false when the output is spared, or null
bool begin_output(std::FILE *output);

/// The output that is the same regular file as an open input, null when there is none.
[[nodiscard]] std::FILE *find_output(std::FILE *input);

/// Whether a stream leads to the same file, device or pipe as an output.
[[nodiscard]] bool is_output(std::FILE *stream);

/// Leaves what is in an output as it is, for the rest of the run.
void spare_output(std::FILE *output);

/// Closes an output, if it is open, and sets it to null. @return false when anything that was written is lost
bool close_output(std::FILE *&output);

} // namespace orlo

// files.h: whole files in and out of memory, and what kind of file a score is. Prints nothing.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace orlo::score {

enum class Kind { score, midi, orlo };

/// Reads a file to its end, "-" is the standard input.
/// @param most bytes it may have
/// @return what went wrong, as the end of a sentence "can't read FILE: "; empty when nothing did
[[nodiscard]] std::string read_file(const std::string &name, std::size_t most, std::string &bytes);

/// Writes a file, "-" is the standard output.
/// @return what went wrong; empty when nothing did
[[nodiscard]] std::string write_file(const std::string &name, std::string_view bytes);

/// Are two names those of one file that exists? "-" is the standard input, or output.
bool same_file(const std::string &in, const std::string &out);

/// Name without folders; of "-" it is "(standard input)".
std::string title_of(const std::string &name);

/// What kind of file it is: a MIDI file begins with "MThd", an input of orlo has the ending .orlo or, at the
/// start of a line outside comments, the head of a block "i NUMBER =".
Kind kind_of(const std::string &name, std::string_view bytes);

} // namespace orlo::score

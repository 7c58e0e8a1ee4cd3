// finder.h: what the rooms of the hints share: the piece, its text by places, and words for figures. Changes nothing of the piece.
#pragma once

#include "base/markup.h"
#include "explain/gathered.h"
#include "explain/hints/hint.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orlo::explain {

/// A piece, and what has been found in it so far.
struct Finder {
    const Piece      &piece;
    bool              midi;
    std::vector<Hint> found;
};

/// Adds a hint; one about the same text as another of its kind, which came through another call, is left out.
void add(Finder &finder, Hint hint);

/// Whether a block has a hint of a kind by now.
[[nodiscard]] bool has_hint(const Finder &finder, HintKind kind, const Block &block);

/// The text of a file, and how many bytes stand before it in the file.
[[nodiscard]] const File &file_of(const Finder &finder, const Place &place);

/// Where a byte of a file stands in its text.
[[nodiscard]] std::size_t offset(const File &file, std::uint64_t byte);

/// The text at a place; empty for no place.
[[nodiscard]] std::string_view text_at(const Finder &finder, const Place &place);

inline constexpr std::size_t MOST_LINE = 2047; // bytes; longer lines are read in pieces

/// The characters after, and before, a place on its line, without the line end.
[[nodiscard]] std::string_view text_behind(const Finder &finder, const Place &place);
[[nodiscard]] std::string_view text_before(const Finder &finder, const Place &place);

/// The character at a byte of a file; a line end outside its text.
[[nodiscard]] char char_at(const Finder &finder, std::int32_t file, std::uint64_t byte);

/// A text in which blanks stand for comments, so that everything else keeps its place. The text begins outside comments.
[[nodiscard]] std::string without_comments(std::string_view text);

/// Whether a place is written in the piece itself, or in an included file, and came through no call.
[[nodiscard]] inline bool is_plain(const Place &place) { return place.file != NONE && place.call == NONE; }

/// The outermost call through which a place came, as it is written; the place itself if there is none.
[[nodiscard]] Place outermost(const Finder &finder, Place place);

/// Empty places where a text begins and ends, for what is to be put in.
[[nodiscard]] Place before(const Place &place);
[[nodiscard]] Place behind(const Place &place);

/// A block as it is called in a sentence: "block 2 (i3)".
[[nodiscard]] std::string name_of(const Finder &finder, const Block &block);

/// A section as it is called in a sentence: "p5".
[[nodiscard]] std::string name_of(const Section &section);

/// A generator as it is written.
[[nodiscard]] std::string name_of_command(const Command &command);

/// Where the text of a section ends: an empty place where the next one begins, or behind its block, which is closed.
[[nodiscard]] Place end_of_section(const Finder &finder, const Block &block, std::size_t index);

/// Index of a block.
[[nodiscard]] std::int32_t index_of(const Finder &finder, const Block &block);

/// A text in quotation marks.
[[nodiscard]] std::string quoted(std::string_view text);

/// Takes a text out, with its line where nothing else stands there.
[[nodiscard]] std::vector<Edit> take_out(const Finder &finder, const Place &place);

/// Whether a block's values are all known: it was read to its end as in a run.
[[nodiscard]] inline bool is_whole(const Block &block) { return block.closed && !block.skipped && !block.recovered; }

} // namespace orlo::explain

// source_map.h: where every character of a line comes from: the file, the place in it, and the calls through which it came. Reads
// no file and knows no language; the lines, files and calls of a run are told to it.
#pragma once

#include "base/observer.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orlo::gather {

inline constexpr std::int32_t NONE = -1; // no call, no file, no place

/// Some text of a file, and the call through which it is seen.
struct Place {
    std::int32_t  file  = NONE;
    std::uint64_t begin = 0; // bytes of the file
    std::uint64_t end   = 0; // behind its last byte
    std::int32_t  call  = NONE;
};

/// Characters of a text whose origins follow each other.
struct Stretch {
    std::size_t   column; // of its first character
    std::uint64_t begin;  // byte of the combined input where that one comes from
    std::uint64_t end;    // behind its last; every character of a stretch that is written anew comes from all of it
    std::int32_t  call;
    bool          anew; // the characters are no copies: the text of a number
};

/// The origins of a text, character by character.
struct TextMap {
    std::vector<Stretch> stretches; // in the order of their columns
    std::size_t          length = 0;
};

/// A part of a text as a text of its own, which comes through a call if one is given.
[[nodiscard]] TextMap part_of(const TextMap &text, std::size_t begin, std::size_t end, std::int32_t call = NONE);

/// Adds a text behind another.
void append(TextMap &text, const TextMap &more);

/// A text that is written anew, and comes from all of another as a whole.
[[nodiscard]] TextMap as_number(const TextMap &text);

/// Replaces a part of a text.
void splice(TextMap &text, std::size_t begin, std::size_t end, const TextMap &inner);

/// UTF-16 units of a text before one of its characters.
struct UnitMark {
    std::uint64_t byte;
    std::uint64_t units;
};

struct File {
    std::string                name;
    bool                       found = false;
    Place                      included;       // the directive; without a file for the piece
    std::uint64_t              skipped    = 0; // bytes before the text
    std::uint64_t              first_line = 0; // line on which the text begins
    std::string                text;           // what was read of it
    std::vector<std::uint64_t> lines;          // where its lines begin, by bytes of the text
    std::vector<UnitMark>      marks;          // at some of its characters; none when every character is a single byte
};

struct Call {
    CallKind     kind;
    std::string  name;
    std::int32_t of    = NONE; // index of what it stands for
    double       value = 0.0;
    Place        place; // where it is written
    unsigned     depth = 0;
};

/// A position as editors have it.
struct Position {
    std::uint64_t line;
    std::uint64_t byte;
    std::uint64_t utf16;
};

class SourceMap {
  public:
    // files
    void open(std::string_view name, bool found);
    void leave();
    void include_met(std::uint64_t begin, std::uint64_t end);
    void add_text(std::string_view bytes);
    void copy_continues(std::uint64_t to, std::uint64_t from);
    void skip_in_piece(std::uint64_t bytes, std::uint64_t lines); // what stands before the piece in its file; to be called first

    // lines and calls
    void         read_line(std::uint64_t offset, std::size_t length);
    std::int32_t call(CallKind kind, std::string_view name, std::int32_t of, double value, std::size_t begin, std::size_t end,
                      const TextMap &body);
    void         take_argument(std::string_view name, std::size_t begin, std::size_t end);
    void         replace(std::size_t begin, std::size_t end, std::size_t length);

    /// The body of an argument by its name, of the call whose body is being expanded; null when there is none.
    [[nodiscard]] const TextMap *argument(std::string_view name) const;

    /// The line as the parsers see it.
    [[nodiscard]] const TextMap &line() const { return texts.front().map; }

    /// A part of the line; nothing at its end for an empty one.
    [[nodiscard]] Place place_of(std::size_t begin, std::size_t end) const { return place_in(line(), begin, end); }

    /// The same of the text that is being expanded, and whether there is one but the line.
    [[nodiscard]] Place place_on_top(std::size_t begin, std::size_t end) const { return place_in(texts.back().map, begin, end); }
    [[nodiscard]] bool  in_call() const { return texts.size() > 1; }

    /// The call whose number a column of the line divides in two, and how long the first part is; NONE where it divides none.
    [[nodiscard]] std::int32_t divided_call(std::size_t column, std::size_t &length) const;

    /// The smallest text that holds both: both are lifted to the innermost call or file that they share.
    [[nodiscard]] Place join(Place first, Place last) const;

    /// Whether a place is the end of a line of its file, and nothing else.
    [[nodiscard]] bool is_line_end(const Place &place) const;

    /// The directive that was met last.
    [[nodiscard]] Place last_include() const { return directive; }

    [[nodiscard]] Position position(std::int32_t file, std::uint64_t byte);

    /// Tables of files for position; to be called when all text is there.
    void index_files();

    [[nodiscard]] const std::vector<File> &files() const { return all_files; }
    [[nodiscard]] const std::vector<Call> &calls() const { return all_calls; }
    [[nodiscard]] bool                     has_lines() const { return lines_read; }

  private:
    struct Copy { // from a byte of the combined input on
        std::uint64_t to;
        std::uint64_t from;
        std::int32_t  file;
    };
    struct Argument {
        std::string name;
        TextMap     map;
    };
    struct Text {
        TextMap               map;
        std::vector<Argument> arguments;
    };

    [[nodiscard]] Place    at(const TextMap &text, std::size_t column) const;
    [[nodiscard]] Place    place_in(const TextMap &text, std::size_t begin, std::size_t end) const;
    [[nodiscard]] Place    resolve(std::uint64_t begin, std::uint64_t end, std::int32_t call) const;
    [[nodiscard]] Place    lift(const Place &place) const;
    [[nodiscard]] unsigned depth(const Place &place) const;

    std::vector<File>         all_files;
    std::vector<unsigned>     file_depths;
    std::vector<std::int32_t> open_files; // the last one is being copied
    std::vector<Copy>         copies;
    mutable std::size_t       last_copy = 0; // where resolve has looked last
    Place                     directive;
    std::vector<Call>         all_calls;
    std::vector<Text>         texts            = std::vector<Text>(1); // the line, then the bodies that are being expanded
    std::uint64_t             piece_skipped    = 0;
    std::uint64_t             piece_first_line = 0;
    std::vector<Argument>     arguments; // of the next call
    bool                      lines_read = false;
};

} // namespace orlo::gather

// The one place where input lines come from: reading, comments and what may be skipped between items.
// Knows nothing of i-blocks.
#pragma once

#include "base/observer.h"
#include "diag/messages.h"
#include "diag/report.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace orlo {

inline constexpr std::size_t LINE_SIZE  = 2048; // bytes of a line with its NUL; longer lines arrive in pieces
inline constexpr std::size_t BLOCK_SIZE = 16384;

/// What all parsers read from: one line at a time and a position in it. Owned by the driver, handed on by address.
struct Input {
    std::FILE    *stream;              // the combined input, read by blocks
    bool          ended;               // nothing is left after the line, false at start; written by get_buff
    std::uint64_t line_no;             // lines read so far, 0 at start; written by get_buff
    std::uint32_t pos;                 // next character of the line, 0 at start; left after what was consumed
    char          line[LINE_SIZE + 1]; // NUL-terminated; one byte more, for a position just past the NUL
    std::uint64_t offset;              // of the block in the combined input, 0 at start
    std::size_t   next; // the first byte of the block that is in no line yet, 0 at start; as the rest of get_buff alone
    std::size_t   end;  // bytes in the block
    char          block[BLOCK_SIZE];
};

extern std::FILE *fecho;             // the open trace, null without one; set by the driver, as the next
extern bool       trace_is_terminal; // somebody looks at the trace as it is written, false at start

enum class Comment : int { line, block };

/// Reads the next line, follows conditional directives, expands macros and constants, and traces the result.
/// @return 0 with the position at the first character to scan, END_OF_INPUT with everything as it was, or an error
[[nodiscard]] int get_buff(Input &in);

/// The character at the position.
[[nodiscard]] inline char peek(const Input &in) { return in.line[in.pos]; }

/// The character at the position, which moves on by one, past the NUL too. Only tests call it.
char get_c(Input &in);

/// Character classes as they are in the default locale, for any byte.
[[nodiscard]] constexpr bool is_blank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
[[nodiscard]] constexpr bool is_digit(char c) { return c >= '0' && c <= '9'; }
[[nodiscard]] constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
[[nodiscard]] constexpr bool is_letter(char c) { return lower(c) >= 'a' && lower(c) <= 'z'; }

/// Whether a comment starts at the position of the line; kind says which.
[[nodiscard]] bool is_comment(const char *line, std::uint32_t pos, Comment &kind);

/// Moves over a comment of the kind that starts at the position; block comments nest and may span lines.
/// @return 0, or what get_buff said (END_OF_INPUT included) inside a block comment
[[nodiscard]] int skip_comment(Input &in, Comment kind);

/// As skip_comment, for callers to whom the end of the input is no error.
/// @return 0, 32, or 25 for any other error met inside the comment
[[nodiscard]] int pass_comment(Input &in, Comment kind);

/// Moves over blanks within the line.
inline void skip_blanks(Input &in)
{
    while (is_blank(peek(in)))
        ++in.pos;
}

/// Moves over blanks and line ends. @return 0 on a character that is not blank, END_OF_INPUT, or an error
[[nodiscard]] int skip_lines(Input &in);

/// As skip_lines, for callers to whom the end of the input is no error: the position is on a NUL there. @return 0 or an error
[[nodiscard]] int skip_space(Input &in);

/// Moves over blanks, line ends and one comment. @return 0 or an error; the end of the input is no error
[[nodiscard]] int skip_wc(Input &in);

/// Moves over blanks, line ends, one comment and one separator ("," or "/"). @return 0 or an error
[[nodiscard]] int skip_stuff(Input &in);

/// Where what was read from a position on ends: before the blanks in front of the present one.
[[nodiscard]] std::uint32_t end_of_item(const Input &in, std::uint32_t begin);

/// Tells the observer of a number in a command's text, from a position to the present one.
inline void tell_number(const Input &in, Part part, double value, std::uint32_t begin)
{
    if (observer == nullptr)
        return;
    const std::uint32_t end = end_of_item(in, begin);
    while (begin < end && is_blank(in.line[begin]))
        ++begin;
    observer->number_read(part, value, begin, end);
}

/// Tells the observer that the text of a command, or of a generator, has been read.
inline void tell_command_read(const Input &in)
{
    if (observer != nullptr)
        observer->command_read(in.pos);
}

/// Tells of an error in words of its own, of which error_no shows the line afterwards; some callers let it pass.
template <class... Args> void complain(const Input &in, std::uint32_t column, const char *format, Args... args)
{
    tell_error(in.line_no, format, args...);
    if (observer != nullptr)
        observer->message_place(in.line, column);
}

/// As complain, at the position.
template <class... Args> void complain_here(const Input &in, const char *format, Args... args)
{
    complain(in, in.pos, format, args...);
}

/// Reports a warning with the line and the position where it was found, unless warnings are suppressed.
void warn(const Input &in, Warning number);

} // namespace orlo

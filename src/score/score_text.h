// score_text.h: the text of a Csound score, p-field by p-field: blanks, comments, lines, and what a p-field may be written as.
// Knows nothing of events.
#pragma once

#include <string>
#include <string_view>

namespace orlo::score {

/// Where a reader is in its text.
struct Text {
    const char *at;
    const char *end;
    int         line = 1; ///< 1 is the first
};

/// How a p-field is written.
enum class Mark {
    number,     ///< a finite number: Field::value
    text,       ///< "...", with its quotes in Field::word
    carry,      ///< "."
    plus,       ///< "+"
    shift,      ///< "^+x", "^-x": Field::value is x with its sign
    ramp,       ///< "<" or ">"
    next,       ///< "npN": Field::value is N
    previous,   ///< "ppN": Field::value is N
    stop,       ///< "!"
    expression, ///< "[...]"
    no_end,     ///< a string or an expression without an end on its line
    not_finite, ///< a number too large for a double, or inf or nan
    unknown,    ///< anything else
};

/// One p-field as it is written.
struct Field {
    Mark             mark;
    double           value;
    std::string_view word; ///< all of it
};

/// Moves over blanks and comments of a line, also over those comments that end on a later one, and over lines that a backslash
/// continues.
void skip_blanks(Text &text);

/// Moves over blanks, comments and line ends.
void skip_to_statement(Text &text);

/// Moves to the end of the line, in front of its line end.
void skip_line(Text &text);

/// Reads the next p-field of a statement. A line that begins like a number continues the statement of the line before it.
/// @return false at the statement's end, where the next statement begins: not to be called again before that is read
bool next_field(Text &text, Field &field);

/// A word of a file as it may stand in a message: in quotes, bytes that do not print as \xNN, at most 40 bytes of it.
std::string quoted(std::string_view word);

} // namespace orlo::score

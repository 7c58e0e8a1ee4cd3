// How the expansion passes follow comments: by flags that each character sets or clears with a look at the next one. So "/*/" opens
// and closes a comment, and "/*" counts behind a ";" too.
#pragma once

namespace orlo {

struct CommentFlags {
    bool comment; // inside a comment of either kind
    bool block;   // a block comment is open
};

inline void follow_comment(CommentFlags &flags, char c, char next)
{
    if (c == '/' && next == '*') {
        flags = {true, true};
    } else if (c == '*' && next == '/') {
        flags = {false, false};
    } else if (c == ';') {
        flags.comment = true;
    }
}

/// At a line's end only a block comment goes on.
inline void end_line(CommentFlags &flags) { flags.comment = flags.block; }

} // namespace orlo

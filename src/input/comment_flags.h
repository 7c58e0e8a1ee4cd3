// Comments as flags that each character sets or clears with a look at the next one, without stepping over marks: so "/*/" opens and
// closes a block comment.
#pragma once

namespace orlo {

/// How the expansion passes over a line follow comments: "*/" ends a comment of either kind, and "/*" counts behind a ";" too.
struct CommentFlags {
    bool comment; // inside a comment of either kind
    bool block;   // a block comment is open
};

inline void follow_comment(CommentFlags &flags, char c, char next)
{
    if (c == '/' && next == '*')
        flags = {true, true};
    else if (c == '*' && next == '/')
        flags = {false, false};
    else if (c == ';')
        flags.comment = true;
}

/// How macro bodies and the lines of a false block are read: two kinds of comment that do not look at each other.
/// A line comment ends with its line alone.
struct SeparateFlags {
    bool line;
    bool block;
};

inline void follow_comment(SeparateFlags &flags, char c, char next)
{
    if (c == ';')
        flags.line = true;
    else if (c == '/' && next == '*')
        flags.block = true;
    else if (c == '*' && next == '/')
        flags.block = false;
}

} // namespace orlo

// Comments as flags that each character sets or clears with a look at the next one, without stepping over marks: so "/*/" opens and
// closes a block comment.
#pragma once

namespace orlo {

/// How the expansion passes over a line follow comments: "*/" ends a comment of either kind, and "/*" counts after a ";" too.
struct PassComments {
    bool comment; // inside a comment of either kind
    bool block;   // a block comment is open
};

inline void follow_comment(PassComments &flags, char c, char next)
{
    if (c == '/' && next == '*')
        flags = {true, true};
    else if (c == '*' && next == '/')
        flags = {false, false};
    else if (c == ';')
        flags.comment = true;
}

/// How text that is taken or skipped as it is, macro bodies and the lines of a false block, follows comments: inside a comment
/// nothing but its end counts, which for a line comment is the end of its line.
struct RawComments {
    bool line;
    bool block;
};

inline void follow_comment(RawComments &flags, char c, char next)
{
    if (flags.line)
        return;
    if (flags.block)
        flags.block = c != '*' || next != '/';
    else if (c == ';')
        flags.line = true;
    else
        flags.block = c == '/' && next == '*';
}

} // namespace orlo

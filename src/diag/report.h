// Everything the user reads on the screen: messages, errors and warnings, and their copy in the log.
// Never decides what is an error.
#pragma once

#include "base/observer.h"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace orlo {

inline constexpr std::size_t MOST_KEPT_TEXT = 16384; // characters that are kept for a log until it is started

extern std::FILE *fllog; // the log that is written, null without one or before its start; written by start_log and end_log

/// Starts the log of a run with one (MKLOG): it receives what was said so far, and a copy of all that is said from here on.
void start_log(std::FILE *log);

/// From here on nothing is copied to the log or kept for it.
void end_log();

/// No log, and nothing kept.
void reset_report();

/// One argument of Mprintf, tagged with the kind of value that it holds.
struct MprintfArg {
    enum class Kind { whole, single, real, character, text } kind;
    union {
        std::int64_t whole;
        float        single;
        double       real;
        char         character;
        const char  *text;
    };
    template <std::integral T> MprintfArg(T v) : kind{Kind::whole}, whole{static_cast<std::int64_t>(v)} {}
    MprintfArg(char v) : kind{Kind::character}, character{v} {}
    MprintfArg(float v) : kind{Kind::single}, single{v} {}
    MprintfArg(double v) : kind{Kind::real}, real{v} {}
    MprintfArg(const char *v) : kind{Kind::text}, text{v} {}
};

/// Mprintf with its arguments in an array.
void Mprintf_args(const char *format, const MprintfArg *args, int count);

/// Prints a format to the screen and, when there is one, to the log. On a terminal, what a "%s" stands for can't command it:
/// control characters and what is no UTF-8 become a visible character each. Conversions are "%d", "%f" (always as "%7.2f"),
/// "%c" and "%s"; any other character after "%" stands for itself and takes no argument. Write errors are ignored.
template <class... Args> void Mprintf(const char *format, Args... args)
{
    if constexpr (sizeof...(args) == 0) {
        Mprintf_args(format, nullptr, 0);
    } else {
        const MprintfArg list[] = {args...};
        Mprintf_args(format, list, static_cast<int>(sizeof...(args)));
    }
}

/// tell with its arguments in an array.
void tell_args(Severity severity, const char *lead, const char *format, const char *tail, const MprintfArg *args, int count);

/// Prints a message of words of its own, as Mprintf does, between a lead and a tail that are layout.
template <class... Args> void tell(Severity severity, const char *lead, const char *format, const char *tail, Args... args)
{
    if constexpr (sizeof...(args) == 0) {
        tell_args(severity, lead, format, tail, nullptr, 0);
    } else {
        const MprintfArg list[] = {args...};
        tell_args(severity, lead, format, tail, list, static_cast<int>(sizeof...(args)));
    }
}

/// As tell, for an error in a line, which is shown by error_no afterwards.
template <class... Args> void tell_error(std::uint64_t line_no, const char *format, Args... args)
{
    Mprintf("\n\nERROR: Line %d: ", line_no);
    tell(Severity::error, "", format, "\n", args...);
}

/// print with its arguments in an array.
void print_args(std::FILE *stream, const char *format, const MprintfArg *args, int count);

/// As Mprintf, to any one stream.
template <class... Args> void print(std::FILE *stream, const char *format, Args... args)
{
    const MprintfArg list[] = {args...};
    print_args(stream, format, list, static_cast<int>(sizeof...(args)));
}

/// Text of somebody else as a terminal may get it, where a control character other than a tab is shown and does nothing.
void put_safely(std::FILE *stream, const char *text);

/// Prints a line and, beneath it, a caret under the column. A line end inside the line is shown as "L".
/// An empty line gives an empty second line; a column past the end gives blanks without a caret. Only tests call it.
void put_buff(std::FILE *stream, const char *line, unsigned column);

/// Reports an error number with the line where it was found; 999 prints nothing, 1000 the line and caret alone.
void error_no(int number, std::uint64_t line_no, const char *line, unsigned column);

/// Reports a warning number with the line where it was found, unless warnings are suppressed.
void warning_no(int number, std::uint64_t line_no, const char *line, unsigned column);

} // namespace orlo

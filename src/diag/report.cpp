// A message is collected in a small buffer on the stack and leaves it in one piece, or in several when it is longer than the
// buffer: where the screen shows it at once, every piece costs a write to the system. Nothing is allocated: an exhausted memory can
// still be reported.

#include "diag/report.h"

#include "base/number_text.h"
#include "base/switches.h"
#include "diag/messages.h"
#include "platform/screen.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace orlo {

std::FILE *fllog = nullptr;

namespace {

// What is said before the log is started: at most MOST_INCLUDE_CALLS notices and one message, which are far shorter.
struct Kept {
    std::size_t used;
    char        text[MOST_KEPT_TEXT];
};

Kept kept{};

void keep(const char *text, std::size_t length)
{
    length = std::min(length, sizeof kept.text - kept.used);
    std::memcpy(kept.text + kept.used, text, length);
    kept.used += length;
}

void write_to_log(const char *text, std::size_t length)
{
    if (fllog != nullptr)
        std::fwrite(text, 1, length, fllog);
    else
        keep(text, length);
}

struct Text {
    std::FILE  *stream; // the screen
    bool        logged; // also goes to the log
    std::size_t used;
    char        buffer[4608]; // holds a whole line of input and its caret line
};

void flush(Text &out)
{
    if (out.stream == stderr)
        put_on_screen(out.buffer, out.used);
    else
        std::fwrite(out.buffer, 1, out.used, out.stream);
    if (out.logged)
        write_to_log(out.buffer, out.used);
    out.used = 0;
}

void put(Text &out, char c)
{
    if (out.used == sizeof out.buffer)
        flush(out);
    out.buffer[out.used++] = c;
}

void put_block(Text &out, const char *text, const char *end)
{
    while (text != end) {
        if (out.used == sizeof out.buffer)
            flush(out);
        const std::size_t piece = std::min(static_cast<std::size_t>(end - text), sizeof out.buffer - out.used);
        std::memcpy(out.buffer + out.used, text, piece);
        out.used += piece;
        text += piece;
    }
}

void put_conversion(Text &out, const MprintfArg &arg)
{
    char number[400]; // the longest double has 309 digits before its point
    switch (arg.kind) {
    case MprintfArg::Kind::whole:
        put_block(out, number, std::to_chars(number, number + sizeof number, arg.whole).ptr);
        break;
    case MprintfArg::Kind::single:
        put_block(out, number, put_real(number, arg.single, 7, 2));
        break;
    case MprintfArg::Kind::real:
        put_block(out, number, number + std::snprintf(number, sizeof number, "%7.2f", printable(arg.real)));
        break;
    case MprintfArg::Kind::character:
        put(out, arg.character);
        break;
    case MprintfArg::Kind::text:
        put_block(out, arg.text, arg.text + std::strlen(arg.text));
        break;
    }
}

bool is_conversion(char c) { return c == 'd' || c == 'f' || c == 'c' || c == 's'; }

void put_line(Text &out, const char *line, unsigned column)
{
    const std::size_t length = std::strlen(line);
    for (std::size_t i = 0; i < length; ++i)
        put(out, line[i] == '\n' ? 'L' : line[i]);
    put(out, '\n');
    for (std::size_t i = 0; i < length && i < column; ++i)
        put(out, line[i] == '\t' ? '\t' : ' ');
    if (column < length)
        put(out, '^');
    put(out, '\n');
}

// the line and its caret on the screen and in the log
void show_line(const char *line, unsigned column)
{
    Text out;
    out.stream = stderr;
    out.logged = MKLOG;
    out.used   = 0;
    put_line(out, line, column);
    flush(out);
}

void show_with_line(const char *kind, const char *text, unsigned long line_no, const char *line, unsigned column)
{
    Mprintf("\n\n%s: Line %d: ", kind, line_no);
    Mprintf("%s\n", text);
    show_line(line, column);
}

} // namespace

void start_log(std::FILE *log)
{
    fllog = log;
    std::fwrite(kept.text, 1, kept.used, log);
    kept.used = 0;
}

void end_log()
{
    MKLOG = false;
    fllog = nullptr;
}

void reset_report()
{
    fllog     = nullptr;
    kept.used = 0;
}

void Mprintf_args(const char *format, const MprintfArg *args, int count)
{
    Text out;
    out.stream = stderr;
    out.logged = MKLOG;
    out.used   = 0;

    int next = 0;
    for (const char *c = format;; ++c) {
        const char *plain = c;
        c += std::strcspn(c, "%");
        put_block(out, plain, c);
        if (*c == '\0')
            break;
        ++c;
        if (*c == '\0')
            break;
        if (is_conversion(*c) && next < count)
            put_conversion(out, args[next++]);
        else
            put(out, *c);
    }
    flush(out);
}

void put_buff(std::FILE *stream, const char *line, unsigned column)
{
    Text out;
    out.stream = stream;
    out.logged = false;
    out.used   = 0;
    put_line(out, line, column);
    flush(out);
}

void error_no(int number, unsigned long line_no, const char *line, unsigned column)
{
    if (number == FULLY_REPORTED)
        return;
    if (number == TEXT_REPORTED)
        show_line(line, column);
    else if (error_has_line(number))
        show_with_line("ERROR", error_text(number), line_no, line, column);
    else
        Mprintf("\nERROR: %s\n\n", error_text(number));
}

void warning_no(int number, unsigned long line_no, const char *line, unsigned column)
{
    if (SUPRESS)
        return;
    if (warning_has_line(number))
        show_with_line("WARNING", warning_text(number), line_no, line, column);
    else
        Mprintf("\nWARNING: %s", warning_text(number));
}

} // namespace orlo

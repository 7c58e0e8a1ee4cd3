// A message is collected in a small buffer on the stack and leaves it in one piece, or in several when it is longer than the
// buffer: where the screen shows it at once, every piece costs a write to the system. Nothing is allocated: an exhausted memory can
// still be reported.

#include "diag/report.h"

#include "base/number_text.h"
#include "base/switches.h"
#include "base/visible_text.h"
#include "diag/messages.h"
#include "platform/screen.h"
#include "platform/terminal.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string_view>

namespace orlo {

std::FILE *fllog;

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

bool screen_is_terminal; // found out when a run begins
bool log_is_terminal;    // and when its log is started

struct Text {
    std::FILE  *stream;  // null when it goes to the log alone
    bool        logged;  // also goes to the log
    bool        visible; // goes to a terminal, where text of somebody else is shown safely
    bool        told;    // goes to the observer alone
    std::size_t used;
    char        buffer[4608]; // holds a whole line of input and its caret line
};

void begin(Text &out, std::FILE *stream, bool logged, bool visible)
{
    out.stream  = stream;
    out.logged  = logged;
    out.visible = visible;
    out.told    = false;
    out.used    = 0;
}

void flush(Text &out)
{
    if (out.told)
        observer->message_text(out.buffer, out.used);
    if (out.stream == stderr)
        put_on_screen(out.buffer, out.used);
    else if (out.stream != nullptr)
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

void put_text(Text &out, const char *text) { put_block(out, text, text + std::strlen(text)); }

// text of somebody else
void put_foreign(Text &out, std::string_view text, std::string_view layout)
{
    if (!out.visible) {
        put_block(out, text.data(), text.data() + text.size());
        return;
    }
    for (std::size_t at = 0; at < text.size();) { // each round takes a character
        const VisibleCharacter shown = visible_character(text, at, layout);
        put_block(out, shown.bytes, shown.bytes + shown.length);
        at += shown.step;
    }
}

void put_conversion(Text &out, const MprintfArg &arg)
{
    char number[LONGEST_DOUBLE];
    switch (arg.kind) {
    case MprintfArg::Kind::whole:
        put_block(out, number, std::to_chars(number, number + sizeof number, arg.whole).ptr);
        break;
    case MprintfArg::Kind::single:
        put_block(out, number, put_real(number, arg.single, 7, 2));
        break;
    case MprintfArg::Kind::real:
        put_block(out, number, put_double(number, arg.real, 7, 2));
        break;
    case MprintfArg::Kind::character:
        put(out, arg.character);
        break;
    case MprintfArg::Kind::text:
        put_foreign(out, arg.text, {});
        break;
    }
}

bool is_conversion(char c) { return c == 'd' || c == 'f' || c == 'c' || c == 's'; }

void put_format(Text &out, const char *format, const MprintfArg *args, int count)
{
    int next = 0;
    for (const char *c = format;; ++c) {
        const char *plain = c;
        c += std::strcspn(c, "%");
        put_block(out, plain, c);
        if (*c == '\0')
            return;
        ++c;
        if (*c == '\0')
            return;
        if (is_conversion(*c) && next < count)
            put_conversion(out, args[next++]);
        else
            put(out, *c);
    }
}

// characters before a column: a blank for each, which is each byte where they are not shown as characters
void put_margin(Text &out, std::string_view line, std::size_t column)
{
    for (std::size_t at = 0, step = 1; at < line.size(); at += step) {
        step = out.visible ? visible_character(line, at).step : 1;
        if (at + step > column)
            return;
        put(out, line[at] == '\t' ? '\t' : ' ');
    }
}

void put_line(Text &out, std::string_view line, std::size_t column)
{
    for (std::size_t start = 0; start <= line.size();) { // each round takes the characters up to a line end
        const std::size_t end = std::min(line.find('\n', start), line.size());
        put_foreign(out, line.substr(start, end - start), "\t");
        if (end < line.size())
            put(out, 'L');
        start = end + 1;
    }
    put(out, '\n');
    put_margin(out, line, column);
    if (column < line.size())
        put(out, '^');
    put(out, '\n');
}

// puts text together for screen and log: once, or once for each where they show it differently
template <class Put> void show(Put put_text)
{
    const bool together = screen_is_terminal == log_is_terminal;
    Text       out;
    begin(out, stderr, MKLOG && together, screen_is_terminal);
    put_text(out);
    flush(out);
    if (!MKLOG || together)
        return;
    begin(out, nullptr, true, log_is_terminal);
    put_text(out);
    flush(out);
}

// puts the text of a message together for the observer
template <class Put> void tell_observer(Severity severity, int number, Put put_text)
{
    if (observer == nullptr)
        return;
    Text out;
    begin(out, nullptr, false, false);
    out.told = true;
    observer->message_begins(severity, number);
    put_text(out);
    flush(out);
    observer->message_ends();
}

void tell_place(const char *line, unsigned column)
{
    if (observer != nullptr)
        observer->message_place(line, column);
}

// the line and its caret
void show_line(const char *line, unsigned column)
{
    show([=](Text &out) { put_line(out, line, column); });
}

void show_with_line(const char *kind, const char *text, std::uint64_t line_no, const char *line, unsigned column)
{
    Mprintf("\n\n%s: Line %d: ", kind, line_no);
    show([=](Text &out) { put_text(out, text); });
    Mprintf("\n");
    show_line(line, column);
}

} // namespace

void start_log(std::FILE *log)
{
    Text out;
    fllog           = log;
    log_is_terminal = is_terminal(log);
    begin(out, log, false, log_is_terminal);
    put_foreign(out, {kept.text, kept.used}, "\n\t");
    flush(out);
    kept.used = 0;
}

void end_log()
{
    MKLOG = false;
    fllog = nullptr;
}

void reset_report()
{
    fllog              = nullptr;
    kept.used          = 0;
    screen_is_terminal = is_terminal(stderr);
    log_is_terminal    = false;
}

void Mprintf_args(const char *format, const MprintfArg *args, int count)
{
    show([=](Text &out) { put_format(out, format, args, count); });
}

void tell_args(Severity severity, const char *lead, const char *format, const char *tail, const MprintfArg *args, int count)
{
    show([=](Text &out) {
        put_text(out, lead);
        put_format(out, format, args, count);
        put_text(out, tail);
    });
    tell_observer(severity, 0, [=](Text &out) { put_format(out, format, args, count); });
}

void print_args(std::FILE *stream, const char *format, const MprintfArg *args, int count)
{
    Text out;
    begin(out, stream, false, is_terminal(stream));
    put_format(out, format, args, count);
    flush(out);
}

void put_safely(std::FILE *stream, const char *text)
{
    Text out;
    begin(out, stream, false, true);
    put_foreign(out, text, "\t");
    flush(out);
}

void put_buff(std::FILE *stream, const char *line, unsigned column)
{
    Text out;
    begin(out, stream, false, is_terminal(stream));
    put_line(out, line, column);
    flush(out);
}

void error_no(int number, std::uint64_t line_no, const char *line, unsigned column)
{
    if (number == FULLY_REPORTED)
        return;
    if (number != TEXT_REPORTED)
        tell_observer(Severity::error, number, [=](Text &out) { put_text(out, error_text(number)); });
    if (number == TEXT_REPORTED || error_has_line(number))
        tell_place(line, column);
    if (number == TEXT_REPORTED)
        show_line(line, column);
    else if (error_has_line(number))
        show_with_line("ERROR", error_text(number), line_no, line, column);
    else
        Mprintf("\nERROR: %s\n\n", error_text(number));
}

void warning_no(int number, std::uint64_t line_no, const char *line, unsigned column)
{
    if (SUPRESS)
        return;
    tell_observer(Severity::warning, number, [=](Text &out) { put_text(out, warning_text(number)); });
    if (warning_has_line(number))
        tell_place(line, column);
    if (warning_has_line(number))
        show_with_line("WARNING", warning_text(number), line_no, line, column);
    else
        Mprintf("\nWARNING: %s", warning_text(number));
}

} // namespace orlo

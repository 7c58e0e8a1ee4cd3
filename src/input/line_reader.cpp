// The conditional directives are looked at before anything is expanded, since lines of a false block must stay as they are;
// macros come before constants, because a macro's body may refer to constants. A line without a character that a pass looks for
// leaves its state as it is, so that it is not run over it, unless it belongs to a definition.

#include "input/line_reader.h"

#include "base/switches.h"
#include "diag/report.h"
#include "input/conditionals.h"
#include "input/constants.h"
#include "input/macro_expansion.h"
#include "platform/output_files.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace orlo {

std::FILE *fecho;
bool       trace_is_terminal;

namespace {

bool fill_block(Input &in)
{
    in.offset += in.end;
    in.next  = 0;
    in.end   = std::fread(in.block, 1, BLOCK_SIZE, in.stream);
    in.ended = in.end == 0 && std::feof(in.stream) != 0;
    return in.end > 0;
}

// What a character means to a line: which passes it can matter to, by calls and definitions, references, or comments; whether it
// becomes a blank; whether it ends the line, or hides the rest of it.
enum Kind : unsigned char { FOR_MACROS = 1, FOR_CONSTANTS = 2, BLANKED = 4, ENDS = 8, HIDES = 16 };

constexpr auto kinds = [] {
    std::array<unsigned char, 256> table{};
    const auto                     set = [&table](std::string_view characters, unsigned char kind) {
        for (const char c : characters)
            table[static_cast<unsigned char>(c)] = kind;
    };
    set("#$", FOR_MACROS);
    set("~", FOR_CONSTANTS);
    set(";/*", FOR_MACROS | FOR_CONSTANTS);
    set("\r\xFF", BLANKED); // a stray end-of-file mark, the second
    set("\n", BLANKED | ENDS);
    set({"\0", 1}, HIDES);
    return table;
}();

// a line as it is read
struct Reading {
    std::size_t length;
    unsigned    found; // kinds of its characters
};

// characters as they are, up to the end of the line
void take_hidden(Input &in, Reading &line, std::size_t most)
{
    const char       *start = in.block + in.next;
    const auto       *found = static_cast<const char *>(std::memchr(start, '\n', most));
    const std::size_t taken = found != nullptr ? static_cast<std::size_t>(found + 1 - start) : most;
    std::memcpy(in.line + line.length, start, taken);
    line.length += taken;
    in.next += taken;
    if (found != nullptr)
        line.found |= ENDS;
}

// characters of the block, up to the end of the line, a NUL, or as many as there is room for
void take_plain(Input &in, Reading &line, std::size_t most)
{
    const char *from  = in.block + in.next;
    char       *to    = in.line + line.length;
    unsigned    found = line.found;
    std::size_t taken = 0;
    while (taken < most && found < ENDS) {
        const char     c    = from[taken];
        const unsigned kind = kinds[static_cast<unsigned char>(c)];
        to[taken++]         = (kind & BLANKED) != 0 ? ' ' : c;
        found |= kind;
    }
    line.found = found;
    line.length += taken;
    in.next += taken;
}

// Reads a line with its end, or as much of it as there is room for, and makes blanks of line ends.
// found tells the kinds of its characters; false when nothing is left, or can be read
bool read_line(Input &in, unsigned &found)
{
    const std::uint64_t offset = in.offset + in.next;
    Reading             line{0, 0};
    while ((line.found & ENDS) == 0 && line.length < LINE_SIZE - 1) { // each round takes bytes
        if (in.next == in.end && !fill_block(in)) {
            if (!in.ended || line.length == 0)
                return false;
            break;
        }
        const std::size_t most = std::min(in.end - in.next, LINE_SIZE - 1 - line.length);
        if ((line.found & HIDES) == 0)
            take_plain(in, line, most);
        else
            take_hidden(in, line, most);
    }
    in.line[line.length] = '\0';
    found                = line.found;
    ++in.line_no;
    if (observer != nullptr)
        observer->line_read(in.line_no, offset, line.length);
    return true;
}

// the macro pass, then the constant pass, each where it finds something
int expand_line(Input &in, unsigned found)
{
    DefinitionMarks marks;
    if ((found & FOR_MACROS) != 0 || IN_MACRO_DEF != 0) {
        if (const int error = parse_macros(in, marks))
            return error;
        found |= FOR_CONSTANTS; // which the text of a call may hold
    }
    in.pos = 0;
    return (found & FOR_CONSTANTS) != 0 ? parse_variables(in, marks) : OK;
}

void trace_line(const char *line)
{
    begin_output(fecho);
    if (trace_is_terminal)
        put_safely(fecho, line);
    else
        std::fputs(line, fecho);
    std::fputc('\n', fecho);
}

// line -> "#" "if(" ... | "#" "endif" ...
// handled tells whether the line was a directive
int follow_directive(Input &in, bool &handled)
{
    const std::uint32_t mark = in.pos;

    handled = true;
    ++in.pos;
    if (is_if(in.line, in.pos))
        return do_if_interface(in);
    if (is_endif(in.line, in.pos))
        return do_endif(in);
    in.pos  = mark;
    handled = false;
    return OK;
}

// [ comment ]
int skip_one_comment(Input &in)
{
    Comment kind{};
    if (!is_comment(in.line, in.pos, kind))
        return OK;
    const int status = skip_comment(in, kind);
    return status == END_OF_INPUT ? OK : status;
}

} // namespace

int get_buff(Input &in)
{
    unsigned found = 0;
    if (!read_line(in, found))
        return END_OF_INPUT;
    in.pos = 0;
    if (in_if0())
        return OK;

    skip_blanks(in);
    if (peek(in) == '#') {
        bool      handled = false;
        const int result  = follow_directive(in, handled);
        if (handled)
            return result;
    }
    if (const int error = expand_line(in, found))
        return error;
    if (MKEXP)
        trace_line(in.line);
    return OK;
}

std::uint32_t end_of_item(const Input &in, std::uint32_t begin)
{
    std::uint32_t end = in.pos;
    while (end > begin && is_blank(in.line[end - 1]))
        --end;
    return end;
}

char get_c(Input &in) { return in.line[in.pos++]; }

bool is_comment(const char *line, std::uint32_t pos, Comment &kind)
{
    if (line[pos] == ';') {
        kind = Comment::line;
        return true;
    }
    if (line[pos] == '/' && line[pos + 1] == '*') {
        kind = Comment::block;
        return true;
    }
    return false;
}

int skip_comment(Input &in, Comment kind)
{
    if (kind == Comment::line) {
        in.pos += static_cast<std::uint32_t>(std::strlen(in.line + in.pos));
        return OK;
    }
    in.pos += 2;
    for (int depth = 1; depth > 0;) { // each step moves on or reads a line
        const char *c = in.line + in.pos;
        if (c[0] == '\0') {
            if (const int status = get_buff(in))
                return status;
        } else if (c[0] == '/' && c[1] == '*') {
            ++depth;
            in.pos += 2;
        } else if (c[0] == '*' && c[1] == '/') {
            --depth;
            in.pos += 2;
        } else {
            ++in.pos;
        }
    }
    return OK;
}

int pass_comment(Input &in, Comment kind)
{
    const int result = skip_comment(in, kind);
    if (result <= 0)
        return OK;
    return result == OUT_OF_MEMORY ? OUT_OF_MEMORY : EOF_IN_COMMENT;
}

int skip_lines(Input &in)
{
    for (;;) { // each round reads a line
        skip_blanks(in);
        if (peek(in) != '\0')
            return OK;
        if (in.ended)
            return END_OF_INPUT;
        if (const int status = get_buff(in))
            return status;
    }
}

int skip_space(Input &in)
{
    const int status = skip_lines(in);
    return status == END_OF_INPUT ? OK : status;
}

int skip_wc(Input &in)
{
    if (const int error = skip_space(in))
        return error;
    if (const int error = skip_one_comment(in))
        return error;
    return skip_space(in);
}

int skip_stuff(Input &in)
{
    if (const int error = skip_space(in))
        return error;
    // directly after a comment a "/" is a separator even when a "*" follows it
    if (const int error = skip_one_comment(in))
        return error;
    if (peek(in) == '/' || peek(in) == ',')
        ++in.pos;
    return skip_space(in);
}

void warn(const Input &in, Warning number) { warning_no(number, in.line_no, in.line, in.pos); }

} // namespace orlo

// A directive can start at any "#", so the copy follows the comments with one character of memory for their two-character marks.
// Stretches of characters that can neither start a directive nor mark a comment are copied as a whole. The recursion ends because
// the number of calls in a run is limited.

#include "input/include_pass.h"

#include "base/observer.h"
#include "diag/messages.h"
#include "diag/report.h"
#include "input/character_set.h"
#include "input/line_reader.h"
#include "platform/output_files.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace orlo {
namespace {

constexpr std::size_t BLOCK_SIZE = 16384;

// A file that is read by blocks; next and end are positions in the block.
struct Reader {
    std::FILE    *file;
    std::uint64_t offset;     // of the block in the file
    std::uint64_t last;       // offset in the file, where what is read of it ends
    std::uint64_t line_start; // offset in the file, of the line that is read
    std::size_t   next;
    std::size_t   end;
    char          block[BLOCK_SIZE];
};

struct Scanner {
    int      previous;     // the character before, a blank at the start of a file
    bool     line_comment; // after ";" or ">" on this line
    unsigned depth;        // open block comments
};

// Where a directive stands, to be shown.
struct Place {
    std::uint64_t line_no; // in the combined input
    unsigned      column;  // of the "#" in the line
    char          line[LINE_SIZE];
};

std::uint64_t lines_copied; // in the run; 0 again by its first call

struct FileName {
    char        text[MAX_INCLUDE_NAME + 1];
    std::size_t length; // without the line ends that were dropped
};

constexpr int  INCLUDE_FAILED = 1;
constexpr char keyword[]      = "#include";
constexpr char keyword_rest[] = "clude"; // after "#in"

// what may change how the characters after it are taken; a line end does so after a line comment alone, but is counted
constexpr CharacterSet stops = set_of("#;>/*\n");

bool fill(Reader &in)
{
    in.offset += in.end;
    in.next = 0;
    in.end  = std::fread(in.block, 1, static_cast<std::size_t>(std::min<std::uint64_t>(BLOCK_SIZE, in.last - in.offset)), in.file);
    if (observer != nullptr)
        observer->file_text(in.block, in.end);
    return in.end > 0;
}

// a line end was taken
void end_line(Reader &in) { in.line_start = in.offset + in.next; }

// the next character, EOF at the end of the file
int get(Reader &in)
{
    if (in.next == in.end && !fill(in))
        return EOF;
    const char c = in.block[in.next++];
    if (c == '\n')
        end_line(in);
    return static_cast<unsigned char>(c);
}

// what is copied from here on follows in the file; told where it does not follow in the copy
void tell_copy(const Reader &in, std::FILE *out)
{
    if (observer != nullptr)
        observer->copy_continues(static_cast<std::uint64_t>(std::ftell(out)), in.offset + in.next);
}

void put(int c, std::FILE *out)
{
    std::putc(c, out);
    if (c == '\n')
        ++lines_copied;
}

// moves on to the next of the stops; false at the block's end
bool skip_plain(Reader &in)
{
    const char       *block = in.block;
    const std::size_t end   = in.end;
    std::size_t       next  = in.next;
    while (next < end && !stops.has(block[next]))
        ++next;
    in.next = next;
    return next < end;
}

// copies up to the next character that matters
void copy_plain(Reader &in, std::FILE *out, Scanner &state)
{
    do {
        const std::size_t start = in.next;
        while (skip_plain(in) && !state.line_comment && in.block[in.next] == '\n') {
            ++in.next;
            end_line(in);
            ++lines_copied;
        }
        if (in.next > start) {
            std::fwrite(in.block + start, 1, in.next - start, out);
            state.previous = static_cast<unsigned char>(in.block[in.next - 1]);
        }
    } while (in.next == in.end && std::ferror(out) == 0 && fill(in)); // ends with the file, or with the room for its copy
}

void follow_comments(Scanner &state, int c)
{
    if (c == ';' || c == '>')
        state.line_comment = state.previous != '/';
    else if (state.previous == '/' && c == '*')
        ++state.depth;
    else if (state.previous == '*' && c == '/' && state.depth > 0)
        --state.depth;
    else if (c == '\n')
        state.line_comment = false;
    state.previous = c;
}

// Reads what follows a "#". Text that is no directive is copied, except that "#in" with anything but "clude" after it is dropped
// up to the character that differs. Text cut off by the end of the file is copied with the byte 0xFF after it.
bool take_keyword(Reader &in, std::FILE *out, Scanner &state)
{
    const int second = get(in);
    if (second != 'i') {
        put('#', out);
        put(second, out);
        state.line_comment = false;
        state.previous     = second;
        return false;
    }
    const int third = get(in);
    if (third != 'n') {
        std::fputs("#i", out);
        put(third, out);
        state.line_comment = false;
        state.previous     = 'i';
        return false;
    }
    for (const char *expected = keyword_rest; *expected != '\0'; ++expected) {
        if (get(in) != *expected) {
            state.previous = 'i';
            tell_copy(in, out);
            return false;
        }
    }
    return true;
}

// The place of a directive whose keyword has just been read; of a line that is longer than a block, the part in the block.
Place place_of_directive(const Reader &in)
{
    Place             place{lines_copied + 1, 0, {}};
    const std::size_t start  = in.line_start > in.offset ? static_cast<std::size_t>(in.line_start - in.offset) : 0;
    const std::size_t mark   = in.next - std::min(in.next - start, std::strlen(keyword));
    const char       *line   = in.block + start;
    const auto       *end    = static_cast<const char *>(std::memchr(line, '\n', in.end - start));
    const std::size_t length = std::min(end != nullptr ? static_cast<std::size_t>(end - line) : in.end - start, LINE_SIZE - 1);
    std::memcpy(place.line, line, length);
    place.column = static_cast<unsigned>(mark - start);
    return place;
}

int refuse_output(const FileName &name, const Place &place)
{
    tell_error(place.line_no, "The include file \"%s\" is one that this run writes!", name.text);
    error_no(TEXT_REPORTED, place.line_no, place.line, place.column);
    return FULLY_REPORTED;
}

// file-name -> blanks "|" characters "|"
int take_name(Reader &in, FileName &name)
{
    int c = get(in);
    while (c != EOF && std::isspace(c) != 0)
        c = get(in);
    if (c != '|') {
        tell(Severity::error, "\n\n", "Include filename must be preceeded by a |.", "\n");
        return INCLUDE_FAILED;
    }
    name.length      = 0;
    std::size_t read = 0;
    for (c = get(in); c != '|' && c != EOF; c = get(in)) {
        if (read == MAX_INCLUDE_NAME) {
            tell(Severity::error, "\nERROR: ", "Include filename has exceeded maximum\nlength of %d characters.", "\n\n",
                 MAX_INCLUDE_NAME);
            return FULLY_REPORTED;
        }
        ++read;
        if (c != '\n')
            name.text[name.length++] = static_cast<char>(c);
    }
    name.text[name.length] = '\0';
    return OK;
}

int bad_file(const FileName &name)
{
    tell(Severity::error, "\n", "Bad include file name: \"%s\"", "\n\n", name.text);
    return FULLY_REPORTED;
}

// directive -> "#include" file-name
int include_file(Reader &in, std::FILE *out, std::uint32_t &calls)
{
    const Place         place = place_of_directive(in);
    const std::uint64_t begin = in.offset + in.next - std::strlen(keyword);
    FileName            name;
    const int           misnamed = take_name(in, name);
    if (observer != nullptr)
        observer->include_met(begin, in.offset + in.next);
    if (misnamed != OK)
        return misnamed;
    std::FILE *file = std::fopen(name.text, "r");
    if (observer != nullptr)
        observer->file_opened(name.text, file != nullptr);
    if (file == nullptr)
        return bad_file(name);
    if (std::FILE *output = find_output(file)) {
        spare_output(output);
        std::fclose(file);
        return refuse_output(name, place);
    }
    Mprintf("\n\tOpening include file \"%s\"...", name.text);
    int result = parse_includes(file, out, calls);
    if (result == OK && std::ferror(file) != 0) // a folder can be opened but not read
        result = bad_file(name);
    std::fclose(file);
    if (result == OK && observer != nullptr)
        observer->file_left();
    tell_copy(in, out);
    return result;
}

} // namespace

int parse_includes(std::FILE *in, std::FILE *out, std::uint32_t &calls, Extent extent)
{
    if (calls == 0)
        lines_copied = 0;
    if (++calls > MAX_INCLUDE_CALLS) {
        tell(Severity::error, "\n\n", "Too many embedded include files! (Max = %d)", "\n", MAX_INCLUDE_CALLS);
        return INCLUDE_FAILED;
    }
    Reader reader;
    reader.file       = in;
    reader.offset     = extent.begin;
    reader.last       = extent.end;
    reader.line_start = extent.begin;
    reader.next       = 0;
    reader.end        = 0;
    tell_copy(reader, out);
    Scanner state{' ', false, 0};
    for (;;) { // each round takes a character, up to the end of the file
        copy_plain(reader, out, state);
        const int c = std::ferror(out) == 0 ? get(reader) : EOF; // what can't be written is not read: a device may never end
        if (c == EOF)
            return OK;
        if (c != '#' || state.line_comment || state.depth > 0) {
            put(c, out);
            follow_comments(state, c);
        } else if (take_keyword(reader, out, state)) {
            if (const int error = include_file(reader, out, calls))
                return error;
            state.line_comment = false;
            state.previous     = '|';
        }
    }
}

} // namespace orlo

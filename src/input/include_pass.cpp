// A directive can start at any "#", so the copy decides character by character, with one character of memory for the two-character
// comment marks. The recursion ends because the number of calls in a run is limited.

#include "input/include_pass.h"

#include "diag/messages.h"
#include "diag/report.h"

#include <cctype>

namespace orlo {
namespace {

struct Scanner {
    int      previous;     // the character before, a blank at the start of a file
    bool     line_comment; // behind ";" or ">" on this line
    unsigned depth;        // open block comments
};

struct FileName {
    char        text[MAX_INCLUDE_NAME + 1];
    std::size_t length; // without the line ends that were dropped
};

constexpr int  INCLUDE_FAILED = 1;
constexpr char keyword_rest[] = "clude"; // of "#include", behind "#in"

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

// Reads what follows a "#". Text that is no directive is copied, except that "#in" with anything but "clude" behind it is dropped
// up to the character that differs. Text cut off by the end of the file is copied with the byte 0xFF behind it.
bool take_keyword(std::FILE *in, std::FILE *out, Scanner &state)
{
    const int second = std::getc(in);
    if (second != 'i') {
        std::putc('#', out);
        std::putc(second, out);
        state.line_comment = false;
        state.previous     = second;
        return false;
    }
    const int third = std::getc(in);
    if (third != 'n') {
        std::fputs("#i", out);
        std::putc(third, out);
        state.line_comment = false;
        state.previous     = 'i';
        return false;
    }
    for (const char *expected = keyword_rest; *expected != '\0'; ++expected) {
        if (std::getc(in) != *expected) {
            state.previous = 'i';
            return false;
        }
    }
    return true;
}

// file-name -> blanks "|" characters "|"
int take_name(std::FILE *in, FileName &name)
{
    int c = std::getc(in);
    while (c != EOF && std::isspace(c) != 0)
        c = std::getc(in);
    if (c != '|') {
        Mprintf("\n\nInclude filename must be preceeded by a |.\n");
        return INCLUDE_FAILED;
    }
    name.length      = 0;
    std::size_t read = 0;
    for (c = std::getc(in); c != '|' && c != EOF; c = std::getc(in)) {
        if (read == MAX_INCLUDE_NAME) {
            Mprintf("\nERROR: Include filename has exceeded maximum");
            Mprintf("\nlength of %d characters.\n\n", MAX_INCLUDE_NAME);
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
    Mprintf("\nBad include file name: \"%s\"\n\n", name.text);
    return FULLY_REPORTED;
}

// directive -> "#include" file-name
int include_file(std::FILE *in, std::FILE *out, std::uint32_t &calls)
{
    FileName name;
    if (const int result = take_name(in, name); result != OK)
        return result;
    std::FILE *file = std::fopen(name.text, "r");
    if (file == nullptr)
        return bad_file(name);
    Mprintf("\n\tOpening include file \"%s\"...", name.text);
    int result = parse_includes(file, out, calls);
    if (result == OK && std::ferror(file) != 0) // a folder can be opened but not read
        result = bad_file(name);
    std::fclose(file);
    return result;
}

} // namespace

int parse_includes(std::FILE *in, std::FILE *out, std::uint32_t &calls)
{
    if (++calls > MAX_INCLUDE_CALLS) {
        Mprintf("\n\nToo many embedded include files! (Max = %d)\n", MAX_INCLUDE_CALLS);
        return INCLUDE_FAILED;
    }
    Scanner state{' ', false, 0};
    for (int c = std::getc(in); c != EOF; c = std::getc(in)) {
        if (c != '#' || state.line_comment || state.depth > 0) {
            std::putc(c, out);
            follow_comments(state, c);
        } else if (take_keyword(in, out, state)) {
            if (const int result = include_file(in, out, calls); result != OK)
                return result;
            state.line_comment = false;
            state.previous     = '|';
        }
    }
    return OK;
}

} // namespace orlo

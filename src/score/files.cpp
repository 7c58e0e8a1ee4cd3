// The standard input may be a pipe, which tells no size: bytes are read by blocks until there are no more, or too many.

#include "score/files.h"

#include "score/midi_reader.h"
#include "score/score_text.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orlo::score {
namespace {

constexpr std::size_t FIRST_BLOCK = 65536;

std::string last_error() { return std::strerror(errno); } // NOLINT(concurrency-mt-unsafe)

std::string too_large(std::size_t most) { return "it has more than " + std::to_string(most) + " bytes"; }

// as read, but goes on after a signal
ssize_t read_some(int file, char *to, std::size_t count)
{
    ssize_t got = 0;
    do // ends with an answer that is not "interrupted"
        got = read(file, to, count);
    while (got < 0 && errno == EINTR);
    return got;
}

std::string read_all(int file, std::size_t most, std::string &bytes)
{
    struct stat about {};
    const bool  regular = fstat(file, &about) == 0 && S_ISREG(about.st_mode);
    if (regular && static_cast<std::size_t>(about.st_size) > most)
        return too_large(most);
    bytes.resize(regular ? static_cast<std::size_t>(about.st_size) + 1
                         : FIRST_BLOCK); // one more: the end shows without another block
    for (std::size_t length = 0;;) {     // ends with the file, or with too many bytes
        const ssize_t got = read_some(file, bytes.data() + length, bytes.size() - length);
        if (got < 0)
            return last_error();
        length += static_cast<std::size_t>(got);
        if (length > most)
            return too_large(most);
        if (got == 0) {
            bytes.resize(length);
            return "";
        }
        if (length == bytes.size())
            bytes.resize(std::min(2 * length, most + 1));
    }
}

std::string write_all(int file, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR)
            return last_error();
        bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
    return "";
}

// false when there is no such file; "-" is an open one
bool look_at(const std::string &name, int standard, struct stat &about)
{
    return (name == "-" ? fstat(standard, &about) : stat(name.c_str(), &about)) == 0;
}

bool is_digit(char c) { return c >= '0' && c <= '9'; }

// head -> "i" [ "-" ] digits "="
// text is after the "i"; whole: no "=" follows a number in a score
bool is_block_head(Text text)
{
    const auto at = [&text](auto wanted) { return text.at != text.end && wanted(*text.at); };
    skip_blanks(text);
    if (at([](char c) { return c == '-'; }))
        ++text.at;
    const char *number = text.at;
    while (at(is_digit))
        ++text.at;
    if (text.at == number)
        return false;
    skip_blanks(text);
    return at([](char c) { return c == '='; });
}

// the first line that begins like an event or a block decides
bool has_block_head(std::string_view bytes)
{
    Text text{bytes.data(), bytes.data() + bytes.size()};
    for (skip_to_statement(text); text.at != text.end; skip_to_statement(text)) {
        if (*text.at == 'i' || *text.at == 'I') {
            ++text.at;
            if (is_block_head(text))
                return true;
        }
        skip_line(text);
    }
    return false;
}

} // namespace

std::string read_file(const std::string &name, std::size_t most, std::string &bytes)
{
    if (name == "-")
        return read_all(STDIN_FILENO, most, bytes);
    const int file = open(name.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return last_error();
    std::string fault = read_all(file, most, bytes);
    close(file);
    return fault;
}

std::string write_file(const std::string &name, std::string_view bytes)
{
    if (name == "-")
        return write_all(STDOUT_FILENO, bytes);
    const int file = open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (file < 0)
        return last_error();
    std::string fault = write_all(file, bytes);
    if (close(file) != 0 && fault.empty())
        fault = last_error();
    return fault;
}

bool same_file(const std::string &in, const std::string &out)
{
    struct stat first {};
    struct stat second {};
    return look_at(in, STDIN_FILENO, first) && look_at(out, STDOUT_FILENO, second) && S_ISREG(first.st_mode) &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

std::string title_of(const std::string &name)
{
    if (name == "-")
        return "(standard input)";
    return name.substr(name.find_last_of('/') + 1);
}

Kind kind_of(const std::string &name, std::string_view bytes)
{
    if (is_midi(bytes))
        return Kind::midi;
    return name.ends_with(".orlo") || has_block_head(bytes) ? Kind::orlo : Kind::score;
}

} // namespace orlo::score

// A file is known by its device and inode (sys/stat.h); one that does not exist yet by those of its folder and its last part. What
// is not a regular file has nothing that could be lost, and is written to as it is.

#include "platform/output_files.h"

#include <climits>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orlo {
namespace {

constexpr int MOST_LINKS = 40; // symbolic links in a row that are followed, as the system does

enum class State { untouched, begun, spared, lost };

struct Output {
    std::FILE *stream; // null when the place is free
    State      state;
};

Output outputs[MOST_OUTPUTS] = {};

char large_piece[LARGE_WRITE]; // of the output that is written so

Output *find(const std::FILE *stream)
{
    for (Output &output : outputs)
        if (stream != nullptr && output.stream == stream)
            return &output;
    return nullptr;
}

bool same(const struct stat &a, const struct stat &b) { return a.st_dev == b.st_dev && a.st_ino == b.st_ino; }

bool regular(std::FILE *stream, struct stat &status) { return fstat(fileno(stream), &status) == 0 && S_ISREG(status.st_mode); }

struct Path {
    char text[PATH_MAX];
    bool whole; // it fits; one that does not can't be opened either
};

Path make_path(const char *folder, int folder_length, const char *rest)
{
    Path      path{};
    const int length = std::snprintf(path.text, sizeof path.text, "%.*s%s", folder_length, folder, rest);
    path.whole       = length >= 0 && length < static_cast<int>(sizeof path.text);
    return path;
}

// path -> [ folder "/" ] name
const char *name_of(const char *path)
{
    const char *slash = std::strrchr(path, '/');
    return slash == nullptr ? path : slash + 1;
}

// the file that a chain of symbolic links would make
Path follow_links(const char *name)
{
    Path path = make_path("", 0, name);
    for (int i = 0; i < MOST_LINKS && path.whole; ++i) {
        char          target[PATH_MAX];
        const ssize_t length = readlink(path.text, target, sizeof target - 1);
        if (length < 0)
            break;
        target[length]      = '\0';
        const bool absolute = target[0] == '/';
        path                = make_path(path.text, absolute ? 0 : static_cast<int>(name_of(path.text) - path.text), target);
    }
    return path;
}

bool folder_status(const Path &path, struct stat &status)
{
    const auto length = static_cast<int>(name_of(path.text) - path.text);
    const Path folder = make_path(path.text, length, ".");
    return folder.whole && stat(folder.text, &status) == 0;
}

} // namespace

bool same_file(const char *a, const char *b)
{
    struct stat first {};
    struct stat second {};
    return stat(a, &first) == 0 && stat(b, &second) == 0 && S_ISREG(first.st_mode) && same(first, second);
}

bool same_new_file(const char *a, const char *b)
{
    struct stat first_folder {};
    struct stat second_folder {};
    if (stat(a, &first_folder) == 0 || stat(b, &second_folder) == 0)
        return false;
    const Path first  = follow_links(a);
    const Path second = follow_links(b);
    return first.whole && second.whole && std::strcmp(name_of(first.text), name_of(second.text)) == 0 &&
           folder_status(first, first_folder) && folder_status(second, second_folder) && same(first_folder, second_folder);
}

std::FILE *open_output(const char *name)
{
    Output *place = nullptr;
    for (Output &output : outputs)
        if (output.stream == nullptr)
            place = &output;
    const int file = place != nullptr ? open(name, O_WRONLY | O_CREAT, 0666) : -1;
    if (file < 0)
        return nullptr;
    std::FILE *stream = fdopen(file, "w");
    if (stream == nullptr)
        close(file);
    else
        *place = {stream, State::untouched};
    return stream;
}

void write_in_large_pieces(std::FILE *stream)
{
    struct stat status {};
    if (regular(stream, status) && !is_output(stderr))
        static_cast<void>(std::setvbuf(stream, large_piece, _IOFBF, sizeof large_piece));
}

bool begin_output(std::FILE *stream)
{
    Output *output = find(stream);
    if (output == nullptr)
        return false;
    if (output->state == State::untouched) {
        struct stat status {};
        const bool  emptied = !regular(stream, status) || status.st_size == 0 || ftruncate(fileno(stream), 0) == 0;
        output->state       = emptied ? State::begun : State::lost;
    }
    return output->state != State::spared;
}

std::FILE *find_output(std::FILE *input)
{
    struct stat status {};
    if (!regular(input, status))
        return nullptr;
    for (const Output &output : outputs) {
        struct stat other {};
        if (output.stream != nullptr && regular(output.stream, other) && same(status, other))
            return output.stream;
    }
    return nullptr;
}

bool is_output(std::FILE *stream)
{
    struct stat status {};
    if (fstat(fileno(stream), &status) != 0)
        return false;
    for (const Output &output : outputs) {
        struct stat other {};
        if (output.stream != nullptr && fstat(fileno(output.stream), &other) == 0 && same(status, other))
            return true;
    }
    return false;
}

void spare_output(std::FILE *stream)
{
    if (Output *output = find(stream))
        output->state = State::spared;
}

bool close_output(std::FILE *&stream)
{
    Output *output = find(stream);
    if (output == nullptr)
        return true;
    const bool lost   = output->state == State::lost || std::ferror(stream) != 0;
    const bool closed = std::fclose(stream) == 0;
    *output           = {nullptr, State::untouched};
    stream            = nullptr;
    return closed && !lost;
}

} // namespace orlo

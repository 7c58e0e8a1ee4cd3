// What is not a regular file has nothing that could be lost, and is written to as it is.

#include "platform/output_files.h"

#include "platform/file_identity.h"

#include <fcntl.h>
#include <unistd.h>

namespace orlo {
namespace {

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

bool regular(std::FILE *stream, FileIdentity &identity) { return identify(stream, identity) && identity.regular; }

} // namespace

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
    FileIdentity file;
    if (regular(stream, file) && !is_output(stderr))
        static_cast<void>(std::setvbuf(stream, large_piece, _IOFBF, sizeof large_piece));
}

bool begin_output(std::FILE *stream)
{
    Output *output = find(stream);
    if (output == nullptr)
        return false;
    if (output->state == State::untouched) {
        FileIdentity file;
        const bool   emptied = !regular(stream, file) || file.empty || ftruncate(fileno(stream), 0) == 0;
        output->state        = emptied ? State::begun : State::lost;
    }
    return output->state != State::spared;
}

std::FILE *find_output(std::FILE *input)
{
    FileIdentity file;
    if (!regular(input, file))
        return nullptr;
    for (const Output &output : outputs) {
        FileIdentity other;
        if (output.stream != nullptr && regular(output.stream, other) && same(file, other))
            return output.stream;
    }
    return nullptr;
}

bool is_output(std::FILE *stream)
{
    FileIdentity file;
    if (!identify(stream, file))
        return false;
    for (const Output &output : outputs) {
        FileIdentity other;
        if (output.stream != nullptr && identify(output.stream, other) && same(file, other))
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

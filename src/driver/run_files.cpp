// A run's outputs are opened before it is known whether it comes to anything, so that what can't be written is told at once; but
// what was in them is left until there is something new. The log would be written first: what is said while files are still being
// included, any of which may be the log, is kept until they are known.

#include "driver/run_files.h"

#include "base/switches.h"
#include "diag/messages.h"
#include "diag/report.h"
#include "driver/options.h"
#include "input/include_pass.h"
#include "input/line_reader.h"
#include "input/macro_expansion.h"
#include "platform/output_files.h"
#include "platform/screen.h"
#include "platform/temporary_file.h"
#include "platform/terminal.h"

namespace orlo {
namespace {

bool cant_open(const char *name)
{
    tell(Severity::error, "\nERROR: ", "Can't open \"%s\".", "\n\n", name);
    return false;
}

bool cant_read()
{
    tell(Severity::error, "\nERROR: ", "Can't read \"%s\".", "\n\n", in_fname);
    return false;
}

bool open_to_write(std::FILE *&stream, const char *name)
{
    stream = open_output(name);
    return stream != nullptr || cant_open(name);
}

bool open_trace()
{
    if (!open_to_write(fecho, exp_fname))
        return false;
    trace_is_terminal = is_terminal(fecho);
    return true;
}

bool open_temporary(Files &files)
{
    files.tmp = open_temporary_file();
    if (files.tmp == nullptr)
        tell(Severity::error, "\nERROR: ", "Can't open temporary file", "\n\n");
    return files.tmp != nullptr;
}

void close_read(std::FILE *&stream)
{
    if (stream != nullptr)
        std::fclose(stream);
    stream = nullptr;
}

std::uint64_t size_so_far(std::FILE *stream)
{
    const long bytes = std::ftell(stream);
    return bytes > 0 ? static_cast<std::uint64_t>(bytes) : 0;
}

bool close_temporary(Files &files)
{
    const bool lost   = std::ferror(files.tmp) != 0;
    const bool closed = std::fclose(files.tmp) == 0;
    files.tmp         = nullptr;
    return closed && !lost;
}

bool cant_write(const char *name)
{
    tell(Severity::error, "\nERROR: ", "Can't write \"%s\".", "\n\n", name);
    return false;
}

// the log is none of the inputs, or is spared
void begin_log(std::FILE *log)
{
    if (!begin_output(log))
        return;
    print_info(log);
    start_log(log);
}

} // namespace

bool open_files(Files &files, Extent piece)
{
    files.in = std::fopen(in_fname, "r");
    if (observer != nullptr)
        observer->file_opened(in_fname, files.in != nullptr);
    if (files.in == nullptr)
        return cant_open(in_fname);
    if (piece.begin != 0 && std::fseek(files.in, static_cast<long>(piece.begin), SEEK_SET) != 0)
        return cant_read();
    if ((out_fname != nullptr && !open_to_write(files.out, out_fname)) || (MKEXP && !open_trace()) || !open_temporary(files) ||
        (MKLOG && !open_to_write(files.log, log_fname)))
        return false;
    if (files.out != nullptr)
        write_in_large_pieces(files.out);
    return true;
}

int combine_input(Files &files, Extent piece)
{
    std::uint32_t includes = 0;
    const int     failure  = parse_includes(files.in, files.tmp, includes, piece);
    begin_log(files.log);
    if (failure != OK)
        return FULLY_REPORTED;
    if (std::ferror(files.in) != 0) { // a folder can be opened but not read
        cant_read();
        return FULLY_REPORTED;
    }
    close_read(files.in);
    bound_expansions(size_so_far(files.tmp));
    if (!close_temporary(files)) {
        tell(Severity::error, "\nERROR: ", "Can't write temporary file", "\n\n");
        return FULLY_REPORTED;
    }
    files.in = reopen_temporary_file();
    gather_screen(); // no input that the screen could be is left to be read
    return files.in != nullptr ? OK : NO_TEMPORARY_FILE;
}

bool close_files(Files &files, bool complete)
{
    end_gathering();
    if (complete) { // a run that had nothing to write leaves nothing of an earlier one
        begin_output(files.out);
        begin_output(fecho);
    }
    close_read(files.in);
    close_read(files.tmp);
    bool written = close_output(files.out);
    if (!written)
        written = cant_write(out_fname);
    if (!close_output(fecho) && complete)
        written = cant_write(exp_fname);
    end_log(); // what the log has lost is told on the screen alone
    if (!close_output(files.log) && complete)
        written = cant_write(log_fname);
    remove_temporary_file();
    return written;
}

} // namespace orlo

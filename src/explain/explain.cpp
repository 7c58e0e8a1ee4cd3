// The piece is run first and written then: nothing is known to be complete before its end, and a file that is read must not be
// written over.

#include "explain/explain.h"

#include "base/exhaustion.h"
#include "base/visible_text.h"
#include "explain/document.h"
#include "explain/gcc_messages.h"
#include "explain/hints/hints.h"
#include "explain/hints_text.h"
#include "explain/options.h"
#include "gather/run_piece.h"
#include "platform/folder.h"
#include "platform/memory_limit.h"
#include "platform/say.h"
#include "platform/standard_streams.h"
#include "platform/temporary_file.h"
#include "platform/terminal.h"
#include "platform/whole_file.h"

#include <cstdio>
#include <cstdlib>

namespace orlo::explain {
namespace {

constexpr int SUCCESS = 0;
constexpr int FAILURE = 1;
constexpr int USAGE   = 2;

constexpr int EXHAUSTED = -1; // no status: there was not enough memory

bool complain(const std::string &text)
{
    say("orlo-explain: " + text);
    return false;
}

// without asking for more
bool complain_of_memory()
{
    std::fputs("orlo-explain: not enough memory\n", stderr);
    return false;
}

bool cant_write(const std::string &name, const std::string &fault)
{
    return complain("can't write " + (name == STANDARD_OUTPUT ? "the standard output" : name) +
                    (fault.empty() ? "" : ": " + fault));
}

// to be asked before the run, which opens streams that are closed on nothing
bool can_be_written(const std::string &name)
{
    return name != STANDARD_OUTPUT || is_open(stdout) || cant_write(name, "it is closed");
}

bool write(Piece &piece, const std::vector<Hint> &hints, const Options &options, const Heading &heading, std::FILE *file)
{
    if (options.format == Format::json)
        return write_document(piece, hints, heading, file);
    const std::string messages = options.format == Format::gcc ? gcc_messages(piece, hints) : hints_text(piece, hints, heading);
    const std::string text     = is_terminal(file) ? visible_text(messages, "\n") : messages;
    return std::fwrite(text.data(), 1, text.size(), file) == text.size();
}

bool write_out(Piece &piece, const std::vector<Hint> &hints, const Options &options, const Heading &heading)
{
    if (is_input(piece, options.out))
        return complain(options.out + " would be overwritten: name another file with -o");
    WholeOutput       out{options.out};
    const bool        complete = out.fault.empty() && write(piece, hints, options, heading, out.file.stream);
    const std::string lost     = close_whole(out.file, complete);
    if (complete && lost.empty())
        return true;
    return cant_write(options.out, out.fault.empty() ? lost : out.fault);
}

bool explain(const Options &options)
{
    PieceFile file{options.piece};
    if (!can_be_written(options.out))
        return false;
    const std::string fault = find_piece(file);
    if (!fault.empty())
        return complain(options.piece + ": " + fault);
    Heading heading;
    heading.name   = options.piece;
    heading.csd    = file.score.has_value();
    heading.midi   = options.midi;
    heading.events = options.events;
    heading.folder = working_folder();
    Piece        piece;
    const Detail detail = options.events && options.format == Format::json ? Detail::events : Detail::summary;
    if (!run_piece(file, options.midi, detail, piece, heading.status))
        return complain_of_memory();
    return write_out(piece, find_hints(piece, options.midi), options, heading);
}

bool print(const char *text)
{
    WholeFile file;
    if (!can_be_written(STANDARD_OUTPUT) || !open_whole(file, STANDARD_OUTPUT).empty())
        return false;
    std::fputs(text, file.stream);
    const std::string fault = close_whole(file, true);
    return fault.empty() || cant_write(STANDARD_OUTPUT, fault);
}

int do_task(int argc, const char *const *argv)
{
    Options options;
    switch (read_options(argc, argv, options)) {
    case Task::explain:
        return explain(options) ? SUCCESS : FAILURE;
    case Task::help:
        return print(help_text()) ? SUCCESS : FAILURE;
    case Task::version:
        return print("orlo-explain " ORLO_VERSION "\n") ? SUCCESS : FAILURE;
    case Task::list_hints:
        return print(list_of_hints().c_str()) ? SUCCESS : FAILURE;
    case Task::refuse:
        break;
    }
    return USAGE;
}

[[noreturn]] void end_exhausted()
{
    remove_temporary_file();
    remove_unfinished();
    complain_of_memory();
    std::exit(FAILURE);
}

} // namespace

int run(int argc, const char *const *argv)
{
    outlive_lost_writes();
    on_exhaustion(end_exhausted);
    const int status = unless_exhausted([&] { return do_task(argc, argv); }, EXHAUSTED);
    if (status != EXHAUSTED)
        return status;
    complain_of_memory();
    return FAILURE;
}

} // namespace orlo::explain

// The piece is run first and written then: nothing is known to be complete before its end, and a file that is read must not be
// written over.

#include "explain/explain.h"

#include "base/visible_text.h"
#include "explain/document.h"
#include "explain/gcc_messages.h"
#include "explain/hints/hints.h"
#include "explain/hints_text.h"
#include "explain/options.h"
#include "gather/run_piece.h"
#include "platform/companion.h"
#include "platform/folder.h"
#include "platform/terminal.h"
#include "platform/whole_file.h"

#include <cstdio>

namespace orlo::explain {
namespace {

bool write(Piece &piece, const Hints &hints, const Options &options, const Heading &heading, std::FILE *file)
{
    if (options.format == Format::json)
        return write_document(piece, hints, heading, file);
    const std::string messages = options.format == Format::gcc ? gcc_messages(piece, hints) : hints_text(piece, hints, heading);
    const std::string text     = is_terminal(file) ? visible_text(messages, "\n") : messages;
    return std::fwrite(text.data(), 1, text.size(), file) == text.size();
}

bool write_out(Piece &piece, const Hints &hints, const Options &options, const Heading &heading)
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

} // namespace

int run(int argc, const char *const *argv) { return run_companion("orlo-explain", do_task, argc, argv); }

} // namespace orlo::explain

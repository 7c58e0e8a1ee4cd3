// The piece is run first and written then: nothing is known to be complete before its end, and a file that is read must not be
// written over.

#include "explain/explain.h"

#include "base/exhaustion.h"
#include "base/observer.h"
#include "base/visible_text.h"
#include "driver/run.h"
#include "explain/document.h"
#include "explain/gcc_messages.h"
#include "explain/hints/hints.h"
#include "explain/hints_text.h"
#include "explain/options.h"
#include "platform/say.h"
#include "gather/collector.h"
#include "gather/csd.h"
#include "platform/file_identity.h"
#include "platform/file_names.h"
#include "platform/folder.h"
#include "platform/memory_limit.h"
#include "platform/standard_streams.h"
#include "platform/temporary_file.h"
#include "platform/terminal.h"
#include "platform/whole_file.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace orlo::explain {
namespace {

constexpr int SUCCESS = 0;
constexpr int FAILURE = 1;
constexpr int USAGE   = 2;

constexpr int EXHAUSTED = -1; // no status: there was not enough memory

constexpr char STANDARD_OUTPUT[] = "-";

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

// the first bytes of a file, one more than there may be; nothing of one that can't be read, which the run will tell
std::string beginning_of(const std::string &name, std::size_t most)
{
    std::string bytes;
    std::FILE  *file = std::fopen(name.c_str(), "r");
    if (file == nullptr)
        return bytes;
    char block[65536];
    for (std::size_t got = 1; got > 0 && bytes.size() <= most;) { // ends with the file, or with too many bytes
        got = std::fread(block, 1, std::min(sizeof block, most + 1 - bytes.size()), file);
        bytes.append(block, got);
    }
    std::fclose(file);
    return bytes;
}

// which part of the file is the piece
bool find_piece(const Options &options, Heading &heading, CsdScore &score)
{
    if (!options.piece.ends_with(".csd"))
        return true;
    if (is_special(options.piece))
        return complain(options.piece + ": a Csound document is read twice, and has to be a file");
    const std::string text = beginning_of(options.piece, MOST_CSD);
    if (!is_csd(text))
        return true;
    heading.csd = true;
    std::string fault =
        text.size() > MOST_CSD ? "it has more than " + std::to_string(MOST_CSD) + " bytes" : find_csd_score(text, score);
    return fault.empty() || complain(options.piece + ": " + fault);
}

bool is_input(const Piece &piece, const std::string &name)
{
    if (name == STANDARD_OUTPUT)
        return false;
    for (const File &file : piece.source.files())
        if (file.found && same_file(file.name.c_str(), name.c_str()))
            return true;
    return false;
}

bool write(Piece &piece, const std::vector<Hint> &hints, const Options &options, const Heading &heading, std::FILE *file)
{
    if (options.format == Format::json)
        return write_document(piece, hints, heading, file);
    const std::string messages = options.format == Format::gcc ? gcc_messages(piece, hints) : hints_text(piece, hints, heading);
    const std::string text     = is_terminal(file) ? visible_text(messages, "\n") : messages;
    return std::fwrite(text.data(), 1, text.size(), file) == text.size();
}

// what is not complete when it is left goes
struct Output {
    WholeFile   file;
    std::string fault; // empty when the file is open

    explicit Output(const std::string &name) : fault(open_whole(file, name)) {}
    Output(const Output &)            = delete;
    Output &operator=(const Output &) = delete;
    ~Output() { static_cast<void>(close_whole(file, false)); }
};

bool write_out(Piece &piece, const std::vector<Hint> &hints, const Options &options, const Heading &heading)
{
    if (is_input(piece, options.out))
        return complain(options.out + " would be overwritten: name another file with -o");
    Output            out(options.out);
    const bool        complete = out.fault.empty() && write(piece, hints, options, heading, out.file.stream);
    const std::string lost     = close_whole(out.file, complete);
    if (complete && lost.empty())
        return true;
    return cant_write(options.out, out.fault.empty() ? lost : out.fault);
}

bool run_piece(const Options &options, Heading &heading, Extent extent, Detail detail)
{
    observer       = &collecting_observer(detail);
    heading.status = explain_run(options.piece.c_str(), options.midi, extent);
    observer       = nullptr;
    return end_collecting() || complain_of_memory();
}

bool explain(const Options &options)
{
    Heading heading;
    heading.name   = options.piece;
    heading.midi   = options.midi;
    heading.events = options.events;
    heading.folder = working_folder();
    CsdScore score;
    if (!can_be_written(options.out) || !find_piece(options, heading, score))
        return false;
    Piece        piece;
    const Detail detail = options.events && options.format == Format::json ? Detail::events : Detail::summary;
    if (heading.csd)
        piece.source.skip_in_piece(score.begin, score.line);
    start_collecting(piece, detail);
    if (!run_piece(options, heading, heading.csd ? Extent{score.begin, score.end} : Extent{0, WHOLE_FILE}, detail))
        return false;
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

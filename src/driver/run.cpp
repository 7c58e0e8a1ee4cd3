// The two parsers take turns until the input is used up. An i-block parser that finds nothing more is no failure: it leaves an
// empty event list, which is told when it is the first block.

#include "driver/run.h"

#include "base/clock.h"
#include "base/conversions.h"
#include "base/observer.h"
#include "base/random.h"
#include "base/switches.h"
#include "diag/messages.h"
#include "diag/report.h"
#include "driver/options.h"
#include "driver/recovery.h"
#include "driver/run_files.h"
#include "events/block.h"
#include "events/event_list.h"
#include "events/pfields.h"
#include "events/tempo_map.h"
#include "input/conditionals.h"
#include "input/constants.h"
#include "input/macro_expansion.h"
#include "input/macros.h"
#include "lang/global_block.h"
#include "lang/iblock.h"
#include "output/midi_conversion.h"
#include "output/midi_file.h"
#include "output/score_writer.h"
#include "platform/memory_limit.h"
#include "platform/output_files.h"
#include "platform/screen.h"
#include "platform/standard_streams.h"
#include "words/values.h"

#include <cstdlib>
#include <string_view>

namespace orlo {
namespace {

constexpr int SUCCESS = 0;
constexpr int FAILURE = 1;

constexpr Extent WHOLE{0, WHOLE_FILE};

// Every room at its start, whatever was run before in this process.
void reset()
{
    reset_switches();
    reset_clock();
    reset_draws();
    reset_conversions();
    reset_options();
    reset_block();
    reset_events();
    reset_pfields();
    reset_tempos();
    reset_conditionals();
    reset_macro_expansion();
    free_macro_list();
    free_variable_list();
    reset_values();
    reset_report();
    show_screen(true);
}

// Releases everything; false when a file could not be written in full.
bool clean_up(Files &files, bool complete)
{
    FreeListNodes(note_list);
    free_pfield_record();
    free_macro_list();
    free_variable_list();
    return close_files(files, complete);
}

int fail(Files &files)
{
    clean_up(files, false);
    return FAILURE;
}

// before any line has been read
int fail_with(int error, Files &files)
{
    error_no(error, 0, "", 0);
    return fail(files);
}

int finish(Files &files)
{
    if (!clean_up(files, true))
        return FAILURE;
    Mprintf("\n");
    return SUCCESS;
}

int nothing_written(std::uint32_t block)
{
    if (block == 1)
        tell(Severity::note, "\n\n\t", "(N.B. No I-Block Data Written)", "");
    return OK;
}

// text beside the events, and none where no score is wanted
void put_score(std::FILE *out, std::string_view text)
{
    if (observer != nullptr)
        observer->score_text(text.data(), text.size());
    if (out == nullptr)
        return;
    begin_output(out);
    std::fwrite(text.data(), 1, text.size(), out);
}

// written tells whether there was anything to write
int write_score(std::FILE *out, std::uint32_t block, bool &written)
{
    char      head[64];
    const int length = std::snprintf(head, sizeof head, "\n;I-block #%u (i%d):", block, I_NO);
    put_score(out, {head, static_cast<std::size_t>(length)});
    if (observer != nullptr)
        observer->score_begins();
    written = print_csound(note_list, out, MAX_PFIELDS);
    if (written)
        free_pfield_record();
    return OK;
}

int write_midi(std::FILE *out, bool &written)
{
    std::uint64_t length = 0;
    const int     result = List2MIDI(note_list, MAX_PFIELDS, length);
    written              = result > 0;
    if (!written)
        return result < 0 ? OUT_OF_MEMORY : OK;
    if (out == nullptr)
        return OK;
    begin_output(out);
    PutMidiHeader(out, 2);
    PutTrack1(out, note_list->start + note_list->dur + 1.0F);
    WriteTrack(out, note_list, length);
    return OK;
}

void report_statistics(std::uint32_t block)
{
    ListStats stats{};
    GetListStats(note_list, stats);
    if (stats.end > CUM_TIME)
        CUM_TIME = stats.end;
    LAST_IB_DUR = stats.duration;
    Mprintf("\n\n%d events generated in block #%d (i%d).\n", stats.count, block, I_NO);
    Mprintf("Total i-block duration: %f (secs), %f (beats)\n", stats.duration, stats.beats);
    Mprintf("Cumulative i-block duration: %f (secs)\n", stats.end);
    if (observer != nullptr)
        observer->block_written(block, stats.duration, stats.beats, stats.end);
}

// every event of the block as its sections have left it, rests among them
void tell_events(const Event *list)
{
    const auto values = static_cast<std::size_t>(MAX_PFIELDS - LEAST_PFIELDS);
    observer->block_done(MAX_PFIELDS);
    const Event *event = list;
    do {
        event = event->next;
        observer->event(event->start, event->dur, event->beat, event->pf, values);
    } while (event != list);
}

bool input_used_up(const Input &in) { return in.ended && peek(in) == '\0'; }

// How far a run has come.
struct Progress {
    bool in_block; // in an i-block, not between two
    bool ended;    // a MIDI run is over, which it is after its first i-block
};

// run -> { global-block i-block }
int do_blocks(Input &in, std::FILE *out, Progress &progress)
{
    std::uint32_t block = 1;
    for (progress.ended = false; !progress.ended;) { // each round reads lines, up to the end of the input
        progress.in_block = false;
        if (const int status = parse_gblock(in, out); status > 0)
            return status;
        progress.in_block = true;
        if (const int error = do_iblock(in, out, block))
            return error;
        if (std::ferror(in.stream) != 0) { // what follows in the input is lost
            tell(Severity::error, "\nERROR: ", "Can't read temporary file", "\n\n");
            return FULLY_REPORTED;
        }
        if (input_used_up(in))
            return ifdef_match() ? OK : MISSING_ENDIF;
        progress.ended = MKMIDI;
        if (!progress.ended && in.ended)
            return OK;
    }
    return OK;
}

// What is being run, for an end in the middle.
struct Running {
    Files       *files;
    const Input *in;
};

Running running{nullptr, nullptr}; // set by run

// where memory that is exhausted can't be thrown
[[noreturn]] void end_exhausted()
{
    error_no(OUT_OF_MEMORY, running.in->line_no, running.in->line, running.in->pos);
    std::exit(fail(*running.files));
}

int run_input(Files &files, Input &in, bool look_further)
{
    in.stream = files.in;
    Progress progress{};
    if (const int error = do_blocks(in, files.out, progress)) {
        error_no(error, in.line_no, in.line, in.pos);
        if (look_further && error != OUT_OF_MEMORY)
            check_rest(in, progress.in_block);
        return fail(files);
    }
    if (progress.ended)
        return finish(files);
    if (!MKMIDI)
        put_score(files.out, "\ne\n");
    Mprintf("\n\nGlobal cumulative duration of all i-blocks = %f (secs)\n", CUM_TIME);
    return finish(files);
}

} // namespace

int do_iblock(Input &in, std::FILE *out, std::uint32_t &block)
{
    if (const int status = parse_iblock(in, note_list); status > 0)
        return status;
    if (note_list == nullptr)
        return nothing_written(block);
    if (observer != nullptr && observer->event != nullptr)
        tell_events(note_list);
    bool written = false;
    if (const int error = MKMIDI ? write_midi(out, written) : write_score(out, block, written))
        return error;
    if (!written)
        return nothing_written(block);
    report_statistics(block++);
    FreeListNodes(note_list);
    return OK;
}

int run(int argc, const char *const *argv)
{
    reset();
    secure_standard_streams();
    Files files{};
    Input in{};
    running = {&files, &in};
    on_exhaustion(end_exhausted);
    if (get_options(argc, argv) != 0 || check_fnames() != 0)
        return FAILURE;
    if (!open_files(files, WHOLE))
        return fail_with(FULLY_REPORTED, files);
    print_info(stderr);
    if (const int error = combine_input(files, WHOLE))
        return fail_with(error, files);
    return run_input(files, in, false);
}

int explain_run(const char *name, bool midi, Extent piece)
{
    reset();
    secure_standard_streams();
    show_screen(false);
    in_fname = name;
    MKMIDI   = midi;
    Files files{};
    if (!open_files(files, piece))
        return fail_with(FULLY_REPORTED, files);
    if (const int error = combine_input(files, piece))
        return fail_with(error, files);
    Input in{};
    return run_input(files, in, true);
}

} // namespace orlo

// Runs pieces with an allocation that fails: memory_faults FOLDER-OF-PIECES
//
// Each piece is run once undisturbed, which counts its allocations, then for every n twice: the n-th allocation fails alone, and
// with all behind it. Every such run must end with status 1 and say so, in the words of error 32, in those of error 102 where a
// constant is stored, in those of error 45 where a value of a loop is; all memory has been given back and the temporary file is
// gone.

#include "diag/messages.h"
#include "diag/report.h"
#include "driver/run.h"
#include "events/arena.h"
#include "events/event_list.h"
#include "events/pfields.h"
#include "failing_memory.h"
#include "input/line_reader.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace {

constexpr int MOST_FAULTS = 10; // reported of one piece

struct Piece {
    const char               *title;
    std::vector<const char *> arguments;
};

const Piece pieces[] = {
    {"a score", {"orlo", "-x", "trace", "-l", "log", "every-feature.orlo", "score"}},
    {"a MIDI file", {"orlo", "-m", "-t", "-x", "trace", "-l", "log", "every-feature.orlo", "score"}},
    {"an unknown macro", {"orlo", "unknown-macro.orlo", "score"}},
    {"an unknown constant", {"orlo", "unknown-constant.orlo", "score"}},
    {"a macro that calls itself", {"orlo", "-s", "endless-macro.orlo", "score"}},
};

int run_piece(const void *what)
{
    const auto &arguments = static_cast<const Piece *>(what)->arguments;
    orlo::ARENA_CHUNK     = 0; // each event asks for memory of its own
    return orlo::run(static_cast<int>(arguments.size()), arguments.data());
}

void look_for_what_is_left()
{
    account->empty = orlo::note_list == nullptr && orlo::OUTS == nullptr && orlo::fllog == nullptr && orlo::fecho == nullptr;
}

int run_in_child(const Piece &piece, const Plan &plan) { return run_in_child(plan, run_piece, &piece, look_for_what_is_left); }

// What a screen says of the error that ended the run.
struct Report {
    int         errors; // how many there are
    std::string text;
    std::string line; // the line that is shown with it
};

Report find_report(const std::string &screen)
{
    static const std::string mark = "ERROR: Line ";
    Report                   report{};
    for (std::size_t at = screen.find("ERROR:"); at != std::string::npos; at = screen.find("ERROR:", at + 1))
        ++report.errors;
    const std::size_t start = screen.find(mark);
    if (start == std::string::npos)
        return report;
    const std::size_t text = screen.find(": ", start + mark.size()) + 2;
    const std::size_t line = screen.find('\n', text) + 1;
    report.text            = screen.substr(text, line - 1 - text);
    report.line            = screen.substr(line, screen.find('\n', line) - line);
    return report;
}

// the number of the error that exhausted memory must be, or may be, where this line is read; 0 when the report tells another one
int judge(const Report &report)
{
    const bool constant = report.line.starts_with("#const") && report.line.find('~') == std::string::npos;
    const bool loop     = report.line.find('<') != std::string::npos;
    if (constant)
        return report.text == orlo::error_text(102) ? 102 : 0;
    if (report.text == orlo::error_text(32))
        return 32;
    return loop && report.text == orlo::error_text(45) ? 45 : 0;
}

// How often each error ended a run.
struct Tally {
    std::uint64_t memory;
    std::uint64_t constant;
    std::uint64_t loop;
    std::uint64_t faults;
};

void count(Tally &tally, int number)
{
    tally.memory += number == 32 ? 1 : 0;
    tally.constant += number == 102 ? 1 : 0;
    tally.loop += number == 45 ? 1 : 0;
}

// what is wrong with a run that ended, or an empty text
std::string find_fault(int ended)
{
    if (!WIFEXITED(ended))
        return "ended by signal " + std::to_string(WTERMSIG(ended));
    if (WEXITSTATUS(ended) != 1)
        return "status " + std::to_string(WEXITSTATUS(ended));
    if (account->held != 0 || !account->empty)
        return "keeps " + std::to_string(account->held) + " pieces of memory";
    if (!std::filesystem::is_empty("tmp"))
        return "keeps its temporary file";
    return "";
}

void try_plan(const Piece &piece, const Plan &next, Tally &tally)
{
    const int         ended  = run_in_child(piece, next);
    const std::string screen = read_screen();
    const Report      report = find_report(screen);
    const int         number = judge(report);
    std::string       fault  = find_fault(ended);
    if (fault.empty() && report.errors != 1)
        fault = std::to_string(report.errors) + " errors";
    if (fault.empty() && number == 0)
        fault = "another error than that of exhausted memory";
    count(tally, number);
    if (fault.empty() || ++tally.faults > MOST_FAULTS)
        return;
    std::printf("FAIL: %s: allocation %llu%s fails: %s\n%s\n", piece.title, static_cast<unsigned long long>(next.failing),
                next.onward ? " and all behind it" : "", fault.c_str(), screen.c_str());
}

// the allocations of an undisturbed run; 0 when it did not end by itself
std::uint64_t count_allocations(const Piece &piece)
{
    const int ended = run_in_child(piece, {});
    if (WIFEXITED(ended) && WEXITSTATUS(ended) <= 1 && account->held == 0)
        return account->made;
    std::printf("FAIL: %s: the undisturbed run:\n%s\n", piece.title, read_screen().c_str());
    return 0;
}

bool try_piece(const Piece &piece, Tally &all)
{
    const std::uint64_t allocations = count_allocations(piece);
    Tally               tally{};
    for (std::uint64_t n = 1; n <= allocations; ++n)
        for (const bool onward : {false, true})
            try_plan(piece, {n, onward}, tally);
    std::printf("%s: %llu allocations, each failed twice: error 32 %llu times, 102 %llu times, 45 %llu times, %llu faults\n",
                piece.title, static_cast<unsigned long long>(allocations), static_cast<unsigned long long>(tally.memory),
                static_cast<unsigned long long>(tally.constant), static_cast<unsigned long long>(tally.loop),
                static_cast<unsigned long long>(tally.faults));
    all.constant += tally.constant;
    all.loop += tally.loop;
    return allocations > 0 && tally.faults == 0;
}

} // namespace

int main(int argc, char **argv)
{
    const std::string folder = argc == 2 ? enter_folder(argv[1]) : "";
    if (folder.empty()) {
        std::printf("usage: memory_faults FOLDER-OF-PIECES\n");
        return BAD_FOLDER;
    }
    Tally all{};
    bool  right = true;
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    for (const Piece &piece : pieces)
        right = try_piece(piece, all) && right;
    if (all.constant == 0 || all.loop == 0) {
        std::printf("FAIL: no constant, or no loop, was without memory\n");
        right = false;
    }
    std::filesystem::current_path("/");
    std::filesystem::remove_all(folder);
    return right ? 0 : 1;
}

// Runs pieces with an allocation that fails: memory_faults FOLDER-OF-PIECES
//
// Each piece is run once undisturbed, which counts its allocations, then for every n twice: the n-th allocation fails alone, and
// with all behind it. Every such run must end with status 1 and say so, in the words of error 32, in those of error 102 where a
// constant is stored, in those of error 45 where a value of a loop is; all memory has been given back and the temporary file is
// gone.
// Counted are the allocations of the program and of the C++ library for it. What the C library takes for itself, a stream's
// buffer, is its own matter.
// Every run is a process of its own, so that it begins with a program that has not run yet.

#include "diag/messages.h"
#include "diag/report.h"
#include "driver/run.h"
#include "events/arena.h"
#include "events/event_list.h"
#include "events/pfields.h"
#include "input/line_reader.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>
#include <string>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

// What the allocations of a run are told, and what they tell.
struct Plan {
    std::uint64_t failing; // number of the allocation that fails, from 1; 0 for none
    bool          onward;  // all behind it fail too
};

struct Account {
    std::uint64_t made;  // allocations asked for
    std::int64_t  held;  // pieces of memory that were not given back
    bool          empty; // the program's variables hold nothing
};

bool     counting = false; // a run is on its way
Plan     plan{};
Account *account = nullptr; // shared with the process that waits

bool may_allocate()
{
    if (!counting)
        return true;
    const std::uint64_t number = ++account->made;
    const bool          fails  = plan.failing != 0 && (plan.onward ? number >= plan.failing : number == plan.failing);
    if (!fails)
        ++account->held;
    return !fails;
}

void count_release(const void *memory)
{
    if (counting && memory != nullptr)
        --account->held;
}

} // namespace

// what the program calls in place of the C library's functions: linker option --wrap
extern "C" {
void *__real_malloc(std::size_t size);
void *__real_calloc(std::size_t count, std::size_t size);
void  __real_free(void *memory);
void *__wrap_malloc(std::size_t size);
void *__wrap_calloc(std::size_t count, std::size_t size);
void  __wrap_free(void *memory);

const char *__asan_default_options();
const char *__ubsan_default_options();
}

void *__wrap_malloc(std::size_t size) { return may_allocate() ? __real_malloc(size) : nullptr; }

void *__wrap_calloc(std::size_t count, std::size_t size) { return may_allocate() ? __real_calloc(count, size) : nullptr; }

void __wrap_free(void *memory)
{
    count_release(memory);
    __real_free(memory);
}

void *operator new(std::size_t size)
{
    void *memory = may_allocate() ? __real_malloc(size) : nullptr;
    if (memory == nullptr)
        throw std::bad_alloc{};
    return memory;
}

void operator delete(void *memory) noexcept
{
    count_release(memory);
    __real_free(memory);
}

void operator delete(void *memory, std::size_t) noexcept { operator delete(memory); }

// a report must not look like the status 1 of a failure
const char *__asan_default_options() { return "detect_leaks=1:detect_stack_use_after_return=1:exitcode=99"; }
const char *__ubsan_default_options() { return "print_stacktrace=1:halt_on_error=1:exitcode=99"; }

namespace {

constexpr char SCREEN[]    = "screen";
constexpr int  BAD_FOLDER  = 2;
constexpr int  MOST_FAULTS = 10; // reported of one piece

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

// one run in the child
[[noreturn]] void run_and_exit(const Piece &piece)
{
    if (std::freopen(SCREEN, "w", stderr) == nullptr || std::freopen("/dev/null", "w", stdout) == nullptr)
        std::_Exit(BAD_FOLDER);
    orlo::ARENA_CHUNK = 0; // each event asks for memory of its own
    counting          = true;
    const int status  = orlo::run(static_cast<int>(piece.arguments.size()), piece.arguments.data());
    counting          = false;
    account->empty    = orlo::note_list == nullptr && orlo::OUTS == nullptr && orlo::fllog == nullptr && orlo::fecho == nullptr;
    std::exit(status); // looks for leaks
}

// @return as of waitpid
int run_in_child(const Piece &piece, const Plan &next)
{
    *account          = {};
    plan              = next;
    const pid_t child = fork();
    if (child == 0)
        run_and_exit(piece);
    int ended = -1;
    if (child < 0 || waitpid(child, &ended, 0) != child)
        std::perror("a process for a run");
    return ended;
}

std::string read_screen()
{
    std::ifstream file{SCREEN, std::ios::binary};
    return {std::istreambuf_iterator<char>{file}, {}};
}

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

bool enter_folder(const char *pieces_folder, std::filesystem::path &folder)
{
    // in memory where that can be: on a disk, files that are written over a thousand times wait for it
    const auto  places = {std::filesystem::path{"/dev/shm"}, std::filesystem::temp_directory_path()};
    std::string name;
    const auto  make = [&](const auto &place) { return mkdtemp((name = place / "orlo-faults-XXXXXX").data()) != nullptr; };
    if (std::ranges::none_of(places, make))
        return false;
    folder = name;
    std::filesystem::copy(pieces_folder, folder);
    std::filesystem::create_directory(folder / "tmp");
    std::filesystem::current_path(folder);
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    std::filesystem::path folder;
    if (argc != 2 || !enter_folder(argv[1], folder)) {
        std::printf("usage: memory_faults FOLDER-OF-PIECES\n");
        return BAD_FOLDER;
    }
    void *shared = mmap(nullptr, sizeof(Account), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED)
        return BAD_FOLDER;
    account = new (shared) Account{};

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

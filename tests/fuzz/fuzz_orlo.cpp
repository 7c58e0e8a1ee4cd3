// The whole program as a fuzz target: one input is one run, from the command line to the files that are written.
//
//   cmake --preset clang && cmake --build --preset clang --target fuzz
//   cd build/clang/fuzz && nice ./fuzz_orlo -dict=orlo.dict -max_len=4096 -timeout=10 -max_total_time=600 found corpus seeds
//
// New inputs gather in build/clang/fuzz/found, failing ones are written as crash-*, leak-*, timeout-* or oom-*; give such a file
// to ./fuzz_orlo as its only argument to see it fail again, and with -minimize_crash=1 to make it small. README.md tells how the
// kept inputs in corpus/ are renewed.
//
// The first line of an input is its command line, the rest is the piece. Of the first line the letters m, s, t, x and l count,
// which switch the options on, and the first number: so many allocations succeed, all later ones fail. Without a number there
// are MOST_ALLOCATIONS, so that "a billion events" ends in exhausted memory and not in a time-out.
//
// All runs share one process: the program sets itself back at the start of each. The replay proves this: it runs all inputs forward
// and backward and wants the same results.
// With ORLO_EXPLAIN defined the target is orlo-explain: "s" leaves single values out, "t" asks for messages, "x" makes the piece a
// Csound document, and its results are what it prints.
//
// A run stays inside a folder of its own: what a piece includes is looked for there alone.

#include "fuzz_orlo.h"

#include "diag/report.h"
#include "driver/run.h"
#include "events/event_list.h"
#include "events/pfields.h"
#include "explain/explain.h"
#include "input/line_reader.h"

#include <algorithm>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <new>
#include <string_view>

namespace {

#ifdef ORLO_EXPLAIN
constexpr std::uint64_t MOST_ALLOCATIONS = 400000;  // of a run that asks for no other number
constexpr std::uint64_t TOP_ALLOCATIONS  = 1000000; // of any run
#else
constexpr std::uint64_t MOST_ALLOCATIONS = 20000;
constexpr std::uint64_t TOP_ALLOCATIONS  = 250000;
#endif
constexpr std::size_t EVENT_SIZE = 64; // bytes, about those of an event

bool          counting    = false; // a run is on its way
std::uint64_t allocations = 0;     // that may still succeed in it

// a large piece, which many events share, counts as many allocations
bool may_allocate(std::size_t size)
{
    if (!counting)
        return true;
    if (allocations == 0)
        return false;
    allocations -= std::min<std::uint64_t>(allocations, 1 + size / EVENT_SIZE);
    return true;
}

} // namespace

// what the program calls in place of malloc, calloc, operator new, fopen, open, mkstemp and remove: redirected.syms
extern "C" {
void      *fuzz_malloc(std::size_t size);
void      *fuzz_calloc(std::size_t count, std::size_t size);
void      *fuzz_new(std::size_t size);
std::FILE *fuzz_fopen(const char *name, const char *mode);
int        fuzz_open(const char *name, int flags, ...);
int        fuzz_mkstemp(char *name);
int        fuzz_remove(const char *name);
}

void *fuzz_malloc(std::size_t size) { return may_allocate(size) ? std::malloc(size) : nullptr; }

void *fuzz_calloc(std::size_t count, std::size_t size) { return may_allocate(count * size) ? std::calloc(count, size) : nullptr; }

void *fuzz_new(std::size_t size)
{
    if (!may_allocate(size))
        throw std::bad_alloc{};
    return ::operator new(size);
}

namespace {

using namespace orlo;

// the files of a run; the first two can be included
constexpr char PIECE[]     = "piece";
constexpr char PART[]      = "part";
constexpr char SCORE[]     = "results/score";
constexpr char TRACE[]     = "results/trace";
constexpr char LOG[]       = "results/log";
constexpr char TEMPORARY[] = "results/temporary";

constexpr char part_text[] = "#const half .5\n#define down(a'b)#$b $a#\n; a comment\nte(90)\n";

char root[PATH_MAX]           = ""; // folder of the files of a run
char temporary_name[PATH_MAX] = ""; // that the program has chosen for its temporary file

void remove_root()
{
    std::error_code ignored;
    std::filesystem::remove_all(root, ignored);
}

[[noreturn]] void give_up(const char *what)
{
    std::perror(what);
    std::abort();
}

struct Path {
    char text[2 * PATH_MAX];
};

Path in_root(const char *name)
{
    Path path;
    std::snprintf(path.text, sizeof path.text, "%s/%s", root, name);
    return path;
}

std::FILE *open_in_root(const char *name, const char *mode) { return std::fopen(in_root(name).text, mode); }

void write_file(const char *name, std::string_view text)
{
    std::FILE *file = open_in_root(name, "wb");
    if (file == nullptr || std::fwrite(text.data(), 1, text.size(), file) != text.size() || std::fclose(file) != 0)
        give_up(name);
}

// The streams themselves are replaced, and buffered, since messages are most of what a run writes. Sanitizers and the fuzzer keep
// writing to the file descriptor.
void silence_screen()
{
    std::FILE *nobody = std::fopen("/dev/null", "w");
    if (nobody == nullptr)
        give_up("/dev/null");
#ifdef __GLIBC__
    stdout = nobody;
    stderr = nobody;
#endif
}

bool prepare()
{
    const bool in_memory = std::filesystem::is_directory("/dev/shm"); // several times faster
    const auto parent    = in_memory ? std::filesystem::path{"/dev/shm"} : std::filesystem::temp_directory_path();
    std::snprintf(root, sizeof root, "%s/orlo-fuzz-XXXXXX", parent.c_str());
    if (mkdtemp(root) == nullptr)
        give_up("a temporary folder");
    std::atexit(remove_root);
    std::filesystem::create_directory(std::filesystem::path{root} / "results");
    write_file(PART, part_text);
    silence_screen();
    return true;
}

// The command line that the first line stands for.
struct CommandLine {
    const char *arguments[12];
    int         count;
};

void add(CommandLine &line, const char *argument) { line.arguments[line.count++] = argument; }

#ifdef ORLO_EXPLAIN

constexpr char DOCUMENT[] = "piece.csd";

CommandLine read_command_line(std::string_view flags)
{
    CommandLine line{};
    const auto  has = [flags](char letter) { return flags.find(letter) != std::string_view::npos; };
    add(line, "orlo-explain");
    if (has('m'))
        add(line, "-m");
    if (has('s'))
        add(line, "--no-events");
    if (has('t'))
        add(line, "--format=gcc");
    add(line, has('x') ? DOCUMENT : PIECE);
    return line;
}

int run_program(const CommandLine &line)
{
    std::FILE *screen = stdout;
    std::FILE *result = open_in_root(SCORE, "w");
    if (result == nullptr)
        give_up(SCORE);
    stdout           = result;
    counting         = true;
    const int status = explain::run(line.count, line.arguments);
    counting         = false;
    stdout           = screen;
    std::fclose(result);
    return status;
}

void write_piece(std::string_view text)
{
    write_file(PIECE, text);
    write_file(DOCUMENT, text);
}

#else

CommandLine read_command_line(std::string_view flags)
{
    CommandLine line{};
    const auto  has = [flags](char letter) { return flags.find(letter) != std::string_view::npos; };
    add(line, "orlo");
    if (has('m'))
        add(line, "-m");
    if (has('s'))
        add(line, "-s");
    if (has('t'))
        add(line, "-t");
    if (has('x')) {
        add(line, "-x");
        add(line, TRACE);
    }
    if (has('l')) {
        add(line, "-l");
        add(line, LOG);
    }
    add(line, PIECE);
    add(line, SCORE);
    return line;
}

int run_program(const CommandLine &line)
{
    counting         = true;
    const int status = run(line.count, line.arguments);
    counting         = false;
    return status;
}

void write_piece(std::string_view text) { write_file(PIECE, text); }

#endif

std::uint64_t read_allocations(std::string_view flags)
{
    const std::size_t start = flags.find_first_of("0123456789");
    if (start == std::string_view::npos)
        return MOST_ALLOCATIONS;
    std::uint64_t number = 0;
    for (std::size_t i = start; i < flags.size() && flags[i] >= '0' && flags[i] <= '9'; ++i)
        number = std::min(number * 10 + static_cast<std::uint64_t>(flags[i] - '0'), TOP_ALLOCATIONS);
    return number;
}

// the program switches these signals off, and whoever had them wants them back
constexpr int taken_signals[] = {SIGPIPE, SIGXFSZ};

int run_once(const CommandLine &line)
{
    struct sigaction before[std::size(taken_signals)];
    for (std::size_t i = 0; i < std::size(taken_signals); ++i)
        sigaction(taken_signals[i], nullptr, &before[i]);
    const int status = run_program(line);
    for (std::size_t i = 0; i < std::size(taken_signals); ++i)
        sigaction(taken_signals[i], &before[i], nullptr);
    return status;
}

// nothing may be left over from a run
void check(int status)
{
    const bool status_known = status == 0 || status == 1;
    const bool all_released = note_list == nullptr && OUTS == nullptr && RE_FW == nullptr && FFT_SZ == nullptr;
    if (!status_known || !all_released || fecho != nullptr || fllog != nullptr)
        std::abort();
}

void append_file(std::string &results, const char *name)
{
    std::FILE *file = open_in_root(name, "rb");
    if (file == nullptr)
        return;
    char buffer[4096];
    for (std::size_t read = 1; read > 0;) {
        read = std::fread(buffer, 1, sizeof buffer, file);
        results.append(buffer, read);
    }
    std::fclose(file);
}

} // namespace

// All files of a run lie in its folder. What a piece includes is looked for there alone: no name leads out.
std::FILE *fuzz_fopen(const char *name, const char *mode)
{
    if (std::strcmp(name, temporary_name) == 0)
        return open_in_root(TEMPORARY, mode);
    return std::strchr(name, '/') != nullptr ? nullptr : open_in_root(name, mode);
}

// the files that are written, and the device that takes the place of closed streams
int fuzz_open(const char *name, int flags, ...) { return open(name[0] == '/' ? name : in_root(name).text, flags, 0600); }

int fuzz_mkstemp(char *name)
{
    std::snprintf(temporary_name, sizeof temporary_name, "%s", name);
    return open(in_root(TEMPORARY).text, O_RDWR | O_CREAT | O_TRUNC, 0600);
}

// the temporary file, which the next run overwrites
int fuzz_remove(const char *) { return 0; }

std::string last_results()
{
    std::string results;
    for (const char *name : {SCORE, TRACE, LOG})
        append_file(results, name);
    return results;
}

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const bool prepared = prepare();
    static_cast<void>(prepared);

    const std::string_view input{reinterpret_cast<const char *>(data), size};
    const std::string_view flags = input.substr(0, input.find('\n'));
    const std::string_view piece = input.substr(std::min(flags.size() + 1, size));
    for (const char *name : {SCORE, TRACE, LOG}) // a run that fails would leave those of the run before
        std::remove(in_root(name).text);
    write_piece(piece);
    const CommandLine line = read_command_line(flags);
    allocations            = read_allocations(flags);
    check(run_once(line));
    return 0;
}

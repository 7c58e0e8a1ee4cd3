// Runs orlo-explain with an allocation that fails: explain_memory_faults FOLDER-OF-PIECES
//
// Each command line is run once undisturbed, which counts its allocations, then for every n twice: the n-th allocation fails alone,
// and with all behind it. Such a run ends with status 1 and says so, and leaves what was in its output file as it was; or the
// allocation was one of the run that it looks at: then it writes a document whose last error is that of exhausted memory. Temporary
// files are gone. Where all allocations behind the first fail, nothing can be written.

#include "explain/explain.h"
#include "failing_memory.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace {

constexpr int  MOST_FAULTS = 10;                                  // reported of one command line
constexpr char OUT[]       = "the-document-that-is-written.json"; // longer than what a text holds without asking for memory
constexpr char YESTERDAY[] = "of yesterday\n";
constexpr char SAID[]      = "orlo-explain: not enough memory\n";

struct Command {
    const char               *title;
    std::vector<const char *> arguments;
};

const Command commands[] = {
    {"a document", {"orlo-explain", "-o", OUT, "every-feature.orlo"}},
    {"a document without events", {"orlo-explain", "--no-events", "-o", OUT, "every-feature.orlo"}},
    {"a document of a MIDI run", {"orlo-explain", "-m", "-o", OUT, "every-feature.orlo"}},
    {"messages", {"orlo-explain", "--format=gcc", "-o", OUT, "two-errors.csd"}},
    {"hints", {"orlo-explain", "--format=gcc", "-o", OUT, "stumbling.orlo"}},
};

int run_command(const void *what)
{
    const auto &arguments = static_cast<const Command *>(what)->arguments;
    return orlo::explain::run(static_cast<int>(arguments.size()), arguments.data());
}

int run_command_in_child(const Command &command, const Plan &plan)
{
    std::ofstream{OUT} << YESTERDAY;
    return run_in_child(plan, run_command, &command, [] {});
}

std::string read_out()
{
    std::ifstream file{OUT, std::ios::binary};
    return {std::istreambuf_iterator<char>{file}, {}};
}

// whether a message of orlo's own tells that memory was exhausted: one of the errors 32, 45 and 102
bool tells_of_memory(const std::string &text)
{
    for (const char *part : {"out of memory!", "(or memory error)", "not enough memory to allocate constant"})
        if (text.find(part) != std::string::npos)
            return true;
    return false;
}

// How often runs ended in each way.
struct Tally {
    std::uint64_t refused;
    std::uint64_t written;
    std::uint64_t faults;
};

// what is wrong with a run that ended, or an empty text
std::string find_fault(int ended, const Plan &plan, Tally &tally)
{
    if (!WIFEXITED(ended))
        return "ended by signal " + std::to_string(WTERMSIG(ended));
    if (!std::filesystem::is_empty("tmp"))
        return "keeps a temporary file";
    const std::string screen = read_screen();
    const std::string out    = read_out();
    const int         status = WEXITSTATUS(ended);
    if (status == 1) {
        ++tally.refused;
        return screen != SAID ? "says something else" : out != YESTERDAY ? "the earlier file is gone" : "";
    }
    ++tally.written;
    if (status != 0 || plan.onward)
        return "status " + std::to_string(status);
    if (!screen.empty())
        return "says something";
    return !tells_of_memory(out) ? "the document tells nothing of memory" : !out.ends_with('\n') ? "half a document" : "";
}

void try_plan(const Command &command, const Plan &plan, Tally &tally)
{
    const std::string fault = find_fault(run_command_in_child(command, plan), plan, tally);
    if (fault.empty() || ++tally.faults > MOST_FAULTS)
        return;
    std::printf("FAIL: %s: allocation %llu%s fails: %s\n%s\n", command.title, static_cast<unsigned long long>(plan.failing),
                plan.onward ? " and all behind it" : "", fault.c_str(), read_screen().c_str());
}

// the allocations of an undisturbed run; 0 when it did not end as it should
std::uint64_t count_allocations(const Command &command)
{
    const int ended = run_command_in_child(command, {});
    if (WIFEXITED(ended) && WEXITSTATUS(ended) == 0 && read_out() != YESTERDAY && read_screen().empty())
        return account->made;
    std::printf("FAIL: %s: the undisturbed run:\n%s\n", command.title, read_screen().c_str());
    return 0;
}

bool try_command(const Command &command)
{
    const std::uint64_t allocations = count_allocations(command);
    Tally               tally{};
    for (std::uint64_t n = 1; n <= allocations; ++n)
        for (const bool onward : {false, true})
            try_plan(command, {n, onward}, tally);
    std::printf(
        "%s: %llu allocations, each failed twice: %llu times without, %llu times with a document that tells it, %llu faults\n",
        command.title, static_cast<unsigned long long>(allocations), static_cast<unsigned long long>(tally.refused),
        static_cast<unsigned long long>(tally.written), static_cast<unsigned long long>(tally.faults));
    return tally.refused > 0 && tally.written > 0 && tally.faults == 0;
}

} // namespace

int main(int argc, char **argv)
{
    const std::string folder = argc == 2 ? enter_folder(argv[1]) : "";
    if (folder.empty()) {
        std::printf("usage: explain_memory_faults FOLDER-OF-PIECES\n");
        return BAD_FOLDER;
    }
    bool right = true;
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    for (const Command &command : commands)
        right = try_command(command) && right;
    std::filesystem::current_path("/");
    std::filesystem::remove_all(folder);
    return right ? 0 : 1;
}

// Runs orlo twice in one process: orlo_twice [--first FOLDER] [ARGUMENT...]
//
// What is seen is the second run, with the arguments: its files, its screen and its exit status must be those of a run in a process
// of its own. The first run says nothing on the screen. It is the same one or, with --first, one of each piece in the folder, with
// all the options that a score can have (those that are called midi-... become MIDI files, with all of theirs), and with its files
// in a folder that is removed.
// A file that a first run leaves open ends the program with BAD_RUN.

#include "driver/run.h"
#include "platform/memory_limit.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace {

using Arguments = std::vector<const char *>;

constexpr int BAD_RUN    = 98;
constexpr int MOST_FILES = 256; // file numbers that are looked at

[[noreturn]] void give_up(const char *what)
{
    std::perror(what);
    std::exit(BAD_RUN);
}

int open_files()
{
    int count = 0;
    for (int number = 0; number < MOST_FILES; ++number)
        count += fcntl(number, F_GETFD) >= 0 ? 1 : 0;
    return count;
}

// Standard output and error, which go nowhere meanwhile.
class Silence {
  public:
    Silence()
    {
        const int nowhere = open("/dev/null", O_WRONLY);
        if (nowhere < 0)
            give_up("/dev/null");
        for (int &stream : kept_) {
            const int number = static_cast<int>(&stream - kept_) + STDOUT_FILENO;
            stream           = dup(number);
            dup2(nowhere, number);
        }
        close(nowhere);
    }
    ~Silence()
    {
        std::fflush(stdout);
        for (const int &stream : kept_) {
            dup2(stream, static_cast<int>(&stream - kept_) + STDOUT_FILENO);
            close(stream);
        }
    }
    Silence(const Silence &)            = delete;
    Silence &operator=(const Silence &) = delete;

  private:
    int kept_[2] = {};
};

int run(const Arguments &arguments) { return orlo::run(static_cast<int>(arguments.size()), arguments.data()); }

void run_unseen(const Arguments &arguments)
{
    const int before = open_files();
    {
        const Silence silence;
        static_cast<void>(run(arguments));
    }
    if (open_files() == before)
        return;
    std::fputs("orlo_twice: the first run has left files open\n", stderr);
    std::exit(BAD_RUN);
}

std::vector<std::string> find_pieces(const char *folder)
{
    std::vector<std::string> pieces;
    for (const auto &entry : std::filesystem::directory_iterator{folder})
        pieces.push_back(std::filesystem::absolute(entry.path()));
    std::sort(pieces.begin(), pieces.end());
    if (pieces.empty()) {
        std::fputs("orlo_twice: no pieces\n", stderr);
        std::exit(BAD_RUN);
    }
    return pieces;
}

void run_others(const char *folder)
{
    const std::vector<std::string> pieces = find_pieces(folder);
    const std::filesystem::path    here   = std::filesystem::current_path();
    std::string                    there  = std::filesystem::temp_directory_path() / "orlo-twice-XXXXXX";
    if (mkdtemp(there.data()) == nullptr)
        give_up("a temporary folder");
    std::filesystem::current_path(there);
    for (const std::string &piece : pieces) {
        const bool midi = std::filesystem::path{piece}.filename().string().starts_with("midi-");
        run_unseen({"orlo", midi ? "-m" : "-t", "-s", "-x", "trace", "-l", "log", piece.c_str(), "score"});
    }
    std::filesystem::current_path(here);
    std::filesystem::remove_all(there);
}

} // namespace

int main(int argc, char **argv)
{
    orlo::limit_memory();
    const bool others = argc > 2 && std::string_view{argv[1]} == "--first";
    Arguments  arguments{argv[0]};
    arguments.insert(arguments.end(), argv + (others ? 3 : 1), argv + argc);
    if (others)
        run_others(argv[2]);
    else
        run_unseen(arguments);
    return run(arguments);
}

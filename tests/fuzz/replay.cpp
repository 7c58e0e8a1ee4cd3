// Replays inputs of the fuzz target without the fuzzer: fuzz_replay FILE|FOLDER...
// All inputs are run forward and then backward; the results of an input must be the same both times, whatever was run before.
// An input that crashes or takes more than TIME_LIMIT seconds of processor time ends the replay: the last line names it.

#include "fuzz_orlo.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/time.h>
#include <vector>

namespace {

constexpr int TIME_LIMIT = 10;

std::FILE *const screen = stderr; // before the target replaces it

struct Item {
    std::string path;
    std::string data;
    std::string results;
};

std::string read(const std::string &path)
{
    std::ifstream file{path, std::ios::binary};
    return {std::istreambuf_iterator<char>{file}, {}};
}

std::vector<Item> collect(int argc, char **argv)
{
    std::vector<std::string> paths;
    for (int i = 1; i < argc; ++i) {
        if (!std::filesystem::is_directory(argv[i])) {
            paths.emplace_back(argv[i]);
            continue;
        }
        for (const auto &entry : std::filesystem::directory_iterator{argv[i]})
            paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    std::vector<Item> items;
    for (const std::string &path : paths)
        items.push_back({path, read(path), {}});
    return items;
}

// a run that takes too long is ended by the signal of the timer
void run(const Item &item)
{
    const itimerval limit{{0, 0}, {TIME_LIMIT, 0}};
    const itimerval off{};
    std::fprintf(screen, "%s\n", item.path.c_str());
    setitimer(ITIMER_VIRTUAL, &limit, nullptr);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(item.data.data()), item.data.size());
    setitimer(ITIMER_VIRTUAL, &off, nullptr);
}

} // namespace

int main(int argc, char **argv)
{
    std::vector<Item> items = collect(argc, argv);
    if (items.empty()) {
        std::fprintf(screen, "no inputs to replay\n");
        return 1;
    }
    for (Item &item : items) {
        run(item);
        item.results = last_results();
    }
    for (auto item = items.rbegin(); item != items.rend(); ++item) {
        run(*item);
        if (item->results != last_results()) {
            std::fprintf(screen, "the results are different after other runs\n");
            return 1;
        }
    }
    std::fprintf(screen, "%zu inputs replayed\n", items.size());
    return 0;
}

// Runs orlo while somebody looks: observed_orlo [--nothing | --summary] [ARGUMENT...]
//
// What it writes and says must be what orlo writes and says. What is told is gathered as orlo-explain does it, with --summary as
// for
// --no-events, or, with --nothing, not even listened to.

#include "base/observer.h"
#include "driver/run.h"
#include "gather/collector.h"
#include "platform/memory_limit.h"

#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using orlo::gather::Detail;

template <class... Told> using Function = void (*)(Told...);

// becomes a function that does nothing, whatever it is told
struct Deaf {
    template <class... Told> constexpr operator Function<Told...>() const
    {
        return [](Told...) {};
    }
};

template <std::size_t... each> constexpr orlo::Observer all_deaf(std::index_sequence<each...>) { return {((void)each, Deaf{})...}; }

constexpr int NOT_ENOUGH_MEMORY = 3; // a status of its own

constexpr std::size_t    FUNCTIONS = sizeof(orlo::Observer) / sizeof(Function<>);
constexpr orlo::Observer deaf      = all_deaf(std::make_index_sequence<FUNCTIONS>{});

int run(const std::vector<const char *> &arguments) { return orlo::run(static_cast<int>(arguments.size()), arguments.data()); }

int run_gathered(const std::vector<const char *> &arguments, Detail detail)
{
    orlo::gather::Piece piece;
    orlo::gather::start_collecting(piece, detail);
    orlo::observer   = &orlo::gather::collecting_observer(detail);
    const int status = run(arguments);
    orlo::observer   = nullptr;
    return orlo::gather::end_collecting() ? status : NOT_ENOUGH_MEMORY;
}

} // namespace

int main(int argc, char **argv)
{
    orlo::limit_memory();
    const std::string_view    first   = argc > 1 ? argv[1] : "";
    const bool                nothing = first == "--nothing";
    const bool                summary = first == "--summary";
    std::vector<const char *> arguments{argv[0]};
    arguments.insert(arguments.end(), argv + (nothing || summary ? 2 : 1), argv + argc);
    if (!nothing)
        return run_gathered(arguments, summary ? Detail::summary : Detail::events);
    orlo::observer = &deaf;
    return run(arguments);
}

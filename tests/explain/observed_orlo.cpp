// Runs orlo while somebody looks: observed_orlo [--nothing] [ARGUMENT...]
//
// What it writes and says must be what orlo writes and says. What is told is gathered as orlo-explain does it or, with --nothing,
// not even listened to.

#include "base/observer.h"
#include "driver/run.h"
#include "explain/collector.h"
#include "platform/memory_limit.h"

#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

namespace {

template <class... Told> using Function = void (*)(Told...);

// becomes a function that does nothing, whatever it is told
struct Deaf {
    template <class... Told> constexpr operator Function<Told...>() const
    {
        return [](Told...) {};
    }
};

template <std::size_t... each> constexpr orlo::Observer all_deaf(std::index_sequence<each...>)
{
    return {((void)each, Deaf{})...};
}

constexpr std::size_t    FUNCTIONS = sizeof(orlo::Observer) / sizeof(Function<>);
constexpr orlo::Observer deaf      = all_deaf(std::make_index_sequence<FUNCTIONS>{});

int run(const std::vector<const char *> &arguments) { return orlo::run(static_cast<int>(arguments.size()), arguments.data()); }

int run_gathered(const std::vector<const char *> &arguments)
{
    orlo::explain::Piece piece;
    orlo::explain::start_collecting(piece, orlo::explain::Detail::events);
    orlo::observer   = &orlo::explain::collecting_observer();
    const int status = run(arguments);
    orlo::observer   = nullptr;
    orlo::explain::end_collecting();
    return status;
}

} // namespace

int main(int argc, char **argv)
{
    orlo::limit_memory();
    const bool                nothing = argc > 1 && std::string_view{argv[1]} == "--nothing";
    std::vector<const char *> arguments{argv[0]};
    arguments.insert(arguments.end(), argv + (nothing ? 2 : 1), argv + argc);
    if (!nothing)
        return run_gathered(arguments);
    orlo::observer = &deaf;
    return run(arguments);
}

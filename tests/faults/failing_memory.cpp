// The C library's functions that give memory are replaced: linker option --wrap. What C++ asks for comes through operator new.

#include "failing_memory.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

Account *account = nullptr;

namespace {

constexpr char SCREEN[] = "screen";

bool counting = false; // a run is on its way
Plan plan{};

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

[[noreturn]] void run_and_exit(int (*run)(const void *what), const void *what, void (*end)())
{
    if (std::freopen(SCREEN, "w", stderr) == nullptr || std::freopen("/dev/null", "w", stdout) == nullptr)
        std::_Exit(BAD_FOLDER);
    counting         = true;
    const int status = run(what);
    counting         = false;
    end();
    std::exit(status); // looks for leaks
}

} // namespace

std::string enter_folder(const char *pieces)
{
    void *shared = mmap(nullptr, sizeof(Account), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED)
        return "";
    account = new (shared) Account{};
    // in memory where that can be: on a disk, files that are written over a thousand times wait for it
    const auto  places = {std::filesystem::path{"/dev/shm"}, std::filesystem::temp_directory_path()};
    std::string name;
    const auto  make = [&](const auto &place) { return mkdtemp((name = place / "orlo-faults-XXXXXX").data()) != nullptr; };
    if (std::ranges::none_of(places, make))
        return "";
    std::filesystem::copy(pieces, name);
    std::filesystem::current_path(name);
    std::filesystem::create_directory("tmp");
    return name;
}

int run_in_child(const Plan &next, int (*run)(const void *what), const void *what, void (*end)())
{
    *account          = {};
    plan              = next;
    const pid_t child = fork();
    if (child == 0)
        run_and_exit(run, what, end);
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

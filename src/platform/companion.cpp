#include "platform/companion.h"

#include "base/exhaustion.h"
#include "platform/memory_limit.h"
#include "platform/say.h"
#include "platform/standard_streams.h"
#include "platform/temporary_file.h"
#include "platform/whole_file.h"

#include <cstdio>
#include <cstdlib>

namespace orlo {
namespace {

constexpr int EXHAUSTED = -1; // no status: there was not enough memory

const char *program_name = "orlo"; // written by run_companion

[[noreturn]] void end_exhausted()
{
    remove_temporary_file();
    remove_unfinished();
    complain_of_memory();
    std::exit(FAILURE);
}

} // namespace

int run_companion(const char *program, int (*task)(int argc, const char *const *argv), int argc, const char *const *argv)
{
    program_name = program;
    outlive_lost_writes();
    on_exhaustion(end_exhausted);
    const int status = unless_exhausted([&] { return task(argc, argv); }, EXHAUSTED);
    if (status != EXHAUSTED)
        return status;
    complain_of_memory();
    return FAILURE;
}

bool complain(const std::string &text)
{
    say(std::string{program_name} + ": " + text);
    return false;
}

bool complain_of_memory()
{
    std::fputs(program_name, stderr);
    std::fputs(": not enough memory\n", stderr);
    return false;
}

bool cant_write(const std::string &name, const std::string &fault)
{
    return complain("can't write " + (name == STANDARD_OUTPUT ? "the standard output" : name) +
                    (fault.empty() ? "" : ": " + fault));
}

bool can_be_written(const std::string &name)
{
    return name != STANDARD_OUTPUT || is_open(stdout) || cant_write(name, "it is closed");
}

bool print(const char *text)
{
    WholeFile file;
    if (!can_be_written(STANDARD_OUTPUT) || !open_whole(file, STANDARD_OUTPUT).empty())
        return false;
    std::fputs(text, file.stream);
    const std::string fault = close_whole(file, true);
    return fault.empty() || cant_write(STANDARD_OUTPUT, fault);
}

} // namespace orlo

// The host runs orlo on the same files, as a call that comes back with its status.

#include "platform/run_orlo.h"

#include "platform/file_names.h"
#include "platform/folder.h"
#include "platform/new_file.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

// Runs a program. arguments: the first is its name, each is ended by a NUL; screen: the file that what it says is added to.
// Answers with its status.
extern "C" __attribute__((import_module("orlo"), import_name("run"))) std::int32_t
orlo_host_run(const char *arguments, std::size_t arguments_length, const char *screen, std::size_t screen_length);

namespace orlo {
namespace {

constexpr std::int32_t CANT_RUN = -1;

std::string last_error() { return std::strerror(errno); } // NOLINT(concurrency-mt-unsafe)

// A file that is gone when it is left.
struct Temporary {
    std::string name;
    bool        made = false;

    explicit Temporary(const char *kind)
    {
        const char *folder = std::getenv("TMPDIR");
        name               = (folder != nullptr ? folder : temporary_folder()) + "/orlo-view-" + kind + "-XXXXXX";
        std::FILE *file    = make_new_file(name.data());
        made               = file != nullptr && std::fclose(file) == 0;
    }
    Temporary(const Temporary &)            = delete;
    Temporary &operator=(const Temporary &) = delete;
    ~Temporary() { remove_file(name.c_str()); }
};

std::string messages_in(const std::string &name)
{
    std::string text(MOST_MESSAGES, '\0');
    std::FILE  *file = std::fopen(name.c_str(), "r");
    text.resize(file != nullptr ? std::fread(text.data(), 1, text.size(), file) : 0);
    if (file != nullptr)
        std::fclose(file);
    return text;
}

std::string fault_of(std::int32_t status)
{
    if (status == CANT_RUN)
        return "can't run orlo: the host has none";
    return status == 0 ? "" : "orlo has made no score of it";
}

} // namespace

std::string make_score(const std::string &name, const TakeScore &take_score, std::string &messages)
{
    const Temporary score("score");
    const Temporary screen("screen");
    if (!score.made || !screen.made)
        return "can't create a temporary file " + score.name + ": " + last_error();
    std::string arguments = "orlo";
    for (const std::string &argument : {std::string{"-s"}, name, score.name})
        arguments.append(1, '\0').append(argument);
    arguments.append(1, '\0');
    const std::int32_t status = orlo_host_run(arguments.data(), arguments.size(), screen.name.data(), screen.name.size());
    messages                  = messages_in(screen.name);
    const std::string fault   = fault_of(status);
    return fault.empty() ? take_score(score.name) : fault;
}

} // namespace orlo

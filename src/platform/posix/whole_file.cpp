// The name for the time being is one in the folder of the file, so that rename, which replaces a file at once
// (POSIX.1-2017), stays within a file system. A link is followed first: what it leads to is replaced, not the link.

#include "platform/whole_file.h"

#include "platform/ending_signals.h"
#include "platform/new_file.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace orlo {
namespace {

constexpr int MOST_LINKS = 40; // that lead to a file, as the system has it

char                       unfinished[PATH_MAX]; // settled before file_exists is set
volatile std::sig_atomic_t file_exists = 0;

std::string last_error() { return std::strerror(errno); } // NOLINT(concurrency-mt-unsafe)

// the file that a name leads to, also where that is not there yet; empty where links lead in a circle
std::string resolved(std::string name)
{
    for (int links = 0; links < MOST_LINKS; ++links) {
        char          path[PATH_MAX];
        const ssize_t length = readlink(name.c_str(), path, sizeof path);
        if (length < 0)
            return name;
        const std::string target{path, static_cast<std::size_t>(length)};
        name.resize(target.starts_with('/') ? 0 : name.rfind('/') + 1); // to the folder, which may be none
        name += target;
    }
    errno = ELOOP;
    return "";
}

std::string open_in_place(WholeFile &file, const std::string &name)
{
    file.stream = std::fopen(name.c_str(), "w");
    return file.stream != nullptr ? "" : last_error();
}

// the new file as a stream
std::string open_beside(WholeFile &file)
{
    const std::string pattern = file.name + ".XXXXXX";
    if (pattern.size() >= sizeof unfinished)
        return std::strerror(ENAMETOOLONG); // NOLINT(concurrency-mt-unsafe)
    std::memcpy(unfinished, pattern.c_str(), pattern.size() + 1);
    const int number = make_new_file(unfinished);
    if (number < 0)
        return last_error();
    file.temporary = unfinished;
    file_exists    = 1;
    on_ending_signal(remove_unfinished);
    share_as(number, file.name);
    file.stream = fdopen(number, "w");
    return file.stream != nullptr ? "" : last_error();
}

void forget()
{
    file_exists = 0;
    let_signals_end();
}

} // namespace

// called by a signal as well, which may come at any time
void remove_unfinished()
{
    if (file_exists != 0)
        static_cast<void>(unlink(unfinished));
}

bool is_special(const std::string &name)
{
    struct stat about {};
    return stat(name.c_str(), &about) == 0 && !S_ISREG(about.st_mode);
}

std::string open_whole(WholeFile &file, const std::string &name)
{
    file.temporary.clear();
    file.name = name;
    if (name == "-") {
        file.stream = stdout;
        return "";
    }
    if (is_special(name))
        return open_in_place(file, name);
    file.name = resolved(name);
    if (file.name.empty() || is_protected(file.name)) // which rename would replace all the same
        return last_error();
    hold_ending_signals();
    std::string fault = open_beside(file);
    release_ending_signals();
    return fault;
}

std::string close_whole(WholeFile &file, bool complete)
{
    std::string fault;
    if (file.stream != nullptr && (std::fflush(file.stream) != 0 || std::ferror(file.stream) != 0))
        fault = last_error();
    if (file.stream != nullptr && file.stream != stdout && std::fclose(file.stream) != 0 && fault.empty())
        fault = last_error();
    file.stream = nullptr;
    if (file.temporary.empty())
        return fault;
    hold_ending_signals();
    if (complete && fault.empty() && std::rename(file.temporary.c_str(), file.name.c_str()) != 0)
        fault = last_error();
    if (!complete || !fault.empty())
        static_cast<void>(unlink(file.temporary.c_str()));
    file.temporary.clear();
    forget();
    release_ending_signals();
    return fault;
}

} // namespace orlo

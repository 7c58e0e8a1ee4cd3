// The name for the time being is one in the folder of the file, so that the file is replaced within its file system, which can be
// done at once. A link is followed first: what it leads to is replaced, not the link.

#include "platform/whole_file.h"

#include "platform/ending_signals.h"
#include "platform/file_names.h"
#include "platform/new_file.h"

#include <cerrno>
#include <csignal>
#include <cstring>

namespace orlo {
namespace {

char                       unfinished[LONGEST_NAME]; // settled before file_exists is set
volatile std::sig_atomic_t file_exists = 0;

std::string last_error() { return std::strerror(errno); } // NOLINT(concurrency-mt-unsafe)

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
    file.stream = make_new_file(unfinished);
    if (file.stream == nullptr)
        return last_error();
    file.temporary = unfinished;
    file_exists    = 1;
    on_ending_signal(remove_unfinished);
    share_as(file.stream, file.name);
    return "";
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
        remove_file(unfinished);
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
    file.name = led_to(name);
    if (file.name.empty() || is_protected(file.name)) // which would be replaced all the same
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
    if (complete && fault.empty() && !replace_file(file.name, file.temporary))
        fault = last_error();
    if (!complete || !fault.empty())
        remove_file(file.temporary.c_str());
    file.temporary.clear();
    forget();
    release_ending_signals();
    return fault;
}

} // namespace orlo

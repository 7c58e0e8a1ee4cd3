// A name from tmpnam may be taken by somebody else before it is used. Opening with "x" fails on any file that exists, a link
// included, so that nothing foreign is ever followed or truncated; then another name is tried.
// A signal handler may call little: unlink, signal and raise are allowed (POSIX.1-2017, 2.4.3).

#include "platform/temporary_file.h"

#include <csignal>
#include <unistd.h>

namespace orlo {
namespace {

constexpr int ATTEMPTS         = 100; // names tried before giving up
constexpr int ending_signals[] = {SIGINT, SIGTERM, SIGHUP};

char                       tmp_fname[L_tmpnam]; // settled before file_exists is set
volatile std::sig_atomic_t file_exists = 0;     // 1 from the file's creation to its removal

extern "C" void remove_and_end(int signal_number)
{
    if (file_exists != 0)
        static_cast<void>(unlink(tmp_fname));
    std::signal(signal_number, SIG_DFL);
    std::raise(signal_number);
}

// a signal that the caller had switched off stays off
void watch_signals()
{
    for (const int number : ending_signals)
        if (std::signal(number, SIG_IGN) != SIG_IGN)
            std::signal(number, remove_and_end);
}

} // namespace

std::FILE *open_temporary_file()
{
    sigset_t ending;
    sigset_t before;
    sigemptyset(&ending);
    for (const int number : ending_signals)
        sigaddset(&ending, number);
    sigprocmask(SIG_BLOCK, &ending, &before);

    std::FILE *file = nullptr;
    for (int i = 0; i < ATTEMPTS && file == nullptr && std::tmpnam(tmp_fname) != nullptr; ++i)
        file = std::fopen(tmp_fname, "wx");
    if (file != nullptr) {
        file_exists = 1;
        watch_signals();
    }
    sigprocmask(SIG_SETMASK, &before, nullptr);
    return file;
}

std::FILE *reopen_temporary_file() { return std::fopen(tmp_fname, "r"); }

void remove_temporary_file()
{
    if (file_exists == 0)
        return;
    std::remove(tmp_fname);
    file_exists = 0;
}

} // namespace orlo

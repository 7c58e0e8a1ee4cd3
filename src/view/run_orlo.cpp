// orlo writes to a file that was created for this run alone, by mkstemp, which takes no file that exists. Signals that end the
// program are held back while the file or the child comes into being, so that the handler always knows both. A signal handler may
// call little: kill, unlink, signal and raise are allowed (POSIX.1-2017, 2.4.3).

#include "view/run_orlo.h"

#include "view/files.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <sys/wait.h>
#include <unistd.h>

namespace orlo::view {
namespace {

constexpr int ending_signals[] = {SIGINT, SIGTERM, SIGHUP};
constexpr int CANT_RUN         = 127; // status of a child that has not become orlo, as the shell has it

char                       temporary_name[PATH_MAX]; // settled before file_exists is set
volatile std::sig_atomic_t file_exists = 0;
volatile std::sig_atomic_t child       = 0; // process that runs orlo; 0: there is none

extern "C" void clear_and_end(int signal_number)
{
    if (child != 0)
        static_cast<void>(kill(child, SIGTERM));
    if (file_exists != 0)
        static_cast<void>(unlink(temporary_name));
    std::signal(signal_number, SIG_DFL);
    std::raise(signal_number);
}

// a signal that the caller had switched off stays off
void watch_signals()
{
    for (const int number : ending_signals)
        if (std::signal(number, SIG_IGN) != SIG_IGN)
            std::signal(number, clear_and_end);
}

void unwatch_signals()
{
    for (const int number : ending_signals)
        if (std::signal(number, SIG_IGN) != SIG_IGN)
            std::signal(number, SIG_DFL);
}

// holds the ending signals back; returns what was held back before
sigset_t hold_signals()
{
    sigset_t ending;
    sigset_t before;
    sigemptyset(&ending);
    for (const int number : ending_signals)
        sigaddset(&ending, number);
    sigprocmask(SIG_BLOCK, &ending, &before);
    return before;
}

std::string last_error() { return std::strerror(errno); } // NOLINT(concurrency-mt-unsafe)

// TMPDIR/orlo-view-XXXXXX, or in /tmp
std::string create_temporary_file()
{
    const char       *folder = std::getenv("TMPDIR");
    const std::string name   = std::string{folder != nullptr && *folder != '\0' ? folder : "/tmp"} + "/orlo-view-XXXXXX";
    if (name.size() >= sizeof temporary_name)
        return "the name of TMPDIR is too long";
    std::copy_n(name.c_str(), name.size() + 1, temporary_name);
    const sigset_t before = hold_signals();
    const int      file   = mkstemp(temporary_name);
    std::string    fault  = file < 0 ? "can't create a temporary file " + name + ": " + last_error() : "";
    if (file >= 0) {
        close(file);
        file_exists = 1;
        watch_signals();
    }
    sigprocmask(SIG_SETMASK, &before, nullptr);
    return fault;
}

void remove_temporary_file()
{
    static_cast<void>(unlink(temporary_name));
    file_exists = 0;
    unwatch_signals();
}

// the orlo beside this program; empty when there is none
std::string neighbour()
{
    char          own[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", own, sizeof own);
    if (length <= 0)
        return "";
    const std::string path{own, static_cast<std::size_t>(length)};
    const std::string beside = path.substr(0, path.find_last_of('/') + 1) + "orlo";
    return access(beside.c_str(), X_OK) == 0 ? beside : "";
}

// the child: never returns
[[noreturn]] void become_orlo(const std::string &program, const std::string &in, int screen, const sigset_t &before)
{
    unwatch_signals();
    std::signal(SIGPIPE, SIG_DFL);
    std::signal(SIGXFSZ, SIG_DFL);
    sigprocmask(SIG_SETMASK, &before, nullptr);
    dup2(screen, STDOUT_FILENO);
    dup2(screen, STDERR_FILENO);
    if (program.empty())
        execlp("orlo", "orlo", "-s", in.c_str(), temporary_name, static_cast<char *>(nullptr));
    else
        execl(program.c_str(), "orlo", "-s", in.c_str(), temporary_name, static_cast<char *>(nullptr));
    _exit(CANT_RUN);
}

// what comes through a pipe to its end; what is too much is lost
void drain(int pipe_end, std::string &messages)
{
    char buffer[4096];
    for (ssize_t got = 1; got > 0 || (got < 0 && errno == EINTR);) {
        got = read(pipe_end, buffer, sizeof buffer);
        if (got > 0)
            messages.append(buffer, std::min(static_cast<std::size_t>(got), MOST_MESSAGES - messages.size()));
    }
}

int wait_for(pid_t process)
{
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

std::string fault_of(int status)
{
    if (WIFSIGNALED(status))
        return "orlo was ended by signal " + std::to_string(WTERMSIG(status));
    if (WEXITSTATUS(status) == CANT_RUN)
        return "can't run orlo: it is neither beside orlo-view nor on PATH";
    return WEXITSTATUS(status) == 0 ? "" : "orlo has made no score of it";
}

std::string run_child(const std::string &in, std::string &messages)
{
    const std::string program = neighbour();
    int               ends[2];
    if (pipe(ends) != 0)
        return "can't run orlo: " + last_error();
    const sigset_t before  = hold_signals();
    const pid_t    process = fork();
    if (process == 0)
        become_orlo(program, in, ends[1], before);
    child = process > 0 ? process : 0;
    sigprocmask(SIG_SETMASK, &before, nullptr);
    close(ends[1]);
    std::string fault = process < 0 ? "can't run orlo: " + last_error() : "";
    if (process > 0) {
        drain(ends[0], messages);
        fault = fault_of(wait_for(process));
        child = 0;
    }
    close(ends[0]);
    return fault;
}

// a name that orlo takes for no option
std::string name_for_orlo(const std::string &name)
{
    if (name == "-")
        return "/dev/stdin";
    return name.starts_with('-') ? "./" + name : name;
}

} // namespace

std::string make_score(const std::string &name, std::size_t most, std::string &score, std::string &messages)
{
    std::string fault = create_temporary_file();
    if (!fault.empty())
        return fault;
    fault = run_child(name_for_orlo(name), messages);
    if (fault.empty())
        fault = read_file(temporary_name, most, score);
    remove_temporary_file();
    return fault;
}

} // namespace orlo::view

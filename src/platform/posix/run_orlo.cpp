// orlo writes to a file that was created for this run alone. Signals that end the
// program are held back while the file or the child comes into being or goes, so that what clears them away always knows both.

#include "platform/run_orlo.h"

#include "platform/ending_signals.h"
#include "platform/folder.h"
#include "platform/new_file.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orlo {
namespace {

constexpr int CANT_RUN = 127;  // status of a child that has not become orlo, as the shell has it
constexpr int GRACE    = 2000; // milliseconds that orlo has to end, and to remove its own files
constexpr int PAUSE    = 5;    // between two looks at it

char                       temporary_name[PATH_MAX]; // settled before file_exists is set
volatile std::sig_atomic_t file_exists = 0;
volatile std::sig_atomic_t child       = 0; // process that runs orlo; 0: there is none

std::int64_t milliseconds()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1'000'000;
}

// asks the child to end, and makes it end when it does not
void end_child(pid_t process)
{
    static_cast<void>(kill(process, SIGTERM));
    for (const std::int64_t end = milliseconds() + GRACE; milliseconds() < end;) {
        if (waitpid(process, nullptr, WNOHANG) != 0)
            return;
        static_cast<void>(poll(nullptr, 0, PAUSE));
    }
    static_cast<void>(kill(process, SIGKILL));
    static_cast<void>(waitpid(process, nullptr, 0));
}

// clock_gettime, kill, poll, unlink and waitpid may be called when a signal has come (POSIX.1-2017, 2.4.3)
void clear_away()
{
    if (child != 0)
        end_child(child);
    child = 0;
    if (file_exists != 0)
        static_cast<void>(unlink(temporary_name));
    file_exists = 0;
}

// whatever way a run takes, nothing of it stays
struct Clearing {
    Clearing()                            = default;
    Clearing(const Clearing &)            = delete;
    Clearing &operator=(const Clearing &) = delete;
    ~Clearing()
    {
        hold_ending_signals();
        clear_away();
        let_signals_end();
        release_ending_signals();
    }
};

std::string last_error() { return std::strerror(errno); } // NOLINT(concurrency-mt-unsafe)

// TMPDIR/orlo-view-XXXXXX, or in the usual folder
std::string create_temporary_file()
{
    const char       *folder = std::getenv("TMPDIR");
    const std::string name   = (folder != nullptr && *folder != '\0' ? folder : temporary_folder()) + "/orlo-view-XXXXXX";
    if (name.size() >= sizeof temporary_name)
        return "the name of TMPDIR is too long";
    std::copy_n(name.c_str(), name.size() + 1, temporary_name);
    hold_ending_signals();
    std::FILE *file = make_new_file(temporary_name);
    if (file != nullptr) {
        std::fclose(file);
        file_exists = 1;
        on_ending_signal(clear_away);
    }
    release_ending_signals();
    return file == nullptr ? "can't create a temporary file " + name + ": " + last_error() : "";
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
[[noreturn]] void become_orlo(const std::string &program, const std::string &in, int screen, int parent)
{
    let_signals_end();
    end_with_parent(parent);
    release_ending_signals();
    std::signal(SIGPIPE, SIG_DFL);
    std::signal(SIGXFSZ, SIG_DFL);
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

// when the child's status is taken its number may become another's, which no signal must end
int wait_for(pid_t process)
{
    siginfo_t about{};
    int       status = 0;
    while (waitid(P_PID, static_cast<id_t>(process), &about, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
    }
    hold_ending_signals();
    waitpid(process, &status, 0);
    child = 0;
    release_ending_signals();
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
    const pid_t own = getpid();
    std::signal(SIGCHLD, SIG_DFL); // where it is ignored nobody gets the child's status
    hold_ending_signals();
    const pid_t process = fork();
    if (process == 0)
        become_orlo(program, in, ends[1], own);
    child = process > 0 ? process : 0;
    release_ending_signals();
    close(ends[1]);
    std::string fault = process < 0 ? "can't run orlo: " + last_error() : "";
    if (process > 0) {
        drain(ends[0], messages);
        fault = fault_of(wait_for(process));
    }
    close(ends[0]);
    return fault;
}

} // namespace

std::string make_score(const std::string &name, const TakeScore &take_score, std::string &messages)
{
    const Clearing clearing;
    std::string    fault = create_temporary_file();
    if (fault.empty())
        fault = run_child(name, messages);
    if (fault.empty())
        fault = take_score(temporary_name);
    return fault;
}

} // namespace orlo

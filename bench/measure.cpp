// Runs a command and tells what it took: measure SCREEN COMMAND...
//
// The command's standard error goes into the file SCREEN, its standard output nowhere. Prints its CPU time in seconds, its own and the
// system's for it, and its peak memory in bytes, and ends as the command ended. The memory that counts is the command's own: a child begins with the peak of
// the process that makes it, which here is small.

#include <cstdio>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int CANNOT_RUN = 127;

double seconds(const timeval &time) { return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6; }

// what the child does; it does not come back
void become(const char *screen_name, char **command)
{
    const int screen  = open(screen_name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (screen >= 0 && nowhere >= 0 && dup2(nowhere, STDOUT_FILENO) >= 0 && dup2(screen, STDERR_FILENO) >= 0)
        execv(command[0], command);
    _exit(CANNOT_RUN);
}

} // namespace

int main(int argc, char **argv)
{
    if (argc < 3)
        return 2;
    const pid_t child = fork();
    if (child == 0)
        become(argv[1], argv + 2);
    int    status = 0;
    rusage usage{};
    if (child < 0 || wait4(child, &status, 0, &usage) != child)
        return CANNOT_RUN;
    std::printf("%.6f %.6f %ld\n", seconds(usage.ru_utime), seconds(usage.ru_stime), usage.ru_maxrss * 1024);
    return WIFEXITED(status) ? WEXITSTATUS(status) : CANNOT_RUN;
}

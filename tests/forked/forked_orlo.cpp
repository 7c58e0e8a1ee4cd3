// Runs orlo many times without starting a program each time: forked_orlo SECONDS SCREEN ARGUMENT...
//
// For each line of its input it runs orlo with the arguments, and answers with a line: the exit status, or minus the number of
// the signal that ended the run, which is SIGALRM when it takes more than some seconds. The run's standard error goes to the file
// SCREEN, its standard output is lost.
// A program's start takes several times as long as a small piece, and with sanitizers much more. Every run is a process of its
// own, forked from one that has run nothing yet: it begins as if it had been started.

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

int orlo_main(int argc, char **argv); // of src/driver/main.cpp

namespace {

constexpr int BAD_USE = 2;

void redirect(int stream, const char *path, int flags)
{
    const int file = open(path, flags, 0666);
    if (file < 0 || dup2(file, stream) < 0)
        _exit(BAD_USE);
    close(file);
}

[[noreturn]] void run_and_exit(unsigned seconds, const char *screen, int argc, char **argv)
{
    redirect(STDIN_FILENO, "/dev/null", O_RDONLY);
    redirect(STDOUT_FILENO, "/dev/null", O_WRONLY);
    redirect(STDERR_FILENO, screen, O_WRONLY | O_CREAT | O_TRUNC);
    alarm(seconds);
    std::exit(orlo_main(argc, argv)); // looks for leaks
}

bool read_line()
{
    char byte = '\0';
    while (byte != '\n')
        if (read(STDIN_FILENO, &byte, 1) != 1)
            return false;
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc < 3 || std::atoi(argv[1]) <= 0) {
        std::fputs("usage: forked_orlo SECONDS SCREEN ARGUMENT...\n", stderr);
        return BAD_USE;
    }
    const auto  seconds = static_cast<unsigned>(std::atoi(argv[1]));
    const char *screen  = argv[2];
    argv[2]             = argv[0];
    while (read_line()) {
        const pid_t child = fork();
        if (child == 0)
            run_and_exit(seconds, screen, argc - 2, argv + 2);
        int ended = 0;
        if (child < 0 || waitpid(child, &ended, 0) != child) {
            std::perror("a process for a run");
            return BAD_USE;
        }
        dprintf(STDOUT_FILENO, "%d\n", WIFEXITED(ended) ? WEXITSTATUS(ended) : -WTERMSIG(ended));
    }
    return 0;
}

// Runs orlo many times without starting a program each time: forked_orlo SECONDS SCREEN ARGUMENT...
//
// For each line of its input it runs orlo with the arguments, and answers with a line: the exit status, or minus the number of
// the signal that ended the run, which is SIGALRM when it takes more than some seconds. The run's standard error goes to the file
// SCREEN, its standard output is lost.
// A program's start takes several times as long as a small piece, and with sanitizers much more. So runs share a process,
// RUNS_OF_A_PROCESS of them one after the other, which is forked from one that has run nothing; one that ends by a signal takes its
// process along, and the next run begins in a new one.

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

int orlo_main(int argc, char **argv); // of src/driver/main.cpp

namespace {

constexpr int BAD_USE           = 2;
constexpr int RUNS_OF_A_PROCESS = 25;

void redirect(int stream, const char *path, int flags)
{
    const int file = open(path, flags, 0666);
    if (file < 0 || dup2(file, stream) < 0)
        _exit(BAD_USE);
    close(file);
}

int run_once(unsigned seconds, const char *screen, int argc, char **argv)
{
    redirect(STDERR_FILENO, screen, O_WRONLY | O_CREAT | O_TRUNC);
    alarm(seconds);
    return orlo_main(argc, argv);
}

bool read_line()
{
    char byte = '\0';
    while (byte != '\n')
        if (read(STDIN_FILENO, &byte, 1) != 1)
            return false;
    return true;
}

void answer(int stream, int status) { dprintf(stream, "%d\n", status); }

// Runs for one line after the other, the first of which has been read. What the last one ends with is left to the parent, as
// the process ends with it, and leaks are looked for.
[[noreturn]] void run_many(unsigned seconds, const char *screen, int argc, char **argv)
{
    const int answers = dup(STDOUT_FILENO);
    redirect(STDOUT_FILENO, "/dev/null", O_WRONLY);
    for (int left = RUNS_OF_A_PROCESS;; --left) { // ends with the runs of a process, or with the lines
        const int status = run_once(seconds, screen, argc, argv);
        alarm(0);
        if (left == 1)
            std::exit(status);
        answer(answers, status);
        if (!read_line())
            std::exit(EXIT_SUCCESS);
    }
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
            run_many(seconds, screen, argc - 2, argv + 2);
        int ended = 0;
        if (child < 0 || waitpid(child, &ended, 0) != child) {
            std::perror("processes for runs");
            return BAD_USE;
        }
        answer(STDOUT_FILENO, WIFEXITED(ended) ? WEXITSTATUS(ended) : -WTERMSIG(ended));
    }
    return 0;
}

#include "platform/ending_signals.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int ending[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGUSR1, SIGXCPU, SIGALRM};

int told[2]; // a pipe; what is cleared away writes a byte into it

void tell() { static_cast<void>(write(told[1], "x", 1)); }

// runs something in a child that clears away by telling; returns the child's status and how often it told
template <class Work> int status_of(Work work, int &times)
{
    EXPECT_EQ(pipe(told), 0);
    const pid_t child = fork();
    if (child == 0) {
        for (const int number : ending)
            std::signal(number, SIG_DFL); // whatever these tests were started with
        work();
        _exit(7);
    }
    close(told[1]);
    char byte{};
    for (times = 0; read(told[0], &byte, 1) == 1;)
        ++times;
    close(told[0]);
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

TEST(EndingSignals, ClearAwayAndEndByTheSignal)
{
    for (const int number : ending) {
        int       times  = 0;
        const int status = status_of(
            [number] {
                orlo::on_ending_signal(tell);
                raise(number);
            },
            times);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == number) << number;
        EXPECT_EQ(times, 1) << number;
    }
}

TEST(EndingSignals, OneThatComesWhileHeldIsNotLost)
{
    int       times  = 0;
    const int status = status_of(
        [] {
            orlo::hold_ending_signals();
            orlo::hold_ending_signals();
            raise(SIGTERM);
            orlo::on_ending_signal(tell);
            orlo::release_ending_signals();
            tell(); // still held
            orlo::release_ending_signals();
        },
        times);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
    EXPECT_EQ(times, 2);
}

TEST(EndingSignals, OneThatComesWhileHeldEndsAtOnceWhenNothingIsClearedAwayAnyMore)
{
    int       times  = 0;
    const int status = status_of(
        [] {
            orlo::on_ending_signal(tell);
            orlo::hold_ending_signals();
            raise(SIGHUP);
            orlo::let_signals_end();
            orlo::release_ending_signals();
        },
        times);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGHUP);
    EXPECT_EQ(times, 0);
}

TEST(EndingSignals, SeveralClearAwayOnce)
{
    int       times  = 0;
    const int status = status_of(
        [] {
            orlo::on_ending_signal(tell);
            orlo::hold_ending_signals();
            for (const int number : {SIGTERM, SIGINT, SIGHUP})
                raise(number);
            orlo::release_ending_signals();
        },
        times);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(times, 1);
}

TEST(EndingSignals, OneThatIsSwitchedOffStaysOff)
{
    int       times  = 0;
    const int status = status_of(
        [] {
            std::signal(SIGHUP, SIG_IGN);
            orlo::on_ending_signal(tell);
            raise(SIGHUP);
            orlo::let_signals_end();
            raise(SIGHUP);
        },
        times);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 7);
    EXPECT_EQ(times, 0);
}

TEST(EndingSignals, AForkedChildGetsTheMaskOfBefore)
{
    int       times  = 0;
    const int status = status_of(
        [] {
            sigset_t before;
            sigset_t after;
            sigprocmask(SIG_BLOCK, nullptr, &before);
            orlo::hold_ending_signals();
            if (fork() != 0)
                return;
            orlo::release_ending_signals();
            sigprocmask(SIG_BLOCK, nullptr, &after);
            for (int number = 1; number < 32; ++number)
                if (sigismember(&before, number) != sigismember(&after, number))
                    tell();
        },
        times);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(times, 0);
}

} // namespace

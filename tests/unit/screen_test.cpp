#include "platform/screen.h"

#include "platform/output_files.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

namespace orlo {
namespace {

void show(std::string_view text) { put_on_screen(text.data(), text.size()); }

// what is in a pipe now
std::string taken(int pipe)
{
    std::string   text(1 << 20, '\0');
    const ssize_t length = read(pipe, text.data(), text.size());
    text.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    return text;
}

// What a child shows on a screen that is a pipe, and its status. The child itself sees the pipe's other end.
struct Shown {
    std::string text;
    int         status;
};

template <class Work> Shown shown_by(Work work)
{
    int ends[2];
    EXPECT_EQ(0, pipe(ends));
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], STDERR_FILENO);
        close(ends[1]);
        fcntl(ends[0], F_SETFL, O_NONBLOCK);
        work(ends[0]);
        _exit(0);
    }
    close(ends[1]);
    Shown shown{};
    for (std::string piece = taken(ends[0]); !piece.empty(); piece = taken(ends[0]))
        shown.text += piece;
    close(ends[0]);
    waitpid(child, &shown.status, 0);
    return shown;
}

TEST(Screen, ShowsAtOnceWhatIsNotGathered)
{
    const Shown shown = shown_by([](int screen) {
        show("abc");
        _exit(taken(screen) == "abc" ? 0 : 1);
    });
    EXPECT_EQ(0, shown.status);
}

TEST(Screen, ShowsNothingOfWhatIsGatheredBeforeItIsFlushed)
{
    const Shown shown = shown_by([](int screen) {
        gather_screen();
        show("abc");
        show("def");
        const bool gathered = taken(screen).empty();
        flush_screen();
        const bool flushed = taken(screen) == "abcdef";
        show("ghi");
        end_gathering();
        const bool ended = taken(screen) == "ghi";
        show("jkl");
        _exit(gathered && flushed && ended && taken(screen) == "jkl" ? 0 : 1);
    });
    EXPECT_EQ(0, shown.status);
}

TEST(Screen, ShowsAllTextInOrderHoweverLongItIs)
{
    std::string expected;
    for (int i = 0; i < 50000; ++i)
        expected += std::to_string(i) + "\n";
    const Shown shown = shown_by([](int screen) {
        close(screen);
        gather_screen();
        for (int i = 0; i < 50000; ++i)
            show(std::to_string(i) + "\n");
        end_gathering();
    });
    EXPECT_EQ(expected, shown.text);
}

TEST(Screen, ShowsAtOnceOnATerminal)
{
    const int         master = posix_openpt(O_RDWR | O_NOCTTY);
    const char *const name   = master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0 ? ptsname(master) : nullptr;
    if (name == nullptr)
        GTEST_SKIP() << "no terminal can be made";
    const int   terminal = open(name, O_RDWR | O_NOCTTY);
    const Shown shown    = shown_by([=](int) {
        dup2(terminal, STDERR_FILENO);
        gather_screen();
        show("abc");
        _exit(taken(master) == "abc" ? 0 : 1);
    });
    close(terminal);
    close(master);
    EXPECT_EQ(0, shown.status);
}

TEST(Screen, ShowsAtOnceWhereAnOutputGoesToo)
{
    const Shown shown = shown_by([](int screen) {
        std::FILE *output = open_output("/dev/stderr");
        gather_screen();
        show("abc");
        _exit(output != nullptr && taken(screen) == "abc" ? 0 : 1);
    });
    EXPECT_EQ(0, shown.status);
}

TEST(Screen, ShowsWhatIsGatheredWhenAFaultEndsTheProcess)
{
    for (const int number : {SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL}) {
        const Shown shown = shown_by([number](int screen) {
            close(screen);
            std::signal(number, SIG_DFL); // a sanitizer's own may be there
            gather_screen();
            show("abc");
            static_cast<void>(std::raise(number));
        });
        EXPECT_EQ("abc", shown.text) << number;
        EXPECT_TRUE(WIFSIGNALED(shown.status) && WTERMSIG(shown.status) == number) << number;
    }
}

TEST(Screen, WaitsForNobodyInASignal)
{
    const Shown shown = shown_by([](int screen) {
        const std::string text(30000, 'x');
        gather_screen();
        for (int i = 0; i < 2; ++i) // what the pipe has no room for
            show(text);
        fcntl(screen, F_SETPIPE_SZ, 4096);
        show(text);
        flush_screen_in_signal();
        _exit(taken(screen).empty() ? 1 : 0);
    });
    EXPECT_EQ(0, shown.status);
}

TEST(Screen, GivesUpWhenTheReaderIsGone)
{
    const Shown shown = shown_by([](int screen) {
        close(screen);
        std::signal(SIGPIPE, SIG_IGN);
        gather_screen();
        show("abc");
    });
    EXPECT_EQ(0, shown.status);
}

} // namespace
} // namespace orlo

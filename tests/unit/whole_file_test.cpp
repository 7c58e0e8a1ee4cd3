#include "platform/whole_file.h"

#include "support.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace orlo {
namespace {

namespace fs = std::filesystem;

constexpr uid_t NOBODY = 65534; // a user without rights

std::string text_of_error(int number) { return std::strerror(number); } // NOLINT(concurrency-mt-unsafe)

// in a folder of its own
class WholeFiles : public testing::Test {
  protected:
    void SetUp() override
    {
        std::string name = fs::temp_directory_path() / "orlo-unit-XXXXXX";
        ASSERT_NE(nullptr, mkdtemp(name.data()));
        folder = name;
    }
    void TearDown() override
    {
        chmod(folder.c_str(), 0700);
        fs::remove_all(folder);
    }

    std::string at(const std::string &name) const { return folder / name; }

    void make(const std::string &name, const char *text = "before") const { std::ofstream{at(name)} << text; }

    std::string text_of(const std::string &name) const
    {
        std::ifstream file{at(name)};
        return {std::istreambuf_iterator<char>{file}, {}};
    }

    std::set<std::string> names() const
    {
        std::set<std::string> found;
        for (const fs::directory_entry &entry : fs::directory_iterator{folder})
            found.insert(entry.path().filename());
        return found;
    }

    unsigned mode_of(const std::string &name) const
    {
        struct stat about {};
        EXPECT_EQ(0, stat(at(name).c_str(), &about));
        return about.st_mode & 07777U;
    }

    // writes a file from its opening to its end; returns what went wrong
    std::string write(const std::string &name, const char *text = "now") const
    {
        WholeFile         file;
        const std::string fault = open_whole(file, at(name));
        if (file.stream != nullptr)
            static_cast<void>(std::fputs(text, file.stream));
        const std::string lost = close_whole(file, fault.empty());
        return fault.empty() ? lost : fault;
    }

    // as a user whom the rights of files stop
    template <class Call> static void as_other(Call call)
    {
        const bool root = geteuid() == 0;
        ASSERT_TRUE(!root || seteuid(NOBODY) == 0);
        call();
        ASSERT_TRUE(!root || seteuid(0) == 0);
    }

    fs::path folder;
};

using Names = std::set<std::string>;

TEST_F(WholeFiles, AppearsWhenItIsComplete)
{
    WholeFile file;
    ASSERT_EQ("", open_whole(file, at("out")));
    static_cast<void>(std::fputs("now", file.stream));
    EXPECT_FALSE(fs::exists(folder / "out"));
    EXPECT_EQ(at("out."), file.temporary.substr(0, at("out.").size())); // beside it
    EXPECT_EQ("", close_whole(file, true));
    EXPECT_EQ(Names{"out"}, names());
    EXPECT_EQ("now", text_of("out"));
}

TEST_F(WholeFiles, AnEarlierOneStaysUntilThen)
{
    make("out");
    WholeFile file;
    ASSERT_EQ("", open_whole(file, at("out")));
    static_cast<void>(std::fputs("now", file.stream));
    static_cast<void>(std::fflush(file.stream));
    EXPECT_EQ("before", text_of("out"));
    EXPECT_EQ("", close_whole(file, true));
    EXPECT_EQ(Names{"out"}, names());
    EXPECT_EQ("now", text_of("out"));
}

TEST_F(WholeFiles, WhatIsNotCompleteGoes)
{
    make("out");
    for (const char *name : {"out", "new"}) {
        WholeFile file;
        ASSERT_EQ("", open_whole(file, at(name)));
        static_cast<void>(std::fputs("now", file.stream));
        EXPECT_EQ("", close_whole(file, false));
    }
    EXPECT_EQ(Names{"out"}, names());
    EXPECT_EQ("before", text_of("out"));
}

TEST_F(WholeFiles, ANewOneHasTheRightsThatTheUsersMaskLeaves)
{
    const mode_t mask = umask(027);
    EXPECT_EQ("", write("out"));
    EXPECT_EQ(0640U, mode_of("out"));
    EXPECT_EQ(027U, umask(mask));
}

TEST_F(WholeFiles, AnotherHasTheRightsOfTheEarlierOne)
{
    make("out");
    for (const mode_t mode : {0600U, 0664U, 0755U}) {
        ASSERT_EQ(0, chmod(at("out").c_str(), mode));
        EXPECT_EQ("", write("out"));
        EXPECT_EQ(mode, mode_of("out"));
    }
}

TEST_F(WholeFiles, ALinkIsFollowed)
{
    fs::create_directory(folder / "deep");
    make("deep/target");
    fs::create_symlink("deep/target", folder / "link");
    fs::create_symlink("link", folder / "chain");
    EXPECT_EQ("", write("chain"));
    EXPECT_TRUE(fs::is_symlink(folder / "chain") && fs::is_symlink(folder / "link"));
    EXPECT_EQ("now", text_of("deep/target"));
    EXPECT_EQ((Names{"deep", "link", "chain"}), names());
    EXPECT_EQ(1, std::distance(fs::directory_iterator{folder / "deep"}, {}));
}

TEST_F(WholeFiles, ALinkToAFileThatIsNotThereYetIsFollowed)
{
    fs::create_directory(folder / "deep");
    fs::create_symlink("deep/target", folder / "link");
    fs::create_symlink(folder / "link", folder / "chain"); // absolute
    EXPECT_EQ("", write("chain"));
    EXPECT_TRUE(fs::is_symlink(folder / "chain") && fs::is_symlink(folder / "link"));
    EXPECT_EQ("now", text_of("deep/target"));
}

TEST_F(WholeFiles, ALinkThatLeadsNowhereIsAFault)
{
    fs::create_symlink("circle", folder / "circle");
    EXPECT_EQ(text_of_error(ELOOP), write("circle"));
    fs::create_symlink("none/target", folder / "link");
    EXPECT_EQ(text_of_error(ENOENT), write("link"));
    EXPECT_EQ((Names{"circle", "link"}), names());
}

TEST_F(WholeFiles, DevicesAreWrittenInPlace)
{
    WholeFile file;
    ASSERT_EQ("", open_whole(file, "/dev/null"));
    EXPECT_EQ("", file.temporary);
    EXPECT_EQ("", close_whole(file, true));
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(WholeFiles, PipesAreWrittenInPlace)
{
    ASSERT_EQ(0, mkfifo(at("pipe").c_str(), 0600));
    std::string got;
    std::thread reader{[&] { got = text_of("pipe"); }};
    EXPECT_EQ("", write("pipe"));
    reader.join();
    EXPECT_EQ("now", got);
    EXPECT_EQ(Names{"pipe"}, names());
    EXPECT_TRUE(fs::is_fifo(folder / "pipe"));
}

TEST_F(WholeFiles, ADashIsTheStandardOutput)
{
    WholeFile file;
    ASSERT_EQ("", open_whole(file, "-"));
    EXPECT_EQ(stdout, file.stream);
    EXPECT_EQ("", close_whole(file, true));
    EXPECT_GE(fileno(stdout), 0); // still open
}

TEST_F(WholeFiles, WhatIsLostIsTold)
{
    for (const bool early : {false, true}) { // lost when the file is closed, or before
        WholeFile file;
        ASSERT_EQ("", open_whole(file, "/dev/full"));
        static_cast<void>(std::fputs("text", file.stream));
        if (early)
            static_cast<void>(std::fflush(file.stream));
        EXPECT_EQ(text_of_error(ENOSPC), close_whole(file, true));
    }
}

TEST_F(WholeFiles, AFolderIsNoFile)
{
    fs::create_directory(folder / "deep");
    EXPECT_EQ(text_of_error(EISDIR), write("deep"));
    EXPECT_EQ(text_of_error(ENOENT), write("none/out"));
    make("file");
    EXPECT_EQ(text_of_error(ENOTDIR), write("file/out"));
    EXPECT_EQ((Names{"deep", "file"}), names());
}

TEST_F(WholeFiles, AFolderThatIsNotTheUsersIsLeftAlone)
{
    make("out");
    ASSERT_EQ(0, chmod(folder.c_str(), 0555));
    as_other([&] {
        EXPECT_EQ(text_of_error(EACCES), write("out"));
        EXPECT_EQ(text_of_error(EACCES), write("new"));
    });
    EXPECT_EQ(Names{"out"}, names());
    EXPECT_EQ("before", text_of("out"));
}

TEST_F(WholeFiles, AFileThatMayNotBeWrittenStays)
{
    make("out");
    ASSERT_EQ(0, chmod(at("out").c_str(), 0444));
    ASSERT_EQ(0, chmod(folder.c_str(), 0777));
    as_other([&] { EXPECT_EQ(text_of_error(EACCES), write("out")); });
    EXPECT_EQ(Names{"out"}, names());
    EXPECT_EQ("before", text_of("out"));
}

TEST_F(WholeFiles, ANameThatIsTooLongMakesNoFile)
{
    EXPECT_EQ(text_of_error(ENAMETOOLONG), write(std::string(300, 'x')));
    EXPECT_EQ(text_of_error(ENAMETOOLONG), write(std::string(10000, 'x')));
    EXPECT_EQ(Names{}, names());
}

TEST_F(WholeFiles, OfOneThatCouldNotBeMadeNothingIsTakenAway)
{
    make("out.XXXXXX"); // as the temporary one is called before it has a name
    rlimit before{};
    ASSERT_EQ(0, getrlimit(RLIMIT_NOFILE, &before));
    const rlimit none{3, before.rlim_max}; // the standard streams alone
    ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &none));
    const std::string fault = write("out");
    ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &before));
    EXPECT_EQ(text_of_error(EMFILE), fault);
    EXPECT_EQ(Names{"out.XXXXXX"}, names());
}

TEST_F(WholeFiles, WhatCantGetItsNameGoes)
{
    WholeFile file;
    ASSERT_EQ("", open_whole(file, at("out")));
    fs::create_directories(folder / "out" / "deep"); // meanwhile
    EXPECT_EQ(text_of_error(EISDIR), close_whole(file, true));
    EXPECT_EQ(Names{"out"}, names());
}

// how a child that writes a file ends
template <class Work> int status_of(Work work)
{
    const pid_t child = fork();
    if (child == 0) {
        std::signal(SIGTERM, SIG_DFL); // whatever these tests were started with
        work();
        _exit(7);
    }
    int status = 0;
    EXPECT_EQ(child, waitpid(child, &status, 0));
    return status;
}

TEST_F(WholeFiles, ASignalLeavesTheEarlierOneAlone)
{
    make("out");
    const int status = status_of([this] {
        WholeFile file;
        static_cast<void>(open_whole(file, at("out")));
        raise(SIGTERM);
    });
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
    EXPECT_EQ(Names{"out"}, names());
    EXPECT_EQ("before", text_of("out"));
}

TEST_F(WholeFiles, ASignalAfterwardsTakesNothingAway)
{
    const int status = status_of([this] {
        static_cast<void>(write("out"));
        raise(SIGTERM);
    });
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
    EXPECT_EQ(Names{"out"}, names());
    EXPECT_EQ("now", text_of("out"));
}

} // namespace
} // namespace orlo

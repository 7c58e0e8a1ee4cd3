#include "platform/output_files.h"

#include "platform/file_identity.h"
#include "support.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace orlo {
namespace {

namespace fs = std::filesystem;

// in a folder of its own
class OutputFiles : public testing::Test {
  protected:
    void SetUp() override
    {
        std::string name = fs::temp_directory_path() / "orlo-unit-XXXXXX";
        ASSERT_NE(nullptr, mkdtemp(name.data()));
        folder = name;
    }
    void TearDown() override { fs::remove_all(folder); }

    std::string at(const char *name) const { return folder / name; }

    void make(const char *name) const { std::ofstream{at(name)} << "before"; }

    std::string text_of(const char *name) const
    {
        std::ifstream file{at(name)};
        return {std::istreambuf_iterator<char>{file}, {}};
    }

    fs::path folder;
};

TEST_F(OutputFiles, OneFileHasSeveralNames)
{
    make("a");
    make("b");
    fs::create_symlink("a", folder / "soft");
    fs::create_hard_link(folder / "a", folder / "hard");
    for (const char *name : {"a", "soft", "hard", "./a"})
        EXPECT_TRUE(same_file(at("a").c_str(), at(name).c_str())) << name;
    for (const char *name : {"b", "none", "."})
        EXPECT_FALSE(same_file(at("a").c_str(), at(name).c_str())) << name;
    EXPECT_FALSE(same_file("/dev/null", "/dev/null")); // nobody's file
}

TEST_F(OutputFiles, OneNewFileHasSeveralNames)
{
    make("there");
    fs::create_directory(folder / "deep");
    fs::create_symlink("new", folder / "soft");
    fs::create_symlink(folder / "new", folder / "absolute");
    fs::create_symlink("circle", folder / "circle");
    for (const char *name : {"new", "./new", "deep/../new", "soft", "absolute"})
        EXPECT_TRUE(same_new_file(at("new").c_str(), at(name).c_str())) << name;
    for (const char *name : {"other", "deep/new", "there", "none/new", "circle"})
        EXPECT_FALSE(same_new_file(at("new").c_str(), at(name).c_str())) << name;
    EXPECT_FALSE(same_new_file(at("there").c_str(), at("new").c_str()));
    EXPECT_FALSE(same_new_file(at("none/new").c_str(), at("new").c_str()));
}

TEST_F(OutputFiles, ANameThatIsTooLongMakesNoFile)
{
    const std::string name(10000, 'x');
    EXPECT_FALSE(same_new_file(name.c_str(), name.c_str()));
    EXPECT_FALSE(same_new_file(at("new").c_str(), name.c_str()));
    fs::create_symlink(std::string(4000, 'y'), folder / "long");
    EXPECT_FALSE(same_new_file(at("new").c_str(), at("long").c_str()));
    EXPECT_EQ(nullptr, open_output(name.c_str()));
}

TEST_F(OutputFiles, AnEarlierFileIsEmptiedWhenBytesAreOnTheirWay)
{
    make("out");
    std::FILE *output = open_output(at("out").c_str());
    ASSERT_NE(nullptr, output);
    EXPECT_EQ("before", text_of("out"));
    EXPECT_TRUE(begin_output(output));
    EXPECT_EQ("", text_of("out"));
    static_cast<void>(std::fputs("now", output));
    EXPECT_TRUE(begin_output(output)); // once
    EXPECT_TRUE(close_output(output));
    EXPECT_EQ(nullptr, output);
    EXPECT_EQ("now", text_of("out"));
    EXPECT_TRUE(close_output(output)); // does nothing more
}

TEST_F(OutputFiles, ASparedFileStaysAsItIs)
{
    make("out");
    std::FILE *output = open_output(at("out").c_str());
    std::FILE *input  = std::fopen(at("out").c_str(), "r");
    ASSERT_NE(nullptr, input);
    EXPECT_EQ(output, find_output(input));
    EXPECT_TRUE(is_output(input));
    std::FILE *device = open_output("/dev/null");
    EXPECT_EQ(output, find_output(input)); // a device is no file that is read
    EXPECT_TRUE(close_output(device));
    spare_output(output);
    spare_output(nullptr);
    EXPECT_FALSE(begin_output(output));
    EXPECT_FALSE(begin_output(nullptr));
    EXPECT_TRUE(close_output(output));
    EXPECT_EQ("before", text_of("out"));
    EXPECT_EQ(nullptr, find_output(input));
    EXPECT_FALSE(is_output(input));
    static_cast<void>(std::fclose(input));
}

TEST_F(OutputFiles, LargePiecesGoOutAsAWhole)
{
    std::FILE *output = open_output(at("out").c_str());
    ASSERT_NE(nullptr, output);
    write_in_large_pieces(output);
    for (std::size_t i = 0; i < LARGE_WRITE; ++i)
        std::fputc('x', output);
    EXPECT_EQ("", text_of("out"));
    std::fputc('y', output);
    EXPECT_EQ(std::string(LARGE_WRITE, 'x'), text_of("out"));
    EXPECT_TRUE(close_output(output));
    EXPECT_EQ(std::string(LARGE_WRITE, 'x') + "y", text_of("out"));
}

TEST_F(OutputFiles, WhatSharesItsFileWithTheScreenGoesOutAsBefore)
{
    std::FILE *output = open_output(at("out").c_str());
    ASSERT_NE(nullptr, output);
    const int screen = dup(STDERR_FILENO);
    ASSERT_GE(dup2(fileno(output), STDERR_FILENO), 0);
    write_in_large_pieces(output);
    ASSERT_GE(dup2(screen, STDERR_FILENO), 0);
    close(screen);
    for (std::size_t i = 0; i < LARGE_WRITE; ++i)
        std::fputc('x', output);
    EXPECT_NE("", text_of("out"));
    EXPECT_TRUE(close_output(output));
}

TEST_F(OutputFiles, ThereAreThreeAtMost)
{
    std::FILE *outputs[MOST_OUTPUTS] = {};
    for (int i = 0; i < MOST_OUTPUTS; ++i)
        EXPECT_NE(nullptr, outputs[i] = open_output(at(std::to_string(i).c_str()).c_str())) << i;
    EXPECT_EQ(nullptr, open_output(at("more").c_str()));
    EXPECT_FALSE(fs::exists(folder / "more"));
    for (std::FILE *&output : outputs)
        EXPECT_TRUE(close_output(output));
    std::FILE *again = open_output(at("more").c_str());
    EXPECT_NE(nullptr, again);
    EXPECT_TRUE(close_output(again));
}

TEST_F(OutputFiles, WhatIsLostIsTold)
{
    for (const bool early : {false, true}) { // lost when the file is closed, or before
        std::FILE *output = open_output("/dev/full");
        ASSERT_NE(nullptr, output);
        EXPECT_TRUE(begin_output(output));
        static_cast<void>(std::fputs("text", output));
        if (early)
            static_cast<void>(std::fflush(output));
        EXPECT_FALSE(close_output(output));
    }
}

} // namespace
} // namespace orlo

// Lines are read from blocks of the input: where a line lies between two of them makes no difference.

#include "input/line_reader.h"

#include "support.h"

#include <vector>

namespace orlo {
namespace {

// the lines of a text as get_buff gives them, and whether the input has ended behind each
struct Lines {
    std::vector<std::string> texts;
    std::vector<bool>        ended;
};

Lines lines_of(const std::string &text)
{
    Lines lines;
    static_cast<void>(test::file_of([&](std::FILE *file) {
        EXPECT_EQ(text.size(), std::fwrite(text.data(), 1, text.size(), file));
        std::rewind(file);
        Input in{};
        in.stream = file;
        while (get_buff(in) == OK) {
            lines.texts.emplace_back(in.line);
            lines.ended.push_back(in.ended);
        }
        EXPECT_TRUE(in.ended);
        EXPECT_EQ(lines.texts.size(), in.line_no);
    }));
    return lines;
}

TEST(LinesOfFile, EndWithABlank)
{
    const Lines lines = lines_of("a\r\n\nb\n");
    EXPECT_EQ((std::vector<std::string>{"a  ", " ", "b "}), lines.texts);
    EXPECT_EQ((std::vector<bool>{false, false, false}), lines.ended);
}

TEST(LinesOfFile, TheLastMayHaveNoEnd)
{
    const Lines lines = lines_of("a\nb");
    EXPECT_EQ((std::vector<std::string>{"a ", "b"}), lines.texts);
    EXPECT_EQ((std::vector<bool>{false, true}), lines.ended);
}

TEST(LinesOfFile, AnEmptyFileHasNone) { EXPECT_TRUE(lines_of("").texts.empty()); }

TEST(LinesOfFile, LieBetweenBlocks)
{
    for (std::size_t before = BLOCK_SIZE - 4; before <= BLOCK_SIZE + 1; ++before) {
        std::string text;
        while (text.size() + 100 < before)
            text += std::string(99, 'x') + "\n";
        text += std::string(before - text.size() - 1, 'y') + "\nlast\n";
        const Lines lines = lines_of(text);
        EXPECT_EQ("last ", lines.texts.back()) << before;
        EXPECT_EQ('y', lines.texts[lines.texts.size() - 2].front()) << before;
    }
}

TEST(LinesOfFile, LongOnesArriveInPieces)
{
    const Lines lines = lines_of(std::string(2 * LINE_SIZE - 2, 'x') + "\n" + std::string(LINE_SIZE - 1, 'y'));
    ASSERT_EQ(4U, lines.texts.size());
    EXPECT_EQ(std::string(LINE_SIZE - 1, 'x'), lines.texts[0]);
    EXPECT_EQ(lines.texts[0], lines.texts[1]);
    EXPECT_EQ(" ", lines.texts[2]);
    EXPECT_EQ(std::string(LINE_SIZE - 1, 'y'), lines.texts[3]);
    EXPECT_FALSE(lines.ended[3]); // nobody has looked behind it
}

TEST(LinesOfFile, WhatANulHidesStaysAsItIs)
{
    for (std::size_t before = BLOCK_SIZE - 6; before <= BLOCK_SIZE + 1; ++before) {
        static_cast<void>(test::file_of([&](std::FILE *file) {
            std::size_t lines = 1;
            for (std::size_t i = 1; i <= before; ++i) {
                const bool end = i % 100 == 0 || i == before;
                std::fputc(end ? '\n' : 'x', file);
                lines += end ? 1 : 0;
            }
            std::fwrite("\r\0~\r\n", 1, 5, file); // a "~" alone would be an error
            std::rewind(file);
            Input in{};
            in.stream = file;
            for (; lines > 0; --lines)
                EXPECT_EQ(OK, get_buff(in)) << before;
            EXPECT_EQ(std::string(" \0~\r\n\0", 6), std::string(in.line, 6)) << before;
        }));
    }
}

TEST(LinesOfFile, ANulEndsALineForItsReaders)
{
    EXPECT_EQ((std::vector<std::string>{"a", "b "}), lines_of(std::string("a\0c\nb\n", 6)).texts);
}

} // namespace
} // namespace orlo

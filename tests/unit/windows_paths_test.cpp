#include "platform/windows_paths.h"

#include <gtest/gtest.h>

namespace orlo::windows {
namespace {

TEST(WindowsPaths, TheFolderEndsWithTheLastSlashBackslashOrDrive)
{
    EXPECT_EQ("", folder_part("out.sco"));
    EXPECT_EQ("a/", folder_part("a/out.sco"));
    EXPECT_EQ("a\\b\\", folder_part("a\\b\\out.sco"));
    EXPECT_EQ("a\\b/", folder_part("a\\b/out.sco"));
    EXPECT_EQ("C:\\", folder_part("C:\\out.sco"));
    EXPECT_EQ("C:", folder_part("C:out.sco")); // the folder in which the drive is
    EXPECT_EQ("\\\\server\\share\\", folder_part("\\\\server\\share\\out.sco"));
    EXPECT_EQ("\\\\?\\C:\\", folder_part("\\\\?\\C:\\out.sco"));
    EXPECT_EQ("", folder_part("1:out.sco"));
    EXPECT_EQ("", folder_part(""));
}

TEST(WindowsPaths, TheNameHasNoBlanksAndDotsAtItsEnd)
{
    EXPECT_EQ("out.sco", name_part("out.sco"));
    EXPECT_EQ("out.sco", name_part("C:\\a\\out.sco"));
    EXPECT_EQ("out.sco", name_part("C:out.sco"));
    EXPECT_EQ("out.sco", name_part("a/out.sco. .."));
    EXPECT_EQ(" out. sco", name_part(" out. sco "));
    EXPECT_EQ("", name_part("a\\"));
    EXPECT_EQ("", name_part(".."));
}

TEST(WindowsPaths, DevicesAreNoFiles)
{
    for (const char *path :
         {"NUL",        "nul",       "Con",        "PRN",        "aux",         "CONIN$",   "conout$", "COM1",  "com9",
          "LPT3",       "COM\u00B9", "lpt\u00B3",  "nul.txt",    "NUL.tar.gz",  "con .sco", "COM1:",   "nul. ", "C:\\pieces\\nul",
          "a/com1.sco", "C:aux",     "\\\\.\\NUL", "//./pipe/x", "\\\\.\\COM12"})
        EXPECT_TRUE(is_device(path)) << path;
    for (const char *path : {"", ".", "null", "nul1", "xnul", "COM", "COM0", "COM10", "COM.1", "comA", "LPT", "com\u00B4", "a.nul",
                             "con/out.sco", "nul\\out.sco", "CONIN", "\\\\?\\C:\\a", "\\\\server\\a", "co"})
        EXPECT_FALSE(is_device(path)) << path;
}

TEST(WindowsPaths, CaseMeansNothingInNames)
{
    EXPECT_TRUE(same_name("out.sco", "OUT.Sco"));
    EXPECT_TRUE(same_name("", ""));
    EXPECT_TRUE(same_name("[a]", "[A]"));
    EXPECT_FALSE(same_name("out.sco", "out.sc"));
    EXPECT_FALSE(same_name("out.sco", "out_sco"));
    EXPECT_FALSE(same_name("@`[{", "`@{["));     // beside the letters
    EXPECT_FALSE(same_name("\u00E4", "\u00C4")); // the system's own affair
}

} // namespace
} // namespace orlo::windows

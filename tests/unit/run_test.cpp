#include "driver/run.h"

#include "driver/options.h"
#include "platform/temporary_file.h"
#include "support.h"

#include <sys/resource.h>

namespace orlo {
namespace {

using test::screen_of;

TEST(Run, ThatMayOpenNoFileSaysSo)
{
    rlimit before{};
    ASSERT_EQ(0, getrlimit(RLIMIT_NOFILE, &before));
    const rlimit none{3, before.rlim_max}; // the standard streams alone
    const char  *arguments[] = {"orlo", "in.orlo", "out.sco"};

    const std::string screen = screen_of([&] {
        ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &none));
        EXPECT_EQ(1, run(3, arguments));
        EXPECT_EQ(0, setrlimit(RLIMIT_NOFILE, &before));
    });
    EXPECT_EQ("\nERROR: Can't open \"in.orlo\".\n\n", screen);
}

TEST(Options, ARunStartsWithoutNames)
{
    in_fname = out_fname = log_fname = exp_fname = "name";
    reset_options();
    for (const char *name : {in_fname, out_fname, log_fname, exp_fname})
        EXPECT_EQ(nullptr, name);
}

TEST(TemporaryFile, IsThereFromItsCreationToItsRemoval)
{
    std::FILE *file = open_temporary_file();
    ASSERT_NE(nullptr, file);
    static_cast<void>(std::fputs("text", file));
    static_cast<void>(std::fclose(file));

    std::FILE *again = reopen_temporary_file();
    ASSERT_NE(nullptr, again);
    EXPECT_EQ('t', std::getc(again));
    static_cast<void>(std::fclose(again));

    remove_temporary_file();
    EXPECT_EQ(nullptr, reopen_temporary_file());
    remove_temporary_file(); // which does nothing more
    EXPECT_EQ(nullptr, reopen_temporary_file());
}

} // namespace
} // namespace orlo

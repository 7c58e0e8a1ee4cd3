#include "platform/posix/memory_left.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace orlo {
namespace {

constexpr std::uint64_t MEBIBYTE = 1 << 20;

constexpr char MEMINFO[] = "MemTotal:       24684092 kB\nMemFree:         1000000 kB\nMemAvailable:    8192000 kB\n"
                           "SwapTotal:             0 kB\nSwapFree:              0 kB\n";

constexpr char MOUNTS_1[] = "22 27 0:21 / /proc rw,relatime - proc proc rw\n"
                            "30 23 0:30 / /groups/cpu rw - cgroup cgroup rw,cpu,cpuacct\n"
                            "31 23 0:31 / /groups/memory rw,nosuid shared:9 - cgroup cgroup rw,memory\n"
                            "32 23 0:32 / /groups/unified rw - cgroup2 cgroup2 rw\n";
constexpr char GROUPS_1[] = "4:cpu,cpuacct:/other\n3:memory:/all/some/one\n1:name=systemd:/all\n0::/all\n";

constexpr char MOUNTS_2[] = "25 23 0:23 / /groups rw,nosuid,nodev - cgroup2 cgroup2 rw,nsdelegate\n";
constexpr char GROUPS_2[] = "0::/all/some/one\n";

// A made-up system in a folder of its own, with 8000 MiB available and no swap.
class MemoryLeft : public testing::Test {
  protected:
    MemoryLeft()
    {
        root = std::filesystem::temp_directory_path() / "orlo-memory-XXXXXX";
        if (mkdtemp(root.data()) == nullptr)
            std::abort();
        put("/proc/meminfo", MEMINFO);
    }
    ~MemoryLeft() override { std::filesystem::remove_all(root); }
    MemoryLeft(const MemoryLeft &)            = delete;
    MemoryLeft &operator=(const MemoryLeft &) = delete;

    void put(const std::string &name, const std::string &text) const
    {
        const std::filesystem::path path = root + name;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream{path} << text;
    }

    void put(const std::string &name, std::uint64_t mebibytes) const { put(name, std::to_string(mebibytes * MEBIBYTE) + "\n"); }

    void stand_in(const char *mounts, const char *groups) const
    {
        put("/proc/self/mountinfo", mounts);
        put("/proc/self/cgroup", groups);
    }

    void limit_1(const std::string &group, std::uint64_t limit, std::uint64_t used) const
    {
        put(group + "/memory.limit_in_bytes", limit);
        put(group + "/memory.usage_in_bytes", used);
    }

    void limit_2(const std::string &group, std::uint64_t limit, std::uint64_t used) const
    {
        put(group + "/memory.max", limit);
        put(group + "/memory.current", used);
    }

    [[nodiscard]] std::uint64_t left() const { return memory_left(root) / MEBIBYTE; }

    std::string root;
};

TEST_F(MemoryLeft, IsWhatTheSystemHasAvailableAndItsSwap)
{
    EXPECT_EQ(8000, left());
    put("/proc/meminfo", "MemAvailable: 2048 kB\nSwapFree: 1024 kB\n");
    EXPECT_EQ(3, left());
    put("/proc/meminfo", "MemAvailable: 0 kB\nSwapFree: 0 kB\n");
    EXPECT_EQ(0, left());
}

TEST_F(MemoryLeft, IsNotToldWhereNoFileTells)
{
    for (const char *text : {"", "MemFree: 2048 kB\nSwapFree: 1024 kB\n", "MemAvailable: much\n", "MemAvailable:"}) {
        put("/proc/meminfo", text);
        EXPECT_EQ(NOT_TOLD, memory_left(root)) << text;
    }
    EXPECT_EQ(NOT_TOLD, memory_left(root + "/nowhere"));
}

TEST_F(MemoryLeft, IsThatOfTheGroupsAloneWhereTheSystemDoesNotTell)
{
    std::filesystem::remove(root + "/proc/meminfo");
    stand_in(MOUNTS_2, GROUPS_2);
    limit_2("/groups/all/some/one", 200, 20);
    EXPECT_EQ(180, left());
}

TEST_F(MemoryLeft, EndsAtTheLimitOfTheGroup)
{
    stand_in(MOUNTS_1, GROUPS_1);
    limit_1("/groups/memory/all/some/one", 200, 20);
    EXPECT_EQ(180, left());
    stand_in(MOUNTS_2, GROUPS_2);
    EXPECT_EQ(8000, left());
    limit_2("/groups/all/some/one", 100, 20);
    EXPECT_EQ(80, left());
}

TEST_F(MemoryLeft, EndsAtTheLimitOfAnyAncestor)
{
    stand_in(MOUNTS_1, GROUPS_1);
    for (const char *group : {"", "/all", "/all/some", "/all/some/one"}) {
        for (const char *other : {"", "/all", "/all/some", "/all/some/one"})
            limit_1("/groups/memory" + std::string{other}, 8796093022207, 20); // none: all that is less than 2^63
        limit_1("/groups/memory" + std::string{group}, 300, 100);
        EXPECT_EQ(200, left()) << group;
    }
    stand_in(MOUNTS_2, GROUPS_2);
    for (const char *group : {"", "/all", "/all/some", "/all/some/one"}) {
        for (const char *other : {"", "/all", "/all/some", "/all/some/one"}) {
            put("/groups" + std::string{other} + "/memory.max", "max\n");
            put("/groups" + std::string{other} + "/memory.current", 100);
        }
        limit_2("/groups" + std::string{group}, 400, 100);
        EXPECT_EQ(300, left()) << group;
    }
}

TEST_F(MemoryLeft, ForgetsGroupsThatTheProcessIsNotIn)
{
    stand_in(MOUNTS_1, GROUPS_1);
    for (const char *group : {"/all/some/one/below", "/all/other", "/other", "/al"})
        limit_1("/groups/memory" + std::string{group}, 10, 1);
    limit_1("/groups/cpu/other", 10, 1);
    EXPECT_EQ(8000, left());
}

TEST_F(MemoryLeft, CountsPageCacheAsFree)
{
    stand_in(MOUNTS_1, GROUPS_1);
    limit_1("/groups/memory/all", 200, 190);
    EXPECT_EQ(10, left());
    put("/groups/memory/all/memory.stat",
        "cache 1048576\ninactive_file 1048576\nactive_file 1048576\ntotal_inactive_file 104857600\ntotal_active_file 52428800\n");
    EXPECT_EQ(160, left());
    stand_in(MOUNTS_2, GROUPS_2);
    limit_2("/groups/all", 200, 190);
    EXPECT_EQ(10, left());
    put("/groups/all/memory.stat", "anon 10\nworkingset_inactive_file 7\ninactive_file 104857600\nactive_file 52428800\n");
    EXPECT_EQ(160, left());
    put("/groups/all/memory.stat", "inactive_file 1048576000\n"); // more than is used: nothing but cache
    EXPECT_EQ(200, left());
}

TEST_F(MemoryLeft, IsNothingInAGroupThatIsFull)
{
    stand_in(MOUNTS_1, GROUPS_1);
    limit_1("/groups/memory/all", 200, 200);
    EXPECT_EQ(0, left());
    limit_1("/groups/memory/all", 200, 300); // the limit was lowered
    EXPECT_EQ(0, left());
}

TEST_F(MemoryLeft, CountsTheSwapThatTheGroupMayTake)
{
    put("/proc/meminfo", "MemAvailable: 8192000 kB\nSwapFree: 1024000 kB\n"); // 8000 and 1000 MiB
    stand_in(MOUNTS_1, GROUPS_1);
    limit_1("/groups/memory/all", 200, 20);
    EXPECT_EQ(1180, left());
    put("/groups/memory/all/memory.memsw.limit_in_bytes", 400);
    put("/groups/memory/all/memory.memsw.usage_in_bytes", 30);
    EXPECT_EQ(370, left());
    put("/groups/memory/all/memory.memsw.limit_in_bytes", 4000);
    EXPECT_EQ(1180, left());
    stand_in(MOUNTS_2, GROUPS_2);
    limit_2("/groups/all", 200, 20);
    EXPECT_EQ(1180, left());
    put("/groups/all/memory.swap.max", 100);
    put("/groups/all/memory.swap.current", 40);
    EXPECT_EQ(240, left());
    put("/groups/all/memory.swap.max", "0\n");
    EXPECT_EQ(180, left());
}

TEST_F(MemoryLeft, EndsWhereAGroupWouldBeSlowedDown)
{
    stand_in(MOUNTS_2, GROUPS_2);
    limit_2("/groups/all", 200, 100);
    put("/groups/all/memory.high", 150);
    EXPECT_EQ(50, left());
    put("/groups/all/memory.high", 100); // which it is already
    EXPECT_EQ(100, left());
    put("/groups/all/memory.high", "max\n");
    EXPECT_EQ(100, left());
}

TEST_F(MemoryLeft, FindsTheGroupInAMountedPart)
{
    const auto mounts = [](const char *part) {
        return "31 23 0:31 " + std::string{part} + " /groups ro - cgroup cgroup rw,memory\n";
    };
    limit_1("/groups", 200, 20);
    limit_1("/groups/one", 100, 20);
    for (const char *part : {"/all/some", "/", "/all/so", "/all/some/one", "/elsewhere"}) {
        stand_in(mounts(part).c_str(), GROUPS_1);
        EXPECT_EQ(part == std::string{"/all/some"} ? 80 : 180, left()) << part;
    }
    stand_in(mounts("/").c_str(), "3:memory:/one\n");
    EXPECT_EQ(80, left());
    stand_in(mounts("/").c_str(), "3:memory:/\n");
    EXPECT_EQ(180, left());
    stand_in(mounts("/").c_str(), "3:memory:/../one\n"); // a group beside what the process sees
    EXPECT_EQ(180, left());
}

TEST_F(MemoryLeft, ReadsNamesWithBlanks)
{
    stand_in("25 23 0:23 / /my\\040groups\\134 rw - cgroup2 cgroup2 rw\n", "0::/all\n");
    limit_2("/my groups\\/all", 200, 20);
    EXPECT_EQ(180, left());
}

TEST_F(MemoryLeft, ReadsLinesOfAnyLength)
{
    std::string mounts = "24 23 0:22 / / rw - overlay overlay rw,lowerdir=" + std::string(100000, 'x') + "\n";
    stand_in((mounts + MOUNTS_2).c_str(), GROUPS_2);
    limit_2("/groups/all", 200, 20);
    EXPECT_EQ(180, left());
}

TEST_F(MemoryLeft, TakesLinesThatItDoesNotUnderstandForNothing)
{
    for (const char *mounts :
         {"", "\n\n", "25", "25 23 0:23 / /groups", " - cgroup2", "25 23 0:23 / /nowhere\\0 rw - cgroup2 x rw\n"})
        for (const char *groups : {"", "0", "0::", "::", ":memory:", "0::all", GROUPS_2}) {
            stand_in(mounts, groups);
            EXPECT_EQ(8000, left()) << mounts << ' ' << groups;
        }
    limit_2("/groups/all", 1, 1);
    stand_in(MOUNTS_2, "0::all\n");
    EXPECT_EQ(8000, left());
    put("/groups/all/memory.max", "junk");
    stand_in(MOUNTS_2, GROUPS_2);
    EXPECT_EQ(8000, left());
}

TEST(MemoryLeftHere, IsToldOfThisSystemToo)
{
    const std::uint64_t left = memory_left("");
    if (!std::filesystem::exists("/proc/meminfo"))
        GTEST_SKIP() << "no /proc/meminfo";
    EXPECT_GT(left, MEBIBYTE);
    EXPECT_LT(left, UINT64_MAX / 2);
}

TEST_F(MemoryLeft, IsNotLimitedByAGroupThatDoesNotTellItsUse)
{
    stand_in(MOUNTS_2, GROUPS_2);
    put("/groups/all/some/one/memory.max", 100);
    EXPECT_EQ(8000, left());
    put("/groups/all/some/one/memory.current", 40);
    EXPECT_EQ(60, left());
}

TEST_F(MemoryLeft, IsLimitedByTheRootOfGroupsAndByWhatIsMountedWhereTheGroupLiesOutside)
{
    limit_2("/groups", 300, 100);
    limit_2("/outside", 9, 1);
    for (const char *groups : {"0::/\n", "0::/../../outside\n"}) {
        stand_in(MOUNTS_2, groups);
        EXPECT_EQ(200, left()) << groups;
    }
}

TEST_F(MemoryLeft, ABackslashInTheNameOfAMountMayBeNoCode)
{
    stand_in("25 23 0:23 / /gr\\oups\\ rw - cgroup2 cgroup2 rw\n", GROUPS_2);
    limit_2("/gr\\oups\\/all", 70, 20);
    EXPECT_EQ(50, left());
}

} // namespace
} // namespace orlo

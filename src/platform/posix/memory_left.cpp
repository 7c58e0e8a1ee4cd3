// A process stands in one group of each hierarchy, which /proc/self/cgroup names by its path in the hierarchy; /proc/self/mountinfo
// tells where the hierarchy, or the part of it below some root, is mounted (proc(5)). The limits of a group hold for all groups in
// it together, so that the least of what the group and its ancestors leave counts. Version 1 limits memory, and memory with swap;
// version 2 limits memory and swap apart. memory.high of version 2 ends no process, but one beyond it hardly moves on.

#include "platform/posix/memory_left.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <memory>
#include <new>
#include <string_view>

namespace orlo {
namespace {

constexpr std::uint64_t KIBIBYTE = 1024;

// the whole of a file; empty where there is none
std::string text_of(const std::string &name)
{
    struct Closing {
        void operator()(std::FILE *file) const { std::fclose(file); }
    };
    const std::unique_ptr<std::FILE, Closing> file{std::fopen(name.c_str(), "r")};
    std::string                               text;
    char                                      block[4096];
    for (std::size_t got = sizeof block; file != nullptr && got == sizeof block;) {
        got = std::fread(block, 1, sizeof block, file.get());
        text.append(block, got);
    }
    return text;
}

// takes what stands before the mark off the text, and the mark; all of it without a mark
std::string_view take_to(std::string_view &text, std::string_view mark)
{
    const std::size_t      end   = text.find(mark);
    const std::string_view taken = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + mark.size());
    return taken;
}

// a number after blanks; NOT_TOLD where a word stands, as "max"
std::uint64_t number_of(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    std::uint64_t number = NOT_TOLD;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

std::uint64_t number_in(const std::string &name) { return number_of(text_of(name)); }

// the number after a word that begins a line; otherwise where there is no such line
std::uint64_t number_after(std::string_view word, std::string_view text, std::uint64_t otherwise)
{
    while (!text.empty()) {
        const std::string_view line = take_to(text, "\n");
        if (line.starts_with(word))
            return number_of(line.substr(word.size()));
    }
    return otherwise;
}

std::uint64_t sum(std::uint64_t a, std::uint64_t b) { return a + std::min(b, NOT_TOLD - a); }

// what a limit leaves; cache is the part of the use that can be given back
std::uint64_t below(std::uint64_t limit, std::uint64_t used, std::uint64_t cache)
{
    if (limit == NOT_TOLD || used == NOT_TOLD)
        return NOT_TOLD;
    const std::uint64_t kept = used - std::min(used, cache);
    return limit - std::min(limit, kept);
}

std::uint64_t left_in_group_1(const std::string &group, std::uint64_t swap)
{
    const std::string   stat  = text_of(group + "/memory.stat");
    const std::uint64_t cache = sum(number_after("total_inactive_file ", stat, 0), number_after("total_active_file ", stat, 0));
    const std::uint64_t memory =
        below(number_in(group + "/memory.limit_in_bytes"), number_in(group + "/memory.usage_in_bytes"), cache);
    const std::uint64_t both =
        below(number_in(group + "/memory.memsw.limit_in_bytes"), number_in(group + "/memory.memsw.usage_in_bytes"), cache);
    return std::min(sum(memory, swap), both);
}

std::uint64_t left_in_group_2(const std::string &group, std::uint64_t swap)
{
    const std::string   stat   = text_of(group + "/memory.stat");
    const std::uint64_t cache  = sum(number_after("inactive_file ", stat, 0), number_after("active_file ", stat, 0));
    const std::uint64_t used   = number_in(group + "/memory.current");
    const std::uint64_t high   = below(number_in(group + "/memory.high"), used, cache);
    const std::uint64_t memory = below(number_in(group + "/memory.max"), used, cache);
    const std::uint64_t swapped =
        std::min(swap, below(number_in(group + "/memory.swap.max"), number_in(group + "/memory.swap.current"), 0));
    return sum(high > 0 ? std::min(high, memory) : memory, swapped); // a group that is beyond its mark already moves on as it can
}

// a name of mountinfo, in which blanks and the like are written as "\040"
std::string unescaped(std::string_view name)
{
    std::string text;
    for (std::size_t i = 0; i < name.size(); ++i) {
        unsigned char code = 0;
        if (name[i] == '\\' &&
            std::from_chars(name.data() + i + 1, name.data() + std::min(i + 4, name.size()), code, 8).ec == std::errc{}) {
            text.push_back(static_cast<char>(code));
            i += 3;
        } else {
            text.push_back(name[i]);
        }
    }
    return text;
}

bool lists(std::string_view list, std::string_view word)
{
    while (!list.empty())
        if (take_to(list, ",") == word)
            return true;
    return false;
}

// A mounted hierarchy, or a part of one.
struct Mount {
    std::string root;  // path in the hierarchy of what is mounted
    std::string point; // where
    bool        version_1;
    bool        version_2;
};

// line -> number number number root point options { tag } "-" type source options
Mount read_mount(std::string_view line)
{
    std::string_view front = take_to(line, " - ");
    for (int i = 0; i < 3; ++i)
        static_cast<void>(take_to(front, " "));
    const std::string_view root  = take_to(front, " ");
    const std::string_view point = take_to(front, " ");
    const std::string_view type  = take_to(line, " ");
    static_cast<void>(take_to(line, " "));
    return {unescaped(root), unescaped(point), type == "cgroup" && lists(line, "memory"), type == "cgroup2"};
}

// path in its hierarchy of the group that the process stands in; empty when there is none
// line -> number ":" [ word { "," word } ] ":" path
std::string path_of_group(bool version_1, std::string_view groups)
{
    while (!groups.empty()) {
        std::string_view line = take_to(groups, "\n");
        static_cast<void>(take_to(line, ":"));
        const std::string_view controllers = take_to(line, ":");
        if (version_1 ? lists(controllers, "memory") : controllers.empty())
            return std::string{line};
    }
    return "";
}

// the part of a group's path below what is mounted; what is mounted is the group itself where it can't be found there
std::string path_below(std::string root, const std::string &path)
{
    if (root == "/")
        root.clear();
    const bool inside = path.starts_with(root + "/") && path != "/" && path.find("/..") == std::string::npos;
    return inside ? path.substr(root.size()) : "";
}

std::uint64_t left_in_mount(const std::string &root, const Mount &mount, const std::string &path, std::uint64_t swap)
{
    const std::string point = root + mount.point;
    std::string       group = point + path_below(mount.root, path);
    std::uint64_t     left  = NOT_TOLD;
    for (;; group.resize(group.rfind('/'))) { // ends at the point: every part of the path begins with a slash
        left = std::min(left, mount.version_1 ? left_in_group_1(group, swap) : left_in_group_2(group, swap));
        if (group.size() <= point.size())
            return left;
    }
}

std::uint64_t left_in_groups(const std::string &root, std::uint64_t swap)
{
    const std::string mounts = text_of(root + "/proc/self/mountinfo");
    const std::string groups = text_of(root + "/proc/self/cgroup");
    std::uint64_t     left   = NOT_TOLD;
    for (std::string_view rest = mounts; !rest.empty();) {
        const Mount mount = read_mount(take_to(rest, "\n"));
        if (!mount.version_1 && !mount.version_2)
            continue;
        const std::string path = path_of_group(mount.version_1, groups);
        if (!path.empty())
            left = std::min(left, left_in_mount(root, mount, path, swap));
    }
    return left;
}

std::uint64_t kibibytes(std::uint64_t number) { return number > NOT_TOLD / KIBIBYTE ? NOT_TOLD : number * KIBIBYTE; }

} // namespace

std::uint64_t memory_left(const std::string &root) noexcept
{
    try {
        const std::string   system = text_of(root + "/proc/meminfo");
        const std::uint64_t memory = kibibytes(number_after("MemAvailable:", system, NOT_TOLD));
        const std::uint64_t swap   = kibibytes(number_after("SwapFree:", system, 0));
        return std::min(sum(memory, swap), left_in_groups(root, swap));
    } catch (const std::bad_alloc &) {
        return NOT_TOLD;
    }
}

} // namespace orlo

// A file that is created exclusively is nobody else's; files have no modes here.

#include "platform/new_file.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <sys/random.h>
#include <unistd.h>

namespace orlo {
namespace {

constexpr std::string_view LETTERS = "abcdefghijklmnopqrstuvwxyz0123456789";
constexpr std::size_t      CHOSEN  = 6; // letters that are replaced
constexpr int              TRIES   = 100;

void choose(char *letters)
{
    unsigned char random[CHOSEN];
    if (getentropy(random, sizeof random) != 0)
        return;
    for (std::size_t at = 0; at < CHOSEN; ++at)
        letters[at] = LETTERS[random[at] % LETTERS.size()];
}

} // namespace

std::FILE *make_new_file(char *pattern)
{
    std::FILE *file = nullptr;
    errno           = EEXIST;
    for (int tries = 0; file == nullptr && errno == EEXIST && tries < TRIES; ++tries) {
        choose(pattern + std::strlen(pattern) - CHOSEN);
        file = std::fopen(pattern, "wx");
    }
    return file;
}

void share_as(std::FILE *, const std::string &) {}

bool is_protected(const std::string &name) { return access(name.c_str(), W_OK) != 0 && errno != ENOENT; }

} // namespace orlo

// Sets of characters as tables: one look says whether a character belongs to one.
#pragma once

#include <array>
#include <string_view>

namespace orlo {

struct CharacterSet {
    std::array<bool, 256> members;

    [[nodiscard]] constexpr bool has(char c) const { return members[static_cast<unsigned char>(c)]; }
};

[[nodiscard]] consteval CharacterSet set_of(std::string_view characters)
{
    CharacterSet set{};
    for (const char c : characters)
        set.members[static_cast<unsigned char>(c)] = true;
    return set;
}

} // namespace orlo

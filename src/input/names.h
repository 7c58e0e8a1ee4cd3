// Names of macros and constants, and the tables that they are looked up in.
#pragma once

#include "input/character_set.h"
#include "input/line_reader.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace orlo {

inline constexpr CharacterSet NAME_CHARS = set_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_");

/// True for a character of a name: a letter, a digit or "_". Names begin with a letter.
[[nodiscard]] constexpr bool is_name_char(char c) { return NAME_CHARS.has(c); }

/// Takes the name at the position; empty when no letter stands there.
[[nodiscard]] inline std::string_view take_name(const char *text, std::size_t &pos)
{
    const char *start = text + pos;
    const char *end   = start;
    if (is_letter(*end))
        while (is_name_char(*end))
            ++end;
    pos = static_cast<std::size_t>(end - text);
    return {start, static_cast<std::size_t>(end - start)};
}

/// Column of a name that stands in the line; the position for one that stands in the body of a macro.
[[nodiscard]] inline std::uint32_t column_of(std::string_view name, const Input &in)
{
    for (std::size_t column = 0; column < LINE_SIZE; ++column)
        if (in.line + column == name.data())
            return static_cast<std::uint32_t>(column);
    return in.pos;
}

/// Records by their member "name". There is a power of two of buckets, so that no look at them divides.
template <typename Named> struct NameTable {
    std::vector<std::vector<Named>> buckets; // none at start
    std::size_t                     records; // 0 at start
};

/// FNV-1a: names are short.
[[nodiscard]] inline std::size_t hash_of(std::string_view name)
{
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const char c : name)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    return static_cast<std::size_t>(hash);
}

/// The record of a name, null when there is none.
template <typename Named> [[nodiscard]] const Named *find_named(const NameTable<Named> &table, std::string_view name)
{
    if (table.records == 0)
        return nullptr;
    for (const Named &record : table.buckets[hash_of(name) & (table.buckets.size() - 1)])
        if (record.name == name)
            return &record;
    return nullptr;
}

/// Adds a record. @return false when there is one with its name
template <typename Named> [[nodiscard]] bool add_named(NameTable<Named> &table, Named record)
{
    if (find_named(table, record.name) != nullptr)
        return false;
    if (table.records == table.buckets.size()) {
        std::vector<std::vector<Named>> buckets(table.records == 0 ? 1 : 2 * table.records);
        for (std::vector<Named> &bucket : table.buckets)
            for (Named &moved : bucket)
                buckets[hash_of(moved.name) & (buckets.size() - 1)].push_back(std::move(moved));
        table.buckets.swap(buckets);
    }
    table.buckets[hash_of(record.name) & (table.buckets.size() - 1)].push_back(std::move(record));
    ++table.records;
    return true;
}

/// Removes the record of a name, if there is one.
template <typename Named> void remove_named(NameTable<Named> &table, std::string_view name)
{
    if (table.records != 0)
        table.records -= std::erase_if(table.buckets[hash_of(name) & (table.buckets.size() - 1)],
                                       [name](const Named &record) { return record.name == name; });
}

} // namespace orlo

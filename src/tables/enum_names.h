// Names of enumerators, as the compiler writes them into the name of a function: so a table's names are said once.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

namespace orlo::tables {

template <class Enum> struct Enumerator {
    int              value;
    std::string_view name; // without its scope
};

// "... V = orlo::TYPE_BN; ..." or "... V = (orlo::Code)8]" for a value that has no name
template <auto V> const char *described() { return __PRETTY_FUNCTION__; }

inline std::string_view name_in(std::string_view text)
{
    text.remove_prefix(text.find("V = ") + 4);
    text = text.substr(0, text.find_first_of(";]"));
    return text.front() == '(' ? std::string_view{} : text.substr(text.rfind(':') + 1);
}

/// The enumerators from First on that are among the next Count values.
template <class Enum, int First, std::size_t Count> std::vector<Enumerator<Enum>> enumerators()
{
    const auto texts = []<std::size_t... I>(std::index_sequence<I...>)
    {
        return std::array<const char *, Count>{described<static_cast<Enum>(First + static_cast<int>(I))>()...};
    }
    (std::make_index_sequence<Count>{});

    std::vector<Enumerator<Enum>> found;
    for (std::size_t i = 0; i < Count; ++i)
        if (const std::string_view name = name_in(texts[i]); !name.empty())
            found.push_back({First + static_cast<int>(i), name});
    return found;
}

} // namespace orlo::tables

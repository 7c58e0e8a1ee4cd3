// Macro definitions: "#define" and "#undef". Owns the macro list.
#pragma once

#include "input/line_reader.h"

#include <string>
#include <string_view>
#include <vector>

namespace orlo {

inline constexpr std::size_t MAX_MACRO_NAME   = 2048; // a name or body of so many characters is refused
inline constexpr std::size_t MAX_MACRO_BODY   = 2048;
inline constexpr std::size_t MAX_MACRO_PARAMS = 128;

struct Macro {
    std::string              name;
    std::vector<std::string> params; // names, in order; none for a macro without a list
    std::string              body;   // without the enclosing "#"; keeps its line ends
};

/// Runs the directive after a "#": a definition, an undefinition, or a condition that stands inside a line.
/// @return 0, 8, 32, 80, 81, 84, 86, 88, 91, 1000, or an error of the condition or of a further line
[[nodiscard]] int parse_macro(Input &in);

/// The macro of a name, null when there is none.
[[nodiscard]] const Macro *find_macro(std::string_view name);

/// Reports a name that belongs to no macro. @return 1000
[[nodiscard]] int no_such_macro(std::string_view name, const Input &in);

/// Frees all macros.
void free_macro_list();

/// Debugging aid that only tests call: prints a macro.
void print_macro(const Macro &macro);

/// Moves on by so many characters, at most to the end of the line.
void move_within_line(Input &in, std::size_t characters);

/// True when any of the characters at the position is the letter of the keyword in the same place.
[[nodiscard]] bool resembles(const Input &in, std::string_view keyword);

} // namespace orlo

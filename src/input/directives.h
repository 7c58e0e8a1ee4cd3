// The words after "#". How much of a word must be there differs; each reader says so.
#pragma once

#include <string_view>

namespace orlo {

inline constexpr std::string_view CONST_WORD   = "const";
inline constexpr std::string_view DEFINE_WORD  = "define";
inline constexpr std::string_view ENDIF_WORD   = "endif";
inline constexpr std::string_view IF_WORD      = "if";
inline constexpr std::string_view INCLUDE_WORD = "include";
inline constexpr std::string_view UNDEF_WORD   = "undef";

inline constexpr std::string_view directives[] = {CONST_WORD, DEFINE_WORD, ENDIF_WORD, IF_WORD, INCLUDE_WORD, UNDEF_WORD};

} // namespace orlo

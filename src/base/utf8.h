// utf8.h: how long the characters of a UTF-8 text are.
#pragma once

#include <cstddef>
#include <string_view>

namespace orlo {

/// What stands for a byte that is no UTF-8: U+FFFD.
inline constexpr std::string_view UNKNOWN_CHARACTER = "\xEF\xBF\xBD";

/// Bytes of the character at a place of a text.
/// @return 1 to 4; 0 where it is no UTF-8, or cut off by the text's end
std::size_t character_length(std::string_view text, std::size_t at);

} // namespace orlo

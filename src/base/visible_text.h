// visible_text.h: text of somebody else as a terminal may get it. What would move the cursor, command the terminal or turn the
// order of what is read becomes one visible character each. Widths are those of most characters: one column, also for a wide
// character or a mark that combines with the one before it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace orlo {

/// Control characters below U+0020 become their pictures (U+2400 ...), and so does DEL (U+2421); those from U+0080 to U+009F, those
/// that set the direction of writing, and each byte that is no UTF-8 become U+FFFD.
/// @param layout control characters that stay, such as "\n\t" in a text whose lines the program has made itself
std::string visible_text(std::string_view text, std::string_view layout = {});

/// One character of a text as visible_text shows it, without memory of its own.
struct VisibleCharacter {
    char        bytes[4];
    std::size_t length; // bytes that are shown
    std::size_t step;   // bytes of the text that they stand for
};
VisibleCharacter visible_character(std::string_view text, std::size_t at, std::string_view layout = {});

/// Code of a character above U+007F that visible_text replaces; 0 for one that it leaves.
/// @param character a whole one
char32_t replaced_code(std::string_view character);

/// What to write before a mark, so that it stands under a character of the line above, which was shown by visible_text.
/// @param text the line as it was given to visible_text
/// @param byte where the marked character begins in it
/// @return a blank for each character before that one, a tab for a tab
std::string margin_under(std::string_view text, std::size_t byte);

} // namespace orlo

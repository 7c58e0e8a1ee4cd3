// A text is taken apart into characters; each gives one character, so that columns are counted by counting them.

#include "base/visible_text.h"

#include "base/utf8.h"

#include <algorithm>
#include <iterator>

namespace orlo {
namespace {

constexpr char32_t DEL          = 0x7F;
constexpr char32_t PICTURES     = 0x2400; // of U+0000; the others follow
constexpr char32_t DEL_PICTURE  = 0x2421;
constexpr char32_t UNKNOWN_CODE = 0xFFFD;

struct CodeRange {
    char32_t first, last;
};
constexpr CodeRange unsafe[] = {
    {0x80, 0x9F},                                                         // controls
    {0x61C, 0x61C}, {0x200E, 0x200F}, {0x202A, 0x202E}, {0x2066, 0x2069}, // direction of writing
};

// bytes to take at once at a place, a malformed one by itself
std::size_t step_at(std::string_view text, std::size_t at) { return std::max<std::size_t>(character_length(text, at), 1); }

// a whole character
char32_t code_of(std::string_view character)
{
    constexpr unsigned char first_bits[] = {0, 0x7F, 0x1F, 0x0F, 0x07}; // by length
    char32_t                code         = static_cast<unsigned char>(character[0]) & first_bits[character.size()];
    for (const char c : character.substr(1))
        code = code << 6U | (static_cast<unsigned char>(c) & 0x3FU);
    return code;
}

bool is_unsafe(char32_t code)
{
    return std::any_of(std::begin(unsafe), std::end(unsafe), [code](CodeRange r) { return code >= r.first && code <= r.last; });
}

// U+0800 to U+FFFF
VisibleCharacter three_bytes(char32_t code, std::size_t step)
{
    return {{static_cast<char>(0xE0U | code >> 12U), static_cast<char>(0x80U | (code >> 6U & 0x3FU)),
             static_cast<char>(0x80U | (code & 0x3FU))},
            3,
            step};
}

VisibleCharacter as_it_is(std::string_view character)
{
    VisibleCharacter shown{{}, character.size(), character.size()};
    character.copy(shown.bytes, sizeof shown.bytes);
    return shown;
}

} // namespace

VisibleCharacter visible_character(std::string_view text, std::size_t at, std::string_view layout)
{
    const std::size_t      step      = step_at(text, at);
    const std::string_view character = text.substr(at, step);
    if (step == 1 && layout.find(text[at]) != std::string_view::npos)
        return as_it_is(character);
    if (character_length(text, at) == 0 || is_unsafe(code_of(character)))
        return three_bytes(UNKNOWN_CODE, step);
    const char32_t code = code_of(character);
    if (code < 0x20 || code == DEL)
        return three_bytes(code == DEL ? DEL_PICTURE : PICTURES + code, step);
    return as_it_is(character);
}

std::string visible_text(std::string_view text, std::string_view layout)
{
    std::string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const VisibleCharacter shown = visible_character(text, at, layout);
        out.append(shown.bytes, shown.length);
        at += shown.step;
    }
    return out;
}

char32_t replaced_code(std::string_view character)
{
    const char32_t code = code_of(character);
    return is_unsafe(code) ? code : 0;
}

std::string margin_under(std::string_view text, std::size_t byte)
{
    std::string margin;
    for (std::size_t at = 0; at < text.size() && at + step_at(text, at) <= byte; at += step_at(text, at))
        margin += text[at] == '\t' ? '\t' : ' ';
    return margin;
}

} // namespace orlo

// A text is taken apart into characters; each gives one character, so that columns are counted by counting them.

#include "base/visible_text.h"

#include "base/utf8.h"

#include <algorithm>
#include <iterator>

namespace orlo {
namespace {

constexpr char32_t DEL         = 0x7F;
constexpr char32_t PICTURES    = 0x2400; // of U+0000; the others follow
constexpr char32_t DEL_PICTURE = 0x2421;

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
void put_three_bytes(std::string &out, char32_t code)
{
    for (const char32_t byte : {0xE0U | code >> 12U, 0x80U | (code >> 6U & 0x3FU), 0x80U | (code & 0x3FU)})
        out += static_cast<char>(byte);
}

void put_visible(std::string &out, std::string_view character)
{
    const bool     whole = character_length(character, 0) != 0;
    const char32_t code  = whole ? code_of(character) : 0;
    if (!whole || is_unsafe(code))
        out += UNKNOWN_CHARACTER;
    else if (code < 0x20 || code == DEL)
        put_three_bytes(out, code == DEL ? DEL_PICTURE : PICTURES + code);
    else
        out += character;
}

} // namespace

std::string visible_text(std::string_view text, std::string_view layout)
{
    std::string out;
    out.reserve(text.size());
    for (std::size_t at = 0, step = 0; at < text.size(); at += step) {
        step = step_at(text, at);
        if (step == 1 && layout.find(text[at]) != std::string_view::npos)
            out += text[at];
        else
            put_visible(out, text.substr(at, step));
    }
    return out;
}

std::string margin_under(std::string_view text, std::size_t byte)
{
    std::string margin;
    for (std::size_t at = 0; at < text.size() && at + step_at(text, at) <= byte; at += step_at(text, at))
        margin += text[at] == '\t' ? '\t' : ' ';
    return margin;
}

} // namespace orlo

// Bytes are copied as they are but for those that mean something to the reader of the text. A broken UTF-8 sequence would make
// the whole document unreadable, so every sequence is measured before it is copied.
#include "base/markup.h"

#include "base/number_text.h"
#include "base/utf8.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace orlo {
namespace {

std::string_view entity(char c)
{
    switch (c) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\'':
        return "&#39;";
    default:
        return {};
    }
}

bool is_control(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return (byte < 0x20 && c != '\n' && c != '\t') || byte == 0x7F;
}

// U+FFFE and U+FFFF are no characters of XML
bool is_no_character(std::string_view sequence) { return sequence == "\xEF\xBF\xBE" || sequence == "\xEF\xBF\xBF"; }

} // namespace

std::string joined(std::initializer_list<std::string_view> texts)
{
    std::string out;
    for (const std::string_view text : texts)
        out += text;
    return out;
}

std::string escaped(std::string_view text)
{
    std::string out;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t      length   = character_length(text, i);
        const std::string_view sequence = text.substr(i, length);
        if (length == 0 || is_control(text[i]) || is_no_character(sequence))
            out += UNKNOWN_CHARACTER;
        else if (const std::string_view name = entity(text[i]); !name.empty())
            out += name;
        else
            out += sequence;
        i += length == 0 ? 1 : length;
    }
    return out;
}

std::string number_text(double value, int digits)
{
    std::array<char, 64> text{};
    if (value == 0)
        return "0";
    if (!std::isfinite(value))
        return std::string{not_finite_text(value)};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, digits).ptr;
    return {text.data(), end};
}

std::string decimal_text(double value, int decimals)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    std::string shown{text};
    if (shown.find('.') != std::string::npos) {
        shown.erase(shown.find_last_not_of('0') + 1);
        if (shown.back() == '.')
            shown.pop_back();
    }
    return shown == "-0" ? "0" : shown;
}

std::int64_t tenths(double coordinate) { return std::llround(coordinate * 10); }

void put_tenths(std::string &out, std::int64_t tenths)
{
    std::array<char, 32> text{};
    if (tenths < 0)
        out += '-';
    const std::int64_t size = std::abs(tenths);
    out.append(text.data(), std::to_chars(text.data(), text.data() + text.size(), size / 10).ptr);
    if (size % 10 != 0) {
        out += '.';
        out += static_cast<char>('0' + size % 10);
    }
}

std::string pixels(double coordinate)
{
    std::string text;
    put_tenths(text, tenths(coordinate));
    return text;
}

std::string shortened(std::string_view text, std::size_t most)
{
    std::size_t characters = 0;
    std::size_t cut        = 0; // where the last character that stays beside an ellipsis ends
    for (std::size_t i = 0; i < text.size(); i += std::max<std::size_t>(character_length(text, i), 1)) {
        if (++characters == most)
            cut = i;
    }
    return characters <= most ? std::string(text) : std::string(text.substr(0, cut)) + "\xE2\x80\xA6";
}

std::string count_text(std::uint64_t count)
{
    std::string text = std::to_string(count);
    for (std::size_t at = text.size(); at > 3; at -= 3)
        text.insert(at - 3, 1, ',');
    return text;
}

std::string counted(std::uint64_t count, std::string_view noun)
{
    return joined({count_text(count), " ", noun, count == 1 ? "" : "s"});
}

} // namespace orlo

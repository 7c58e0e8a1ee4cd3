#include "base/json.h"

#include "base/utf8.h"
#include "base/visible_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace orlo {
namespace {

constexpr std::string_view HEX     = "0123456789abcdef";
constexpr std::size_t      GATHERS = 65536; // bytes that are written at a time

void put_hex(std::string &out, unsigned char byte)
{
    out += HEX[byte >> 4U];
    out += HEX[byte & 15U];
}

// of a character that a terminal must not get as it is
void put_code(std::string &out, char32_t code)
{
    out += "\\u";
    put_hex(out, static_cast<unsigned char>(code >> 8U));
    put_hex(out, static_cast<unsigned char>(code & 0xFFU));
}

bool is_plain(char c)
{
    return static_cast<unsigned char>(c) >= 0x20 && static_cast<unsigned char>(c) < 0x7F && c != '<' && c != '"' && c != '\\';
}

template <class Number> void put(std::string &out, Number value)
{
    if (value == 0 && std::signbit(static_cast<double>(value))) { // readers take "-0" for a whole number, which has no sign
        out += "-0.0";
        return;
    }
    char text[64];
    out.append(text, std::to_chars(text, text + sizeof text, value).ptr);
}

template <class Real> void put_real(std::string &out, Real value)
{
    if (std::isfinite(value))
        put(out, value);
    else
        out += "null";
}

} // namespace

void put_json_text(std::string &out, std::string_view text)
{
    out += '"';
    for (std::size_t i = 0; i < text.size();) { // each round takes characters
        const auto plain = static_cast<std::size_t>(
            std::find_if_not(text.begin() + static_cast<std::ptrdiff_t>(i), text.end(), is_plain) - text.begin());
        out += text.substr(i, plain - i);
        i = plain;
        if (i == text.size())
            break;
        const std::size_t length = character_length(text, i);
        const auto        byte   = static_cast<unsigned char>(text[i]);
        if (length == 0) {
            out += UNKNOWN_CHARACTER;
        } else if (byte < 0x80) {
            put_code(out, byte);
        } else if (const char32_t code = replaced_code(text.substr(i, length)); code != 0) {
            put_code(out, code);
        } else {
            out += text.substr(i, length);
        }
        i += std::max<std::size_t>(length, 1);
    }
    out += '"';
}

void put_json_number(std::string &out, double value) { put_real(out, value); }

void put_json_number(std::string &out, float value) { put_real(out, value); }

void put_json_whole(std::string &out, std::int64_t value) { put(out, value); }

bool is_utf8(std::string_view text)
{
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = static_cast<unsigned char>(text[i]) < 0x80 ? 1 : character_length(text, i);
        if (length == 0)
            return false;
        i += length;
    }
    return true;
}

void JsonWriter::separate()
{
    if (!first)
        out += ',';
    first = false;
    if (out.size() >= GATHERS) {
        std::fwrite(out.data(), 1, out.size(), file);
        out.clear();
    }
}

void JsonWriter::begin(char bracket)
{
    separate();
    out += bracket;
    first = true;
}

void JsonWriter::end(char bracket)
{
    out += bracket;
    first = false;
}

void JsonWriter::key(std::string_view name)
{
    separate();
    put_json_text(out, name);
    out += ':';
    first = true;
}

void JsonWriter::text(std::string_view value)
{
    if (is_utf8(value)) {
        separate();
        put_json_text(out, value);
        return;
    }
    begin_object();
    key("hex");
    out += '"';
    for (const char c : value)
        put_hex(out, static_cast<unsigned char>(c));
    out += '"';
    end_object();
}

void JsonWriter::truth(bool value)
{
    separate();
    out += value ? "true" : "false";
}

bool JsonWriter::finish()
{
    out += '\n';
    std::fwrite(out.data(), 1, out.size(), file);
    out.clear();
    return std::fflush(file) == 0 && std::ferror(file) == 0;
}

} // namespace orlo

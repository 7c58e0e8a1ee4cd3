// Every loop moves the position on, and ends with the text.

#include "score/score_text.h"

#include "base/number_text.h"

#include <charconv>
#include <cmath>

namespace orlo::score {
namespace {

constexpr std::size_t LONGEST_QUOTE = 40; // bytes of a word that a message shows

bool at_end(const Text &text) { return text.at == text.end; }

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v'; }

bool is_digit(char c) { return c >= '0' && c <= '9'; }

bool starts_with(const Text &text, std::string_view word)
{
    return std::string_view{text.at, static_cast<std::size_t>(text.end - text.at)}.starts_with(word);
}

// what ends a p-field without a blank before it
bool is_comment(const Text &text)
{
    return *text.at == ';' || (*text.at == '/' && (starts_with(text, "//") || starts_with(text, "/*")));
}

void skip_long_comment(Text &text)
{
    for (text.at += 2; !at_end(text); ++text.at) {
        if (starts_with(text, "*/")) {
            text.at += 2;
            return;
        }
        text.line += *text.at == '\n' ? 1 : 0;
    }
}

// the length of a backslash that continues a line, with its line end; 0 when there is none
std::ptrdiff_t continuation(const Text &text)
{
    if (starts_with(text, "\\\n"))
        return 2;
    return starts_with(text, "\\\r\n") ? 3 : 0;
}

bool begins_field(char c)
{
    return is_digit(c) || (c != '\0' && std::string_view{".+-^\"<>![~()"}.find(c) != std::string_view::npos);
}

// moves to the next p-field, over line ends when the statement goes on after them
bool find_field(Text &text)
{
    bool same_line = true;
    for (skip_blanks(text); !at_end(text); skip_blanks(text)) {
        if (*text.at == '\n') {
            ++text.at;
            ++text.line;
            same_line = false;
        } else if (*text.at == 'c') { // a comment
            skip_line(text);
        } else {
            return same_line || begins_field(*text.at);
        }
    }
    return false;
}

std::string_view take_word(Text &text)
{
    const char *start = text.at;
    while (!at_end(text) && !is_blank(*text.at) && *text.at != '\n' && !is_comment(text))
        ++text.at;
    return {start, static_cast<std::size_t>(text.at - start)};
}

// enclosed -> open { any but close } close
Field take_enclosed(Text &text, char close, Mark mark)
{
    const char *start = text.at;
    for (++text.at; !at_end(text) && *text.at != '\n'; ++text.at)
        if (*text.at == close) {
            ++text.at;
            return {mark, 0, {start, static_cast<std::size_t>(text.at - start)}};
        }
    return {Mark::no_end, 0, {start, static_cast<std::size_t>(text.at - start)}};
}

// what a program prints for a number that is none
bool is_not_finite(std::string_view digits) { return digits == "inf" || digits == "nan" || digits == "-inf" || digits == "-nan"; }

// number -> [ "+" | "-" ] digits [ "." digits ] [ "e" exponent ]
Field read_number(std::string_view word, Mark mark)
{
    Field            field{mark, 0, word};
    std::string_view digits = word;
    const bool       plus   = digits.starts_with('+');
    if (plus)
        digits.remove_prefix(1);
    if ((plus && digits.starts_with('-')) || !read_double(digits, field.value))
        return {is_not_finite(digits) ? Mark::not_finite : Mark::unknown, 0, word};
    if (!std::isfinite(field.value))
        field.mark = Mark::not_finite;
    return field;
}

// reference -> ( "np" | "pp" ) number
Field read_reference(std::string_view word)
{
    int         field       = 0;
    const char *end_of_word = word.data() + word.size();
    const auto [end, error] = std::from_chars(word.data() + 2, end_of_word, field);
    if (error != std::errc{} || end != end_of_word || field < 1)
        return {Mark::unknown, 0, word};
    return {word.front() == 'n' ? Mark::next : Mark::previous, static_cast<double>(field), word};
}

Field read_word(std::string_view word)
{
    if (word == ".")
        return {Mark::carry, 0, word};
    if (word == "+")
        return {Mark::plus, 0, word};
    if (word == "<" || word == ">")
        return {Mark::ramp, 0, word};
    if (word == "!")
        return {Mark::stop, 0, word};
    if (word.size() > 1 && word[0] == '^' && (word[1] == '+' || word[1] == '-')) {
        Field field = read_number(word.substr(1), Mark::shift);
        field.word  = word;
        return field;
    }
    if (word.starts_with("np") || word.starts_with("pp"))
        return read_reference(word);
    return read_number(word, Mark::number);
}

} // namespace

void skip_blanks(Text &text)
{
    while (!at_end(text)) {
        if (is_blank(*text.at)) {
            ++text.at;
        } else if (*text.at == ';' || starts_with(text, "//")) {
            skip_line(text);
        } else if (starts_with(text, "/*")) {
            skip_long_comment(text);
        } else if (const std::ptrdiff_t length = continuation(text); length > 0) {
            text.at += length;
            ++text.line;
        } else {
            return;
        }
    }
}

void skip_to_statement(Text &text)
{
    for (skip_blanks(text); !at_end(text) && *text.at == '\n'; skip_blanks(text)) {
        ++text.at;
        ++text.line;
    }
}

void skip_line(Text &text)
{
    while (!at_end(text) && *text.at != '\n')
        ++text.at;
}

bool next_field(Text &text, Field &field)
{
    if (!find_field(text))
        return false;
    if (*text.at == '"')
        field = take_enclosed(text, '"', Mark::text);
    else if (*text.at == '[')
        field = take_enclosed(text, ']', Mark::expression);
    else
        field = read_word(take_word(text));
    return true;
}

std::string quoted(std::string_view word)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string    text     = "'";
    for (const char c : word.substr(0, LONGEST_QUOTE)) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte < 0x7f)
            text += c;
        else
            text.append("\\x") += {digits[byte >> 4U], digits[byte & 15U]};
    }
    return text + (word.size() > LONGEST_QUOTE ? "...'" : "'");
}

} // namespace orlo::score

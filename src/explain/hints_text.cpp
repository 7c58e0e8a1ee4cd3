#include "explain/hints_text.h"

#include "base/visible_text.h"
#include "explain/hints/finder.h"

#include <algorithm>
#include <cstdio>

namespace orlo::explain {
namespace {

constexpr std::size_t WIDTH      = 78;  // columns of what is wrapped
constexpr std::size_t MOST_WORD  = 20;  // bytes of a word beside which something is put in
constexpr std::size_t MOST_SHOWN = 200; // bytes of a line of the piece that are shown
constexpr std::size_t MOST_GONE  = 60;  // bytes of what goes that are shown
constexpr std::size_t FIRST_GONE = 40;  // of more than that, these and the last ones
constexpr std::size_t LAST_GONE  = 15;
constexpr std::size_t MOST_FIXES = 5; // of a hint that are shown
constexpr char        MARGIN[]   = "    ";

bool is_lower(char c) { return c >= 'a' && c <= 'z'; }

// words in lines of WIDTH columns, the first behind a label, the others under its words
void put_words(std::string &text, std::string_view label, std::string_view words)
{
    std::string       line = MARGIN + std::string{label};
    const std::string under(line.size(), ' ');
    bool              first = true;
    while (!words.empty()) { // each round takes a word
        const std::size_t      end  = std::min(words.find(' '), words.size());
        const std::string_view word = words.substr(0, end);
        words.remove_prefix(std::min(end + 1, words.size()));
        if (!first && line.size() + 1 + word.size() > WIDTH) {
            text += line + "\n";
            line  = under;
            first = true;
        }
        line += first ? "" : " ";
        line += word;
        first = false;
    }
    text += line + "\n";
}

std::string in_one_line(std::string_view words)
{
    std::string text{words};
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r' || c == '\t'; }, ' ');
    return text;
}

// with a capital, but for "p4"
std::string as_sentence(std::string text)
{
    if (text.size() > 1 && is_lower(text[0]) && (is_lower(text[1]) || text[1] == ' '))
        text[0] = static_cast<char>(text[0] - 'a' + 'A');
    return text + ".";
}

// the line of a place with a caret under its first character
void put_source(std::string &text, const SourceMap &source, const Place &place)
{
    const File            &file = source.files()[static_cast<std::size_t>(place.file)];
    const std::string_view whole{file.text};
    const std::size_t      at    = offset(file, place.begin);
    const std::size_t      begin = at == 0 ? 0 : whole.rfind('\n', at - 1) + 1; // 0 where there is none
    const std::size_t      end   = std::min(whole.find('\n', at), whole.size());
    std::string_view       line  = whole.substr(begin, end - begin);
    if (line.size() > MOST_SHOWN)
        return;
    while (!line.empty() && (line.back() == '\r' || line.back() == ' '))
        line.remove_suffix(1);
    text += MARGIN + std::string{"| "} + visible_text(line, "\t") + "\n";
    text += MARGIN + std::string{"| "} + margin_under(line, at - begin) + "^\n";
}

void put_hint(std::string &text, Piece &piece, const Hint &hint)
{
    if (hint.place.file != NONE) {
        const Position at = piece.source.position(hint.place.file, hint.place.begin);
        text += in_one_line(piece.source.files()[static_cast<std::size_t>(hint.place.file)].name) + ":" +
                std::to_string(at.line + 1) + ":" + std::to_string(at.byte + 1) + ": ";
    }
    text += name_of(hint.kind);
    text += "\n";
    put_words(text, "", as_sentence(hint.text));
    if (hint.place.file != NONE)
        put_source(text, piece.source, hint.place);
    put_words(text, "why: ", as_sentence(hint.reason));
    const char *label = "fix: ";
    for (std::size_t i = 0; i < std::min(hint.edits.size(), MOST_FIXES); ++i) {
        put_words(text, label, fix_text(piece.source, hint.edits[i]));
        label = "     ";
    }
    if (hint.edits.size() > MOST_FIXES)
        put_words(text, label, "and so on, " + std::to_string(hint.edits.size()) + " in all");
    text += "\n";
}

void put_quoted(std::string &text, std::string_view words)
{
    text += '"';
    text += in_one_line(words);
    text += '"';
}

bool is_hidden(char c)
{
    return c != '\n' && c != '\t' && (static_cast<unsigned char>(c) < ' ' || static_cast<unsigned char>(c) > '~');
}

void put_bytes(std::string &text, std::string_view bytes)
{
    text += bytes.size() == 1 ? "the byte" : "the bytes";
    for (const char byte : bytes) {
        char number[8];
        std::snprintf(number, sizeof number, " %02X", static_cast<unsigned>(static_cast<unsigned char>(byte)));
        text += number;
    }
}

// what goes; single characters that can't be seen by their numbers
void put_gone(std::string &text, std::string_view gone)
{
    constexpr std::size_t MOST_BYTES = 4;
    if (gone.size() <= MOST_BYTES && std::all_of(gone.begin(), gone.end(), is_hidden)) {
        put_bytes(text, gone);
        return;
    }
    if (gone.ends_with('\n')) {
        text += std::count(gone.begin(), gone.end(), '\n') == 1 ? "the line " : "the lines ";
        gone.remove_suffix(1);
    }
    if (gone.size() <= MOST_GONE) {
        put_quoted(text, gone);
        return;
    }
    std::string shown{gone.substr(0, FIRST_GONE)};
    shown += " ... ";
    shown += gone.substr(gone.size() - LAST_GONE);
    put_quoted(text, shown);
}

bool is_blank_byte(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

// the word that follows a place directly, or else the one before it
void put_neighbour(std::string &text, std::string_view whole, std::size_t at)
{
    std::size_t begin = at;
    std::size_t end   = at;
    while (end < whole.size() && end - at < MOST_WORD && !is_blank_byte(whole[end]))
        ++end;
    const bool follows = end > at;
    while (!follows && begin > 0 && at - begin < MOST_WORD && !is_blank_byte(whole[begin - 1]))
        --begin;
    if (begin == end)
        return;
    text += follows ? " before " : " behind ";
    put_quoted(text, whole.substr(begin, end - begin));
}

} // namespace

std::string fix_text(const SourceMap &source, const Edit &edit)
{
    const File            &file = source.files()[static_cast<std::size_t>(edit.place.file)];
    const std::string_view whole{file.text};
    const std::string_view gone =
        whole.substr(offset(file, edit.place.begin), static_cast<std::size_t>(edit.place.end - edit.place.begin));
    std::string text;
    if (edit.text == "\n" && (gone.empty() || gone == "\r"))
        return "begin a new line here";
    if (edit.text.empty()) {
        text += "take out ";
        put_gone(text, gone);
        return text;
    }
    text += gone.empty() ? "put in " : "write ";
    put_quoted(text, edit.text);
    if (gone.empty()) {
        put_neighbour(text, whole, offset(file, edit.place.begin));
        return text;
    }
    text += " in place of ";
    put_gone(text, gone);
    return text;
}

std::string hints_text(Piece &piece, const Hints &hints, const Heading &heading)
{
    std::string text;
    for (const Hint &hint : hints.list)
        put_hint(text, piece, hint);
    if (hints.list.empty())
        text += "No hints.\n";
    else
        text += "Each is a chapter of the manual; \"; orlo: quiet " + std::string{name_of(hints.list.front().kind)} +
                "\" in a block silences it there.\n";
    if (hints.full)
        text += full_text() + ".\n";
    if (heading.status != 0)
        text += "The piece ends with an error: orlo-explain --format=gcc shows it.\n";
    return text;
}

std::string full_text() { return std::to_string(MOST_HINTS) + " hints were found, and there may be more"; }

std::string list_of_hints()
{
    std::size_t width = 0;
    for (const HintRow &row : hint_rows)
        width = std::max(width, row.name.size());
    std::string text;
    for (const HintRow &row : hint_rows)
        text += std::string{row.name} + std::string(width + 2 - row.name.size(), ' ') + std::string{row.summary} + "\n";
    return text;
}

} // namespace orlo::explain

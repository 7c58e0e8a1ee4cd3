// What is wrong with a file as it is written: its bytes, its lines, where it lies, and what stands where nothing is read.

#include "explain/hints/hints.h"

#include "base/utf8.h"
#include "explain/hints/note_words.h"
#include "input/line_reader.h"
#include "platform/file_identity.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace orlo::explain {
namespace {

constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";

bool has_mark(const File &file) { return file.skipped == 0 && file.text.starts_with(BYTE_ORDER_MARK); }

void look_at_mark(Finder &finder, const File &file, std::int32_t index)
{
    if (!has_mark(file))
        return;
    const Place place{index, 0, BYTE_ORDER_MARK.size(), NONE};
    add(finder, {HintKind::byte_order_mark,
                 "the file begins with a byte order mark",
                 "editors hide its three bytes EF BB BF, and no text of a piece begins with them",
                 place,
                 NONE,
                 {{place, {}}}});
}

// encodings

bool is_utf16(std::string_view text)
{
    const auto zeros = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\0'));
    return text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF") || (zeros > 1 && zeros * 4 > text.size());
}

// a byte of Latin-1 that is a letter or a sign
bool is_latin1(char c)
{
    return static_cast<unsigned char>(c) >= 0xA0 && static_cast<unsigned char>(c) < 0xFF;
} // orlo takes FF for a blank

std::string from_latin1(char c)
{
    const auto code = static_cast<unsigned char>(c);
    return {static_cast<char>(0xC0 | code >> 6), static_cast<char>(0x80 | (code & 0x3F))};
}

// bytes that are no UTF-8, and whether all of them could be Latin-1
struct Strange {
    std::vector<std::size_t> first; // MOST_EDITS of them
    std::size_t              count  = 0;
    bool                     latin1 = true;
};

Strange strange_bytes(std::string_view text)
{
    Strange strange;
    for (std::size_t at = 0; at < text.size();) { // each character once
        const std::size_t length = character_length(text, at);
        if (length == 0) {
            ++strange.count;
            strange.latin1 = strange.latin1 && is_latin1(text[at]);
            if (strange.first.size() < MOST_EDITS)
                strange.first.push_back(at);
        }
        at += std::max<std::size_t>(length, 1);
    }
    return strange;
}

std::string hexadecimal(char byte)
{
    char text[8];
    std::snprintf(text, sizeof text, "%02X", static_cast<unsigned>(static_cast<unsigned char>(byte)));
    return text;
}

void look_at_encoding(Finder &finder, const File &file, std::int32_t index)
{
    const Place begin{index, file.skipped, file.skipped + 1, NONE};
    if (is_utf16(file.text)) {
        add(finder, {HintKind::no_utf8,
                     "the file is written in UTF-16",
                     "a piece is read byte by byte, and every other byte of this one says nothing: save it as UTF-8",
                     begin,
                     NONE,
                     {}});
        return;
    }
    const Strange strange = strange_bytes(file.text);
    if (strange.count == 0)
        return;
    const auto place_of = [&](std::size_t at) { return Place{index, file.skipped + at, file.skipped + at + 1, NONE}; };
    const char byte     = file.text[strange.first.front()];
    Hint       hint{HintKind::no_utf8,
              counted(strange.count, "byte") + " of the file " + (strange.count == 1 ? "is" : "are") + " no UTF-8",
              "the first is the byte " + hexadecimal(byte) +
                  (is_latin1(byte) ? ", which is " + from_latin1(byte) + " in Latin-1" : ""),
              place_of(strange.first.front()),
              NONE,
              {}};
    if (strange.latin1 && strange.count <= MOST_EDITS)
        for (const std::size_t at : strange.first)
            hint.edits.push_back({place_of(at), from_latin1(file.text[at])});
    add(finder, std::move(hint));
}

// line ends

// Carriage returns that no line feed follows, and whether one of them hides what stands behind it: in a comment, a direct line or a
// directive, or behind a block.
struct Returns {
    std::vector<std::size_t> first; // MOST_EDITS of them
    std::size_t              count = 0;
    bool                     hide  = false;
};

Returns lone_returns(std::string_view text)
{
    Returns returns;
    bool    marked = false;                            // the line has a mark that reaches to its end
    bool    passed = false;                            // and a carriage return behind it
    for (std::size_t at = 0; at < text.size(); ++at) { // each character once
        const char c    = text[at];
        const bool lone = c == '\r' && (at + 1 == text.size() || text[at + 1] != '\n');
        if (c == '\n')
            marked = passed = false;
        else if (c == ';' || c == '>' || c == '#' || c == '}')
            marked = true;
        if (lone && ++returns.count <= MOST_EDITS)
            returns.first.push_back(at);
        passed       = passed || (lone && marked);
        returns.hide = returns.hide || (passed && !is_blank(c));
    }
    return returns;
}

void look_at_returns(Finder &finder, const File &file, std::int32_t index)
{
    const Returns returns = lone_returns(file.text);
    if (!returns.hide)
        return;
    const auto place_of = [&](std::size_t at) { return Place{index, file.skipped + at, file.skipped + at + 1, NONE}; };
    Hint       hint{HintKind::carriage_returns,
              "the file has " + counted(returns.count, "line end") + " of old Macs, which end no line",
              "a carriage return is a blank when no line feed follows it: a comment goes on behind it, and so does a line on which "
                    "a block has "
                    "ended",
              place_of(returns.first.front()),
              NONE,
              {}};
    if (returns.count <= MOST_EDITS)
        for (const std::size_t at : returns.first)
            hint.edits.push_back({place_of(at), "\n"});
    add(finder, std::move(hint));
}

// files elsewhere

std::string folder_of(const File &file)
{
    const std::size_t end = file.name.rfind('/');
    return end == std::string::npos ? std::string{} : file.name.substr(0, end == 0 ? 1 : end);
}

bool is_there(const std::string &folder, const std::string &name)
{
    FileIdentity identity;
    return !folder.empty() && identify((folder + "/" + name).c_str(), identity) && identity.regular;
}

void look_for_file(Finder &finder, const File &missing)
{
    const std::vector<File> &files = finder.piece.source.files();
    if (missing.found || missing.included.file == NONE || missing.name.empty() || missing.name.front() == '/')
        return;
    for (const std::string &folder :
         {folder_of(files[static_cast<std::size_t>(missing.included.file)]), folder_of(files.front())}) {
        if (!is_there(folder, missing.name))
            continue;
        add(finder, {HintKind::include_elsewhere,
                     quoted(missing.name) + " lies in the folder " + quoted(folder) + ", and not in the one where orlo is run",
                     "names of include files count from the folder in which the program is run, and not from that of the piece",
                     missing.included,
                     NONE,
                     {}});
        return;
    }
}

// behind blocks

// the place of what follows on a line, without comments and blanks around it
Place rest_of_line(const Finder &finder, const Place &place)
{
    const std::string_view line  = text_behind(finder, place);
    std::size_t            begin = 0;
    for (;;) { // each round takes a comment
        while (begin < line.size() && is_blank(line[begin]))
            ++begin;
        if (line.substr(begin, 2) != "/*")
            break;
        const std::size_t end = line.find("*/", begin + 2);
        if (end == std::string_view::npos)
            return behind(place);
        begin = end + 2;
    }
    std::size_t end = std::min(line.find(';', begin), line.size());
    while (end > begin && is_blank(line[end - 1]))
        --end;
    return {place.file, place.end + begin, place.end + end, place.call};
}

// header -> "i" number "=" number
bool is_header(std::string_view text)
{
    constexpr std::string_view digits = "0123456789";
    const auto                 skip   = [&text](std::string_view characters) {
        const std::size_t end = text.find_first_not_of(characters);
        text.remove_prefix(std::min(end, text.size()));
        return end > 0;
    };
    if (text.front() != 'i')
        return false;
    text.remove_prefix(1);
    skip(" \t");
    if (!skip(digits))
        return false;
    skip(" \t");
    if (!text.starts_with('='))
        return false;
    text.remove_prefix(1);
    skip(" \t");
    return !text.empty() && digits.find(text.front()) != std::string_view::npos;
}

// whether a text could stand on a line of its own
bool begins_line(std::string_view text)
{
    constexpr std::array<std::string_view, 4> commands{"te", "rs", "rd", "sr"};
    const auto                                is_command = [text](std::string_view command) {
        return text.substr(0, 2) == command && text.find('(') != std::string_view::npos;
    };
    constexpr std::array<std::string_view, 6> words{"#define", "#const", "#undef", "#include", "#if(", "#endif"};
    const auto                                is_word = [text](std::string_view word) { return text.starts_with(word); };
    return is_header(text) || text.front() == '>' || std::any_of(words.begin(), words.end(), is_word) ||
           std::any_of(commands.begin(), commands.end(), is_command);
}

// what stands behind a block on the last line of the input is read
bool is_last_line(const Finder &finder, const Place &place)
{
    const File            &file = file_of(finder, place);
    const std::string_view rest = std::string_view{file.text}.substr(offset(file, place.end));
    const std::size_t      end  = rest.find('\n');
    return place.file == 0 && (end == std::string_view::npos || end + 1 == rest.size());
}

void look_behind(Finder &finder, const Block &block)
{
    if (!block.closed || finder.midi || !is_plain(block.place) || char_at(finder, block.place.file, block.place.end - 1) != '}' ||
        is_last_line(finder, block.place))
        return;
    const Place            rest = rest_of_line(finder, block.place);
    const std::string_view text = text_at(finder, rest);
    const std::uint64_t    gap  = rest.begin - block.place.end;
    if (text.empty() ||
        text_behind(finder, block.place).substr(0, static_cast<std::size_t>(gap)).find('\r') != std::string_view::npos)
        return;
    constexpr std::size_t MOST_SHOWN = 40;
    Hint                  hint{HintKind::text_after_block,
              quoted(text.size() > MOST_SHOWN ? std::string{text.substr(0, MOST_SHOWN)} + "..." : std::string{text}) +
                  " is not read",
              "what stands behind the \"}\" of " + name_of(finder, block) + " on its line is dropped",
              rest,
              index_of(finder, block),
              {}};
    if (text == "}")
        hint.edits = {{rest, {}}};
    else if (begins_line(text))
        hint.edits = {{before(rest), "\n"}};
    add(finder, std::move(hint));
}

} // namespace

void look_at_text(Finder &finder)
{
    const std::vector<File> &files = finder.piece.source.files();
    for (std::size_t i = 0; i < files.size(); ++i) { // there are few
        const auto index = static_cast<std::int32_t>(i);
        look_at_mark(finder, files[i], index);
        look_at_encoding(finder, files[i], index);
        look_at_returns(finder, files[i], index);
        look_for_file(finder, files[i]);
    }
    for (const Block &block : finder.piece.blocks)
        look_behind(finder, block);
}

} // namespace orlo::explain

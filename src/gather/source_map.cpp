// A line that is read is one stretch of the combined input; each replacement cuts stretches out of it and puts others in their
// place, so that a line costs as much as it has replacements. A place is found by two binary searches: the stretch of the column,
// and the copy of the byte.

#include "gather/source_map.h"

#include "base/utf8.h"

#include <algorithm>

namespace orlo::gather {
namespace {

constexpr std::size_t MARKS_STEP = 64; // bytes

// the stretch that a column lies in; the text is not empty
const Stretch &stretch_at(const TextMap &text, std::size_t column)
{
    const auto after = std::upper_bound(text.stretches.begin(), text.stretches.end(), column,
                                        [](std::size_t wanted, const Stretch &stretch) { return wanted < stretch.column; });
    return *(after - 1);
}

std::size_t end_of(const TextMap &text, std::size_t index)
{
    return index + 1 < text.stretches.size() ? text.stretches[index + 1].column : text.length;
}

bool continues(const TextMap &text, const Stretch &more)
{
    if (text.stretches.empty())
        return false;
    const Stretch &last = text.stretches.back();
    return !last.anew && !more.anew && last.call == more.call && last.end == more.begin;
}

void add(TextMap &text, Stretch stretch, std::size_t length)
{
    if (length == 0)
        return;
    stretch.column = text.length;
    if (!stretch.anew)
        stretch.end = stretch.begin + length;
    if (continues(text, stretch))
        text.stretches.back().end = stretch.end;
    else
        text.stretches.push_back(stretch);
    text.length += length;
}

// adds the part of a text
void add_part(TextMap &to, const TextMap &text, std::size_t begin, std::size_t end, std::int32_t call)
{
    end = std::min(end, text.length);
    if (begin >= end)
        return;
    auto index = static_cast<std::size_t>(&stretch_at(text, begin) - text.stretches.data());
    for (; index < text.stretches.size() && text.stretches[index].column < end; ++index) {
        Stretch           stretch = text.stretches[index];
        const std::size_t first   = std::max(begin, stretch.column);
        const std::size_t last    = std::min(end, end_of(text, index));
        if (!stretch.anew)
            stretch.begin += first - stretch.column;
        if (call != NONE)
            stretch.call = call;
        add(to, stretch, last - first);
    }
}

// bytes of a character that begins in a text; one that is none is a character of one byte
std::size_t step(std::string_view text, std::size_t at)
{
    const std::size_t length = character_length(text, at);
    return length == 0 ? 1 : length;
}

std::uint64_t units_of(std::size_t length) { return length == 4 ? 2 : 1; }

bool is_part_of_longer(char c) { return static_cast<unsigned char>(c) > 127; }

// UTF-16 units of the characters that begin before a byte of the text
std::uint64_t units_before(const File &file, std::uint64_t byte)
{
    if (file.marks.empty())
        return byte;
    const auto    after = std::upper_bound(file.marks.begin(), file.marks.end(), byte,
                                           [](std::uint64_t wanted, const UnitMark &mark) { return wanted < mark.byte; });
    std::uint64_t units = (after - 1)->units;
    for (auto at = static_cast<std::size_t>((after - 1)->byte); at < byte && at < file.text.size(); at += step(file.text, at))
        units += units_of(step(file.text, at));
    return units;
}

} // namespace

TextMap part_of(const TextMap &text, std::size_t begin, std::size_t end, std::int32_t call)
{
    TextMap part;
    add_part(part, text, begin, end, call);
    return part;
}

TextMap as_number(const TextMap &text)
{
    TextMap number;
    if (text.stretches.empty())
        return number;
    const Stretch &first = text.stretches.front();
    const Stretch &last  = text.stretches.back();
    const bool     whole = last.call == first.call && last.end >= first.begin;
    number.stretches.push_back({0, first.begin, whole ? last.end : first.end, first.call, true});
    number.length = 1;
    return number;
}

void append(TextMap &text, const TextMap &more) { add_part(text, more, 0, more.length, NONE); }

void splice(TextMap &text, std::size_t begin, std::size_t end, const TextMap &inner)
{
    TextMap whole;
    add_part(whole, text, 0, begin, NONE);
    append(whole, inner);
    add_part(whole, text, end, text.length, NONE);
    text = std::move(whole);
}

void SourceMap::open(std::string_view name, bool found)
{
    File file;
    file.name     = name;
    file.found    = found;
    file.included = directive;
    if (all_files.empty()) {
        file.skipped    = piece_skipped;
        file.first_line = piece_first_line;
    }
    all_files.push_back(std::move(file));
    file_depths.push_back(open_files.empty() ? 0 : file_depths[static_cast<std::size_t>(open_files.back())] + 1);
    if (found)
        open_files.push_back(static_cast<std::int32_t>(all_files.size() - 1));
}

void SourceMap::leave() { open_files.pop_back(); }

void SourceMap::include_met(std::uint64_t begin, std::uint64_t end) { directive = {open_files.back(), begin, end, NONE}; }

void SourceMap::add_text(std::string_view bytes) { all_files[static_cast<std::size_t>(open_files.back())].text += bytes; }

void SourceMap::copy_continues(std::uint64_t to, std::uint64_t from)
{
    if (!copies.empty() && copies.back().to == to)
        copies.pop_back();
    copies.push_back({to, from, open_files.back()});
}

void SourceMap::skip_in_piece(std::uint64_t bytes, std::uint64_t lines)
{
    piece_skipped    = bytes;
    piece_first_line = lines;
}

void SourceMap::read_line(std::uint64_t offset, std::size_t length)
{
    lines_read = true;
    texts.resize(1);
    arguments.clear();
    texts.front().map.stretches.clear();
    texts.front().map.length = 0;
    add(texts.front().map, {0, offset, 0, NONE, false}, length);
    if (length == 0) // its end can still be asked for
        texts.front().map.stretches.push_back({0, offset, offset, NONE, false});
}

std::int32_t SourceMap::call(CallKind kind, std::string_view name, std::int32_t of, double value, std::size_t begin,
                             std::size_t end, const TextMap &body)
{
    Call call;
    call.kind        = kind;
    call.name        = name;
    call.of          = of;
    call.value       = value;
    call.place       = place_in(texts.back().map, begin, end);
    call.depth       = depth(call.place) + 1;
    const auto index = static_cast<std::int32_t>(all_calls.size());
    all_calls.push_back(std::move(call));
    texts.push_back({part_of(body, 0, body.length, index), std::move(arguments)});
    arguments.clear();
    return index;
}

void SourceMap::take_argument(std::string_view name, std::size_t begin, std::size_t end)
{
    arguments.push_back({std::string{name}, part_of(texts.back().map, begin, end)});
}

void SourceMap::replace(std::size_t begin, std::size_t end, std::size_t length)
{
    Text inner = std::move(texts.back());
    texts.pop_back();
    if (inner.map.length != length && !inner.map.stretches.empty() && inner.map.stretches.front().anew)
        inner.map.length = length; // as many characters as the number has
    splice(texts.back().map, begin, end, inner.map);
}

const TextMap *SourceMap::argument(std::string_view name) const
{
    for (const Argument &argument : texts.back().arguments)
        if (argument.name == name)
            return &argument.map;
    return nullptr;
}

std::int32_t SourceMap::divided_call(std::size_t column, std::size_t &length) const
{
    if (column == 0 || column >= line().length)
        return NONE;
    const Stretch &stretch = stretch_at(line(), column);
    if (!stretch.anew || stretch.column == column)
        return NONE;
    length = column - stretch.column;
    return stretch.call;
}

Place SourceMap::at(const TextMap &text, std::size_t column) const
{
    if (text.stretches.empty())
        return {};
    const Stretch &stretch = stretch_at(text, std::min(column, text.length == 0 ? 0 : text.length - 1));
    if (stretch.anew)
        return resolve(stretch.begin, stretch.end, stretch.call);
    const std::uint64_t byte = stretch.begin + (column - stretch.column);
    return column < text.length ? resolve(byte, byte + 1, stretch.call) : resolve(stretch.end, stretch.end, stretch.call);
}

Place SourceMap::place_in(const TextMap &text, std::size_t begin, std::size_t end) const
{
    if (begin < end) {
        const Place first = at(text, begin);
        return end == begin + 1 ? first : join(first, at(text, end - 1));
    }
    Place place = at(text, begin);
    place.end   = place.begin;
    return place;
}

// A byte that was put behind a file's end, or an end that belongs to no copy, lies at the end of the file's text.
Place SourceMap::resolve(std::uint64_t begin, std::uint64_t end, std::int32_t call) const
{
    if (copies.empty())
        return {};
    const auto covers = [this, begin](std::size_t index) {
        return copies[index].to <= begin && (index + 1 == copies.size() || begin < copies[index + 1].to);
    };
    if (!covers(last_copy)) {
        const auto after = std::upper_bound(copies.begin(), copies.end(), begin,
                                            [](std::uint64_t wanted, const Copy &copy) { return wanted < copy.to; });
        last_copy        = static_cast<std::size_t>(std::max<std::ptrdiff_t>(after - copies.begin() - 1, 0));
    }
    const Copy         &copy = copies[last_copy];
    const std::uint64_t from = copy.from + (begin - copy.to);
    return {copy.file, from, from + (end - begin), call};
}

Place SourceMap::lift(const Place &place) const
{
    if (place.call != NONE)
        return all_calls[static_cast<std::size_t>(place.call)].place;
    return all_files[static_cast<std::size_t>(place.file)].included;
}

unsigned SourceMap::depth(const Place &place) const
{
    if (place.call != NONE)
        return all_calls[static_cast<std::size_t>(place.call)].depth;
    return place.file == NONE ? 0 : file_depths[static_cast<std::size_t>(place.file)];
}

Place SourceMap::join(Place first, Place last) const
{
    while (first.file != NONE && last.file != NONE && (first.call != last.call || first.file != last.file)) { // ends at the piece
        const unsigned first_depth = depth(first);
        const unsigned last_depth  = depth(last);
        if (first_depth >= last_depth)
            first = lift(first);
        if (last_depth >= first_depth)
            last = lift(last);
    }
    if (first.file == NONE || last.file == NONE)
        return first.file == NONE ? last : first;
    return {first.file, std::min(first.begin, last.begin), std::max(first.end, last.end), first.call};
}

bool SourceMap::is_line_end(const Place &place) const
{
    if (place.file == NONE || place.end != place.begin + 1)
        return false;
    const File         &file = all_files[static_cast<std::size_t>(place.file)];
    const std::uint64_t at   = place.begin - file.skipped;
    return at < file.text.size() && file.text[static_cast<std::size_t>(at)] == '\n';
}

void SourceMap::index_files()
{
    for (File &file : all_files) {
        file.lines.assign(1, 0);
        for (std::size_t at = file.text.find('\n'); at != std::string::npos; at = file.text.find('\n', at + 1))
            file.lines.push_back(at + 1);
        file.marks.clear();
        if (std::none_of(file.text.begin(), file.text.end(), is_part_of_longer))
            continue;
        std::uint64_t units = 0;
        for (std::size_t at = 0; at < file.text.size(); at += step(file.text, at)) {
            if (at >= file.marks.size() * MARKS_STEP)
                file.marks.push_back({at, units});
            units += units_of(step(file.text, at));
        }
    }
}

Position SourceMap::position(std::int32_t file, std::uint64_t byte)
{
    const File         &of       = all_files[static_cast<std::size_t>(file)];
    const std::uint64_t in_text  = std::min<std::uint64_t>(byte < of.skipped ? 0 : byte - of.skipped, of.text.size());
    const auto          after    = std::upper_bound(of.lines.begin(), of.lines.end(), in_text);
    const auto          line     = static_cast<std::uint64_t>(after - of.lines.begin() - 1);
    const std::uint64_t begin    = of.lines[static_cast<std::size_t>(line)];
    const std::uint64_t in_units = units_before(of, in_text) - units_before(of, begin);
    return {of.first_line + line, in_text - begin, in_units};
}

} // namespace orlo::gather

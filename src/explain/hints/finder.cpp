#include "explain/hints/finder.h"

#include "gather/words.h"
#include "input/line_reader.h"

#include <algorithm>
#include <cstdio>

namespace orlo::explain {

void add(Finder &finder, Hint hint)
{
    const auto same = [&hint](const Hint &other) {
        return other.kind == hint.kind && other.place.file == hint.place.file && other.place.begin == hint.place.begin &&
               other.place.end == hint.place.end && hint.place.file != NONE;
    };
    if (finder.found.size() < MOST_HINTS && std::none_of(finder.found.begin(), finder.found.end(), same))
        finder.found.push_back(std::move(hint));
}

bool has_hint(const Finder &finder, HintKind kind, const Block &block)
{
    return std::any_of(finder.found.begin(), finder.found.end(),
                       [kind, at = index_of(finder, block)](const Hint &hint) { return hint.kind == kind && hint.block == at; });
}

// where a byte of a file stands in its text
std::size_t offset(const File &file, std::uint64_t byte) { return static_cast<std::size_t>(byte - file.skipped); }

const File &file_of(const Finder &finder, const Place &place)
{
    return finder.piece.source.files()[static_cast<std::size_t>(place.file)];
}

std::string_view text_at(const Finder &finder, const Place &place)
{
    if (place.file == NONE)
        return {};
    const File &file = file_of(finder, place);
    return std::string_view{file.text}.substr(offset(file, place.begin), static_cast<std::size_t>(place.end - place.begin));
}

std::string_view text_behind(const Finder &finder, const Place &place)
{
    if (place.file == NONE)
        return {};
    const File            &file = file_of(finder, place);
    const std::string_view rest = std::string_view{file.text}.substr(offset(file, place.end), MOST_LINE);
    return rest.substr(0, rest.find('\n'));
}

std::string_view text_before(const Finder &finder, const Place &place)
{
    if (place.file == NONE)
        return {};
    const File            &file = file_of(finder, place);
    const std::size_t      at   = offset(file, place.begin);
    const std::size_t      from = at - std::min(at, MOST_LINE);
    const std::string_view rest = std::string_view{file.text}.substr(from, at - from);
    return rest.substr(rest.rfind('\n') + 1); // 0 where there is none
}

char char_at(const Finder &finder, std::int32_t file, std::uint64_t byte)
{
    const File &of = finder.piece.source.files()[static_cast<std::size_t>(file)];
    return byte < of.skipped || byte - of.skipped >= of.text.size() ? '\n' : of.text[static_cast<std::size_t>(byte - of.skipped)];
}

std::string without_comments(std::string_view text)
{
    std::string plain{text};
    unsigned    depth = 0;                       // of comments that nest
    for (std::size_t i = 0; i < plain.size();) { // each round moves on
        const std::string_view pair = text.substr(i, 2);
        std::size_t            gone = 0;
        if (depth == 0 && text[i] == ';')
            gone = std::min(text.find('\n', i), text.size()) - i;
        else if (pair == "/*" || (depth > 0 && pair == "*/"))
            gone = 2;
        else if (depth > 0)
            gone = 1;
        if (gone == 2 && pair == "/*")
            ++depth;
        else if (gone == 2 && pair == "*/")
            --depth;
        for (std::size_t end = i + gone; i < end; ++i)
            plain[i] = plain[i] == '\n' ? '\n' : ' ';
        i += gone == 0 ? 1 : 0;
    }
    return plain;
}

Place outermost(const Finder &finder, Place place)
{
    while (place.call != NONE) // a call stands in a text that was there before it
        place = finder.piece.source.calls()[static_cast<std::size_t>(place.call)].place;
    return place;
}

Place before(const Place &place) { return {place.file, place.begin, place.begin, place.call}; }

Place behind(const Place &place) { return {place.file, place.end, place.end, place.call}; }

std::vector<Edit> take_out(const Finder &finder, const Place &place)
{
    const std::string_view rest     = text_behind(finder, place);
    const std::string_view earlier  = text_before(finder, place);
    const auto             is_empty = [](std::string_view text) { return std::all_of(text.begin(), text.end(), is_blank); };
    Place                  gone     = place;
    if (is_empty(rest) && is_empty(earlier)) {
        gone.begin -= earlier.size();
        gone.end += rest.size() + (char_at(finder, gone.file, gone.end + rest.size()) == '\n' ? 1 : 0);
        const File &file = file_of(finder, gone);
        gone.end         = std::min<std::uint64_t>(gone.end, file.skipped + file.text.size());
    } else if (!rest.empty() && is_blank(rest.front())) {
        ++gone.end;
    }
    return {{gone, {}}};
}

std::int32_t index_of(const Finder &finder, const Block &block)
{
    return static_cast<std::int32_t>(&block - finder.piece.blocks.data());
}

std::string name_of(const Finder &finder, const Block &block)
{
    const std::uint32_t number = block.written ? block.number : static_cast<std::uint32_t>(index_of(finder, block)) + 1;
    return "block " + std::to_string(number) + " (i" + std::to_string(block.instrument) + ")";
}

std::string name_of(const Section &section)
{
    std::string name{"p"};
    return name += std::to_string(section.pfield);
}

std::string name_of_command(const Command &command) { return name_of_code(command.code); }

Place end_of_section(const Finder &finder, const Block &block, std::size_t index)
{
    if (index + 1 < block.sections.size())
        return before(outermost(finder, block.sections[index + 1].place));
    return behind(outermost(finder, block.place));
}

std::string quoted(std::string_view text)
{
    std::string result(1, '"');
    result += text;
    result += '"';
    return result;
}

} // namespace orlo::explain

// A comment belongs to the block in which it stands, or to the one that follows it; before the first block it belongs to all. One
// in an included file stands where the directive stands.

#include "explain/hints/hints.h"

#include <algorithm>
#include <cstring>

namespace orlo::explain {
namespace {

constexpr std::string_view MARK  = "orlo:";
constexpr std::string_view QUIET = "quiet";

constexpr std::size_t MOST_BYTES = 1000; // of a comment that are looked at

bool is_space(char c) { return c == ' ' || c == '\t' || c == '\r'; }

std::string_view next_word(std::string_view &text)
{
    const auto begin = std::find_if_not(text.begin(), text.end(), is_space);
    const auto end   = std::find_if(begin, text.end(), is_space);
    const auto word  = text.substr(static_cast<std::size_t>(begin - text.begin()), static_cast<std::size_t>(end - begin));
    text.remove_prefix(static_cast<std::size_t>(end - text.begin()));
    return word;
}

struct Silence {
    std::string   name;
    std::int32_t  file;
    std::uint64_t at;
};

// comment -> ";" "orlo:" "quiet" { name }
void add_silences(std::vector<Silence> &silences, std::string_view comment, std::int32_t file, std::uint64_t at)
{
    if (next_word(comment) != MARK || next_word(comment) != QUIET)
        return;
    for (std::string_view name = next_word(comment); !name.empty(); name = next_word(comment))
        silences.push_back({std::string{name}, file, at});
}

void find_in_file(std::vector<Silence> &silences, const File &file, std::int32_t index)
{
    const std::string_view text{file.text};
    for (std::size_t at = text.find(';'); at != std::string_view::npos; at = text.find(';', at + 1)) { // each one once
        const std::string_view rest = text.substr(at + 1, MOST_BYTES);
        add_silences(silences, rest.substr(0, rest.find('\n')), index, at + file.skipped);
    }
}

// where a file is included, seen from the piece
void lift_to_piece(const Finder &finder, Silence &silence)
{
    while (silence.file > 0) { // to a file that was opened before it
        const Place included = finder.piece.source.files()[static_cast<std::size_t>(silence.file)].included;
        silence.file         = included.file;
        silence.at           = included.begin;
    }
}

// the text of a block in the piece
Place place_in_piece(const Finder &finder, const Block &block)
{
    Place place = outermost(finder, block.place);
    while (place.file > 0) // to a file that was opened before it
        place = outermost(finder, finder.piece.source.files()[static_cast<std::size_t>(place.file)].included);
    return place;
}

// the block that a comment is for: its index; that behind the last for one behind all; NONE for the whole piece
std::int32_t block_of(const std::vector<Place> &places, const Silence &silence)
{
    const auto ends_before = [&silence](const Place &place) { return place.end <= silence.at; };
    const auto block       = std::partition_point(places.begin(), places.end(), ends_before);
    if (block == places.begin() && (places.empty() || silence.at < places.front().begin))
        return NONE;
    return static_cast<std::int32_t>(block - places.begin());
}

} // namespace

void keep_quiet(Finder &finder)
{
    std::vector<Silence> silences;
    for (std::size_t i = 0; i < finder.piece.source.files().size(); ++i)
        find_in_file(silences, finder.piece.source.files()[i], static_cast<std::int32_t>(i));
    if (silences.empty() || finder.found.empty())
        return;
    std::vector<Place> places;
    for (const Block &block : finder.piece.blocks)
        places.push_back(place_in_piece(finder, block));
    for (Silence &silence : silences) {
        lift_to_piece(finder, silence);
        const std::int32_t block = block_of(places, silence);
        std::erase_if(finder.found, [&](const Hint &hint) {
            return name_of(hint.kind) == silence.name && (block == NONE || hint.block == block);
        });
    }
}

} // namespace orlo::explain

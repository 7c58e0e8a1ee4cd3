// A MIDI file has whole velocities and keys from 0 to 127: the least and the greatest value of p4 and p5 tell what becomes of them.
// What it leaves out is not read by anybody, so blocks are counted by how their headers look.

#include "explain/hints/hints.h"

#include <algorithm>
#include <cmath>

namespace orlo::explain {
namespace {

constexpr double VELOCITIES = 127.0 / 32767.0; // in an amplitude
constexpr double HIGHEST    = 127.0;           // velocity and key
constexpr char   FACTOR[]   = "pf(258.01)";    // makes an amplitude of a velocity

bool is_digit(char c) { return c >= '0' && c <= '9'; }

const Section *section_of(const Block &block, std::int32_t pfield)
{
    const auto found = std::find_if(block.sections.begin(), block.sections.end(),
                                    [pfield](const Section &section) { return section.pfield == pfield; });
    return found == block.sections.end() ? nullptr : &*found;
}

std::size_t skip_blanks(std::string_view text, std::size_t at) { return std::min(text.find_first_not_of(" \t", at), text.size()); }

// behind "p4" and its output type
std::vector<Edit> scale(const Finder &finder, const Section &section)
{
    const std::string_view text = text_at(finder, section.place);
    const bool             has_factor =
        std::any_of(section.commands.begin(), section.commands.end(), [](const Command &command) { return !command.span; });
    if (!is_plain(section.place) || has_factor || !text.starts_with("p4"))
        return {};
    std::size_t at = skip_blanks(text, 2);
    if (at < text.size() && text[at] == '(')
        at = std::min(text.find(')', at), text.size() - 1) + 1;
    else
        at = 2;
    const std::uint64_t place = section.place.begin + at;
    return {{{section.place.file, place, place, NONE}, std::string{" "} + FACTOR}};
}

std::string range_of(double least, double greatest)
{
    return least == greatest ? decimal_text(least) : decimal_text(least) + " to " + decimal_text(greatest);
}

void look_at_velocities(Finder &finder, const Block &block, const Section &section)
{
    const Statistics &values = section.statistics;
    const double      least = values.least * VELOCITIES, greatest = values.greatest * VELOCITIES;
    if (values.count == 0 || section.no_numbers > 0)
        return;
    if (values.greatest >= 1.0 && greatest < 1.0 && least > -1.0)
        add(finder, {HintKind::midi_velocity, "all velocities are 0: the file is silent",
                     "p4 is an amplitude up to 32767, which becomes a velocity up to 127; " +
                         range_of(values.least, values.greatest) + " is below 258, which would be 1",
                     section.place, index_of(finder, block),
                     values.greatest <= HIGHEST && values.least >= 0.0 ? scale(finder, section) : std::vector<Edit>{}});
    else if (greatest >= HIGHEST + 1.0)
        add(finder, {HintKind::midi_velocity,
                     "velocities go up to " + decimal_text(std::trunc(greatest), 0) + ", and the highest is 127",
                     "p4 is an amplitude up to 32767, and goes up to " + decimal_text(values.greatest),
                     section.place,
                     index_of(finder, block),
                     {}});
    else if (least <= -1.0)
        add(finder, {HintKind::midi_velocity,
                     "velocities go down to " + decimal_text(std::trunc(least), 0) + ", and the lowest is 0",
                     "p4 is an amplitude from 0 to 32767, and goes down to " + decimal_text(values.least),
                     section.place,
                     index_of(finder, block),
                     {}});
}

void look_at_keys(Finder &finder, const Block &block, const Section &section)
{
    const auto least    = static_cast<double>(section.sounds);
    const bool too_low  = section.sounding && least <= -1.0;
    const bool too_high = section.statistics.count > 0 && section.statistics.greatest >= HIGHEST + 1.0;
    if (too_low)
        add(finder, {HintKind::midi_key,
                     "keys go down to " + decimal_text(std::trunc(least), 0) + ", and the lowest is 0",
                     "p5 is in semitones, with 60 for middle C, and a key below 0 is written as it comes",
                     section.place,
                     index_of(finder, block),
                     {}});
    else if (too_high)
        add(finder, {HintKind::midi_key,
                     "keys go up to " + decimal_text(std::trunc(section.statistics.greatest), 0) + ", and the highest is 127",
                     "p5 is in semitones, with 60 for middle C, and keys above 127 start again from 0",
                     section.place,
                     index_of(finder, block),
                     {}});
}

// header -> "i" ( digit | "-" | "$" ) ... "=", at the beginning of a line
bool looks_like_header(std::string_view line)
{
    if (line.size() < 2 || line[0] != 'i')
        return false;
    const std::size_t number = skip_blanks(line, 1);
    return number < line.size() && (is_digit(line[number]) || line[number] == '-' || line[number] == '$') &&
           line.find('=') != std::string_view::npos;
}

void look_for_blocks(Finder &finder, const Block &first)
{
    const Place end = outermost(finder, first.place);
    if (end.file == NONE)
        return;
    const File       &file  = file_of(finder, end);
    const std::string rest  = without_comments(std::string_view{file.text}.substr(offset(file, end.end)));
    std::uint64_t     count = 0;
    Place             place;
    for (std::size_t at = rest.find('\n'); at < rest.size(); at = rest.find('\n', at)) { // each round takes a line
        at                          = skip_blanks(rest, at + 1);
        const std::string_view line = std::string_view{rest}.substr(at, rest.find('\n', at) - at);
        if (looks_like_header(line) && count++ == 0)
            place = {end.file, end.end + at, end.end + at + line.find_last_not_of(" \t", line.find('=') - 1) + 1, NONE};
    }
    if (count == 0)
        return;
    const bool empty = first.skipped || !first.written;
    add(finder,
        {HintKind::midi_blocks,
         counted(count, "block") + (count == 1 ? " is" : " are") + " left out of the MIDI file" + (empty ? ", which is empty" : ""),
         "a MIDI file is made of the first block alone, " + name_of(finder, first) +
             (first.skipped   ? ", which is muted"
              : first.written ? ""
                              : ", which has no notes") +
             "; what follows is not read, and is counted by its headers",
         place,
         NONE,
         {}});
}

} // namespace

void look_at_midi(Finder &finder)
{
    if (!finder.midi || finder.piece.blocks.empty())
        return;
    const Block &first = finder.piece.blocks.front();
    if (!first.closed || first.recovered)
        return;
    look_for_blocks(finder, first);
    if (!first.written)
        return;
    if (const Section *levels = section_of(first, 4))
        look_at_velocities(finder, first, *levels);
    if (const Section *keys = section_of(first, 5))
        look_at_keys(finder, first, *keys);
}

} // namespace orlo::explain

// A note is printed by its columns, which stand as one text each: they are cut up in the order of the notes.

#include "export/read_music.h"

#include "base/codes.h"
#include "gather/words.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace orlo::exporting {
namespace {

constexpr std::size_t LONGEST_NAME = 16; // of a note that is written with its name
constexpr std::size_t FIRST_FIELD  = 2;  // index of p4 among the p-fields from p2 on

// values in semitones and amplitudes by what they are written and printed as
Meaning meaning_of(const gather::Section &section)
{
    switch (section.output) {
    case TYPE_HZ:
    case TYPE_OP:
    case TYPE_OD:
    case TYPE_BN:
        return Meaning::semitones;
    case TYPE_DB:
        return Meaning::amplitude;
    default:
        break;
    }
    const auto has = [&section](std::int32_t code) {
        return std::any_of(section.inputs.begin(), section.inputs.end(),
                           [code](const gather::Input &input) { return input.code == code; });
    };
    if (has(TYPE_NO) || has(TYPE_OP))
        return Meaning::semitones;
    return has(TYPE_DB) ? Meaning::amplitude : Meaning::number;
}

std::vector<Field> fields_of(const gather::Block &block)
{
    std::vector<Field> fields(static_cast<std::size_t>(std::max(block.pfields - 3, 0)));
    for (std::size_t i = 0; i < fields.size(); ++i)
        fields[i].number = static_cast<int>(i) + 4;
    for (const gather::Section &section : block.sections)
        if (section.pfield > 3 && section.pfield <= block.pfields) {
            Field &field  = fields[static_cast<std::size_t>(section.pfield) - 4];
            field.meaning = meaning_of(section);
            field.type    = gather::name_of_code(section.output);
        }
    return fields;
}

// a text without blanks at its ends
std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r";
    const std::size_t          begin  = text.find_first_not_of(blanks);
    return begin == std::string_view::npos ? std::string_view{} : text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

// the comment behind the head of a block, on the line where it ends
std::string comment_of(const gather::Piece &piece, const gather::Block &block)
{
    const gather::Place &place = block.header.length;
    if (place.file == gather::NONE || place.call != gather::NONE)
        return {};
    const gather::File    &file = piece.source.files()[static_cast<std::size_t>(place.file)];
    const std::string_view rest = std::string_view{file.text}.substr(place.end - file.skipped);
    const std::string_view line = rest.substr(0, rest.find('\n'));
    const std::size_t      mark = line.find(';');
    return mark == std::string_view::npos ? std::string{} : std::string{trimmed(line.substr(mark + 1))};
}

using Parts = std::map<std::int32_t, std::int32_t>; // index by the number of an instrument

std::int32_t part_of(Music &music, Parts &parts, std::int32_t instrument)
{
    const auto [found, is_new] = parts.try_emplace(instrument, static_cast<std::int32_t>(music.parts.size()));
    if (is_new)
        music.parts.push_back({std::to_string(instrument), instrument});
    return found->second;
}

// Where the values of a section are written.
struct Origins {
    const gather::Section     *section;
    std::vector<std::uint64_t> starts; // first value of each run

    explicit Origins(const gather::Section *of) : section{of}
    {
        std::uint64_t first = 0;
        for (const gather::Run &run : section->runs) {
            starts.push_back(first);
            first += run.count;
        }
    }

    // the value that a run's value repeats; itself for one that is written or generated
    [[nodiscard]] std::uint64_t original(const gather::Run &run, std::uint64_t index) const
    {
        const std::uint64_t cycle = std::max<std::uint64_t>(run.cycle, 1);
        return run.loop.empty() ? run.of + index % cycle : run.loop[static_cast<std::size_t>(index % run.loop.size())];
    }

    [[nodiscard]] gather::Place place_of(std::uint64_t value) const
    {
        for (;;) { // each round goes to an earlier value
            const auto next = std::upper_bound(starts.begin(), starts.end(), value);
            if (next == starts.begin())
                return section->place;
            const auto          run_index = static_cast<std::size_t>(next - starts.begin()) - 1;
            const gather::Run  &run       = section->runs[run_index];
            const std::uint64_t index     = value - starts[run_index];
            if (run.kind == gather::Kind::literal)
                return section->places[run.places + static_cast<std::size_t>(index)];
            if (run.kind == gather::Kind::generator)
                return section->commands[run.command].place;
            const std::uint64_t earlier = original(run, index);
            if (earlier >= value)
                return section->place;
            value = earlier;
        }
    }
};

// name -> letter { "s" | "f" | "n" | "+" | "-" } [ octave ]
NoteName name_in(std::string_view text)
{
    NoteName name;
    if (text.empty())
        return name;
    const auto letter = static_cast<char>(text.front() | 0x20); // in lower case
    if (letter < 'a' || letter > 'g')
        return name;
    for (const char c : text.substr(1))
        name.alter += c == 's' ? 1.0F : c == 'f' ? -1.0F : c == '+' ? 0.5F : c == '-' ? -0.5F : 0.0F;
    name.step = letter;
    return name;
}

// the name that a value was written with
NoteName name_of(const gather::Piece &piece, const gather::Place &place)
{
    if (place.file == gather::NONE)
        return {};
    const gather::File &file = piece.source.files()[static_cast<std::size_t>(place.file)];
    if (place.begin < file.skipped || place.end - file.skipped > file.text.size() || place.end - place.begin > LONGEST_NAME)
        return {};
    return name_in(std::string_view{file.text}.substr(place.begin - file.skipped, place.end - place.begin));
}

// the outermost text of a note: that of the value that it got for a p-field
void set_place(Note &note, gather::Piece &piece, gather::Place place)
{
    while (place.call != gather::NONE) // a call stands in a text that was there before it
        place = piece.source.calls()[static_cast<std::size_t>(place.call)].place;
    if (place.file == gather::NONE)
        return;
    note.file = place.file;
    note.line = static_cast<std::int32_t>(piece.source.position(place.file, place.begin).line) + 1;
}

// the section by which the line of a note is known: the first with pitches, else p2
const gather::Section &telling_section(const gather::Block &block)
{
    for (const gather::Section &section : block.sections)
        if (section.pfield > 3 && meaning_of(section) == Meaning::semitones)
            return section;
    return block.sections.front();
}

// values of a section may be written as names of notes
bool has_names(const gather::Section &section)
{
    return section.pfield > 3 && std::any_of(section.inputs.begin(), section.inputs.end(),
                                             [](const gather::Input &input) { return input.code == TYPE_NO; });
}

// beats of an event's interval
double interval_of(const gather::Block &block, std::uint32_t value)
{
    const std::vector<float> &read = block.sections.front().read;
    return value < read.size() ? std::fabs(static_cast<double>(read[value])) : NOTHING;
}

// the texts of a column, one after the other
struct Cutter {
    const gather::Column *column; // null: there is none
    std::size_t           at    = 0;
    std::size_t           index = 0;

    std::string next()
    {
        if (column == nullptr || index >= column->lengths.size())
            return {};
        const std::size_t length = column->lengths[index++];
        at += length;
        return std::string{trimmed(std::string_view{column->text}.substr(at - length, length))};
    }
};

void add_notes(Music &music, gather::Piece &piece, const gather::Block &block, std::int32_t index)
{
    const gather::Events &events  = *block.notes;
    const std::size_t     columns = events.values.size();
    std::vector<Cutter>   cutters;
    for (std::size_t p = FIRST_FIELD; p < columns; ++p)
        cutters.push_back({events.printed.empty() ? nullptr : &events.printed[p]});
    const Origins     origins{&telling_section(block)};
    const bool        named = has_names(*origins.section);
    const std::size_t told  = static_cast<std::size_t>(origins.section->pfield) - 2;
    for (std::size_t i = 0; i < events.count; ++i) {
        Note note{};
        note.start                = static_cast<double>(events.values[0][i]);
        note.duration             = static_cast<double>(events.values[1][i]);
        note.beat                 = static_cast<double>(events.beat[i]);
        note.beats                = static_cast<double>(events.beats[i]);
        note.part                 = music.blocks.back().part;
        note.block                = index;
        note.file                 = NONE;
        note.first                = music.values.size();
        note.count                = static_cast<std::int32_t>(columns - FIRST_FIELD);
        note.interval             = interval_of(block, events.origins[0][i]);
        const gather::Place place = origins.place_of(events.origins[told][i]);
        if (named)
            note.name = name_of(piece, place);
        set_place(note, piece, place);
        for (std::size_t p = FIRST_FIELD; p < columns; ++p) {
            music.values.push_back(static_cast<double>(events.values[p][i]));
            music.printed.push_back(cutters[p - FIRST_FIELD].next());
        }
        music.notes.push_back(note);
    }
}

} // namespace

Music music_of(gather::Piece &piece)
{
    Music music;
    Parts parts;
    for (const gather::File &file : piece.source.files())
        music.files.push_back(file.name);
    for (const gather::Block &block : piece.blocks) {
        if (!block.written || !block.notes)
            continue;
        const auto index = static_cast<std::int32_t>(music.blocks.size());
        music.blocks.push_back({block.number, part_of(music, parts, block.instrument), static_cast<double>(block.seconds),
                                static_cast<double>(block.start), music.notes.size(), block.notes->count, fields_of(block),
                                comment_of(piece, block)});
        add_notes(music, piece, block, index);
    }
    return music;
}

} // namespace orlo::exporting

// Notes that are read as something else are known by two signs: what the parsers took for a value or a letter ends in the middle of
// a word, and the whole word is a note in another spelling. A word of two notes in a row without blanks is none where other words
// of its section are.

#include "base/codes.h"
#include "explain/hints/hints.h"
#include "explain/hints/note_words.h"
#include "input/character_set.h"
#include "input/line_reader.h"
#include "input/names.h"

#include <algorithm>
#include <set>
#include <tuple>

namespace orlo::explain {
namespace {

constexpr std::size_t MOST_LOOKED  = 2000;  // bytes up to an error
constexpr std::size_t MOST_LETTERS = 10000; // of generators

constexpr CharacterSet accidentals = set_of("sfn");

// [ octave ], which may be the call of a macro or of an argument
bool is_octave(std::string_view text)
{
    return text.empty() || (text.size() == 1 && is_digit(text[0])) ||
           (text.size() > 1 && text[0] == '$' && std::all_of(text.begin() + 1, text.end(), is_name_char));
}

// another spelling of a flat: a note, then "b" or "es", with an octave behind either
struct Flat {
    bool        is_one = false;
    std::string mended;
};

Flat flat_of(std::string_view first, std::string_view second)
{
    if (first.empty() || !NOTE_LETTERS.has(first[0]) || second.empty())
        return {};
    const std::string_view octave = first.substr(1);
    if (octave.empty() && (second[0] == 'b' || second[0] == 'B') && is_octave(second.substr(1)))
        return {true, altered(first[0], "f", second.substr(1))};
    if (octave.empty() && second.starts_with("es") && is_octave(second.substr(2)))
        return {true, altered(first[0], "f", second.substr(2))};
    if (octave.size() == 1 && is_digit(octave[0]) && second == "b")
        return {true, altered(first[0], "f", octave)};
    return {};
}

bool has_octave(std::string_view word) { return is_digit(word.back()) || word.find('$') != std::string_view::npos; }

// the two words as one
Place whole_of(const Joined &joined) { return {joined.first.file, joined.first.begin, joined.second.end, joined.first.call}; }

bool is_of_notes(const Joined &joined) { return joined.input == TYPE_NO && joined.input_of_first == TYPE_NO; }

Flat flat_of(const Finder &finder, const Joined &joined)
{
    const Place place = whole_of(joined);
    if (!begins_word(finder, place, place.call != NONE) || !ends_word(finder, place, place.call != NONE))
        return {};
    return flat_of(text_at(finder, joined.first), text_at(finder, joined.second));
}

// where notes are written without blanks on purpose
struct Runs {
    bool                                             any = false;
    std::set<std::tuple<std::int32_t, std::int32_t>> sections; // by block and p-field
};

Runs runs_of(const Finder &finder)
{
    Runs runs;
    for (const Joined &joined : finder.piece.joined)
        if (is_of_notes(joined) && !flat_of(finder, joined).is_one) {
            runs.any = true;
            runs.sections.insert({joined.block, joined.pfield});
        }
    return runs;
}

void look_at_joined(Finder &finder, std::vector<Words> &all)
{
    const Runs runs = runs_of(finder);
    for (const Joined &joined : finder.piece.joined) {
        if (!is_of_notes(joined) || runs.sections.count({joined.block, joined.pfield}) != 0)
            continue;
        const Flat        flat  = flat_of(finder, joined);
        const Place       place = whole_of(joined);
        const std::string word{text_at(finder, place)};
        if (!flat.is_one || (runs.any && !has_octave(word)))
            continue;
        add_word(all, HintKind::flat_by_b, joined.block, joined.pfield, {place, flat.mended},
                 quoted(word) + " is read as two notes, " + std::string{text_at(finder, joined.first)} + " and " +
                     std::string{text_at(finder, joined.second)},
                 "notes need no blank between them, and a flat is written with f: " + flat.mended);
    }
}

// whether an error stands behind a place, with blanks between, and at a note
bool fails_at_note(const Finder &finder, const Place &place)
{
    for (const Diagnostic &diagnostic : finder.piece.diagnostics) {
        const Place &at = diagnostic.place;
        if (diagnostic.severity != Severity::error || at.file != place.file || at.call != place.call || at.begin < place.end ||
            at.begin - place.end > MOST_LOOKED)
            continue;
        const std::string_view rest = text_behind(finder, place).substr(0, static_cast<std::size_t>(at.begin - place.end));
        return rest.size() == at.begin - place.end && std::all_of(rest.begin(), rest.end(), is_blank) &&
               NOTE_LETTERS.has(char_at(finder, at.file, at.begin));
    }
    return false;
}

// "db" among notes
void look_at_type(Finder &finder, std::vector<Words> &all, std::int32_t block, const Section &section, const gather::Input &type)
{
    Place place = type.place;
    if (place.file == NONE || place.end != place.begin + 2 || !begins_word(finder, place, place.call != NONE))
        return;
    const bool has_digit = is_digit(char_at(finder, place.file, place.end));
    if (has_digit)
        ++place.end;
    if (!ends_word(finder, place, place.call != NONE) || (!has_digit && !fails_at_note(finder, place)))
        return;
    const std::string word{text_at(finder, place)};
    std::string       mended{word};
    mended[1] = 'f';
    add_word(all, HintKind::flat_by_b, block, section.pfield, {place, mended},
             quoted(word) + " is read as the input type db" + (has_digit ? ", and the value " + word.substr(2) : ""),
             "the type db stands before decibels, and a flat is written with f: " + mended);
}

void look_at_types(Finder &finder, std::vector<Words> &all)
{
    for (const Block &block : finder.piece.blocks)
        for (const Section &section : block.sections)
            for (std::size_t i = 1; i < section.inputs.size() && finder.found.size() < MOST_HINTS; ++i)
                if (section.inputs[i].code == TYPE_DB && section.inputs[i - 1].code == TYPE_NO)
                    look_at_type(finder, all, index_of(finder, block), section, section.inputs[i]);
}

// letters of distributions and curves

struct Field {
    const Block   &block;
    const Section &section;
    const Command &command;
};

// what is said of both kinds of letters
struct Kind {
    HintKind         hint;
    std::string_view name;
    std::string_view letters; // that are notes as well, and follow a letter without a blank by mistake alone
    std::string_view reason;
};

constexpr Kind ranges{
    HintKind::range_letter, "a distribution", "bg",
    "a range may begin with the letter of a distribution, and the letters win over notes: write one before the note"};
constexpr Kind curves{HintKind::curve_letter, "a curve", "e",
                      "a motion may begin with the letter of a curve, and the letters win over notes: write one before the note"};

// the rest of the word behind a letter
Place rest_of_word(const Finder &finder, const Place &letter)
{
    Place rest = behind(letter);
    while (is_name_char(char_at(finder, rest.file, rest.end)) || char_at(finder, rest.file, rest.end) == '$')
        ++rest.end;
    return rest;
}

// whether a rest makes a note of the letter before it: accidentals, then an octave
bool makes_note(const Kind &kind, char letter, std::string_view rest)
{
    const auto        octave    = std::find_if_not(rest.begin(), rest.end(), [](char c) { return accidentals.has(c); });
    const std::size_t altered   = static_cast<std::size_t>(octave - rest.begin());
    const bool        also_note = altered > 0 && rest[0] == 'f'; // f3 is one itself
    if (also_note && kind.letters.find(lower(letter)) == std::string_view::npos)
        return false;
    return altered < rest.size() || altered > 0 ? is_octave(rest.substr(altered)) : false;
}

void look_at_letter(Finder &finder, const Field &field, const Letter &letter)
{
    const Place &place = letter.place;
    if (place.file == NONE || place.end != place.begin + 1 || !NOTE_LETTERS.has(char_at(finder, place.file, place.begin)))
        return;
    const Kind       &kind = letter.part == Part::range ? ranges : curves;
    const Place       rest = rest_of_word(finder, place);
    const std::string read{text_at(finder, place)};
    const std::string behind_it{text_at(finder, rest)};
    const Place       whole{place.file, place.begin, rest.end, place.call};
    const std::string word       = read + behind_it;
    const bool        whole_text = field.command.place.call == place.call && field.command.place.file == place.file;
    const Flat        flat       = kind.letters.find(lower(read[0])) == std::string_view::npos ? Flat{} : flat_of(read, behind_it);
    const bool        note       = makes_note(kind, read[0], behind_it);
    if (!flat.is_one && !note)
        return;
    Hint hint{flat.is_one ? HintKind::flat_by_b : kind.hint,
              quoted(word) + " is read as the letter " + read + " of " + std::string{kind.name} + ", and " + behind_it,
              std::string{kind.reason} + ", such as f",
              whole,
              index_of(finder, field.block),
              {}};
    if (flat.is_one)
        hint.reason = "a flat is written with f, and before a note that begins with " + read + " stands a letter, such as f";
    if (whole_text && flat.is_one)
        hint.edits = {{whole, "f " + flat.mended}};
    else if (whole_text)
        hint.edits = {{before(whole), "f "}};
    add(finder, std::move(hint));
}

void look_at_generators(Finder &finder)
{
    std::size_t looked = 0;
    for (const Block &block : finder.piece.blocks)
        for (const Section &section : block.sections)
            for (const Command &command : section.commands)
                for (const Set &set : command.sets)
                    for (const Letter &letter : set.letters)
                        if (command.input == TYPE_NO && looked++ < MOST_LETTERS)
                            look_at_letter(finder, {block, section, command}, letter);
}

} // namespace

void look_at_letters(Finder &finder)
{
    std::vector<Words> words;
    look_at_joined(finder, words);
    look_at_types(finder, words);
    add_words(finder, words);
    look_at_generators(finder);
}

} // namespace orlo::explain

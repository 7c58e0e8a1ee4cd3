// Notes that are read as something else are known by two signs: what the parsers took for a value or a letter ends in the middle of
// a word, and the whole word is a note in another spelling. A word of two notes in a row without blanks is none where other words
// of its section are.

#include "base/codes.h"
#include "explain/hints/hints.h"
#include "input/character_set.h"
#include "input/line_reader.h"
#include "input/names.h"

#include <algorithm>
#include <optional>
#include <set>
#include <tuple>

namespace orlo::explain {
namespace {

constexpr std::size_t MOST_EDITS    = 200;   // of a hint
constexpr std::size_t MOST_LOOKED   = 5000;  // bytes behind an error
constexpr std::size_t MOST_COMPARED = 10000; // letters of generators

constexpr CharacterSet notes       = set_of("abcdefgABCDEFG");
constexpr CharacterSet accidentals = set_of("sfn");

char char_before(const Finder &finder, const Place &place)
{
    return place.begin == 0 ? '\n' : char_at(finder, place.file, place.begin - 1);
}

char char_behind(const Finder &finder, const Place &place, std::uint64_t further = 0)
{
    return char_at(finder, place.file, place.end + further);
}

// whether a word begins, or ends, beside a character; "#" encloses the bodies of macros
bool parts(char c, bool in_macro) { return !is_name_char(c) && c != '.' && c != '$' && c != '~' && (c != '#' || in_macro); }

bool begins_word(const Finder &finder, const Place &place) { return parts(char_before(finder, place), place.call != NONE); }

bool ends_word(const Finder &finder, const Place &place)
{
    const char next = char_behind(finder, place);
    if (next == 'x')
        return is_digit(char_behind(finder, place, 1)); // a repeat
    return next != '+' && next != '-' && parts(next, place.call != NONE);
}

// [ octave ], which may be the call of a macro or of an argument
bool is_octave(std::string_view text)
{
    return text.empty() || (text.size() == 1 && is_digit(text[0])) ||
           (text.size() > 1 && text[0] == '$' && std::all_of(text.begin() + 1, text.end(), is_name_char));
}

std::string quoted(std::string_view text)
{
    std::string result(1, '"');
    result += text;
    result += '"';
    return result;
}

// Hints that are about many words of a section are one hint, with an edit for each.
struct Words {
    HintKind                                          kind;
    std::int32_t                                      block;
    std::int32_t                                      pfield;
    std::string                                       text;   // of the first word
    std::string                                       reason; // of it
    std::vector<Edit>                                 edits;
    std::set<std::tuple<std::int32_t, std::uint64_t>> begins; // of words that are there already
};

void add_word(std::vector<Words> &all, HintKind kind, std::int32_t block, std::int32_t pfield, const Edit &edit,
              const std::string &text, const std::string &reason)
{
    const bool fits = !all.empty() && all.back().kind == kind && all.back().block == block && all.back().pfield == pfield &&
                      all.back().edits.front().place.file == edit.place.file;
    if (!fits)
        all.push_back({kind, block, pfield, text, reason, {}, {}});
    Words &words = all.back();
    if (words.begins.insert({edit.place.file, edit.place.begin}).second && words.edits.size() < MOST_EDITS)
        words.edits.push_back(edit);
}

void add_words(Finder &finder, std::vector<Words> &all)
{
    const auto earlier = [](const Edit &a, const Edit &b) { return a.place.begin < b.place.begin; };
    for (Words &words : all) {
        const Place       place = words.edits.front().place;
        const std::size_t more  = words.begins.size() - 1;
        if (more > 0)
            words.text += more == 1 ? ", and so is another" : ", and so are " + std::to_string(more) + " others";
        std::sort(words.edits.begin(), words.edits.end(), earlier);
        add(finder, {words.kind, words.text, words.reason, place, words.block, std::move(words.edits)});
    }
}

// a note as it should be written
std::string altered(char letter, std::string_view accidental, std::string_view octave)
{
    std::string note(1, letter);
    note += accidental;
    note += octave;
    return note;
}

// flats

// another spelling of a flat: a note, then "b" or "es", with an octave behind either
struct Flat {
    bool        is_one = false;
    std::string mended;
};

Flat flat_of(std::string_view first, std::string_view second)
{
    if (first.empty() || !notes.has(first[0]) || second.empty())
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
    if (!begins_word(finder, place) || !ends_word(finder, place))
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
               notes.has(char_at(finder, at.file, at.begin));
    }
    return false;
}

// "db" among notes
void look_at_type(Finder &finder, std::vector<Words> &all, std::int32_t block, const Section &section, const Input &type)
{
    Place place = type.place;
    if (place.file == NONE || place.end != place.begin + 2 || !begins_word(finder, place))
        return;
    const bool has_digit = is_digit(char_behind(finder, place));
    if (has_digit)
        ++place.end;
    if (!ends_word(finder, place) || (!has_digit && !fails_at_note(finder, place)))
        return;
    const std::string word{text_at(finder, place)};
    std::string       mended{word};
    mended[1] = 'f';
    add_word(all, HintKind::flat_by_b, block, section.pfield, {place, mended},
             quoted(word) + " is read as the input type db" + (has_digit ? ", and the value " + word.substr(2) : ""),
             "db stands before decibels, and a flat is written with f: " + mended);
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
    if (place.file == NONE || place.end != place.begin + 1 || !notes.has(char_at(finder, place.file, place.begin)))
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
                        if (command.input == TYPE_NO && looked++ < MOST_COMPARED)
                            look_at_letter(finder, {block, section, command}, letter);
}

// sharps

// The word around a "#": c#4, c#, c4# or #c4.
std::optional<Edit> sharp_at(const Finder &finder, const Place &place)
{
    const auto at   = [&finder, &place](std::uint64_t byte) { return char_at(finder, place.file, byte); };
    Place      word = place;
    word.end        = place.begin + 1;
    std::string note;
    std::string octave;
    if (place.begin > 0 && notes.has(at(place.begin - 1))) {
        note       = at(place.begin - 1);
        word.begin = place.begin - 1;
    } else if (place.begin > 1 && is_digit(at(place.begin - 1)) && notes.has(at(place.begin - 2))) {
        note       = at(place.begin - 2);
        octave     = at(place.begin - 1);
        word.begin = place.begin - 2;
    } else if (notes.has(at(word.end))) {
        note = at(word.end++);
    } else {
        return {};
    }
    if (octave.empty() && is_digit(at(word.end)))
        octave = at(word.end++);
    if (!parts(char_before(finder, word), true) || !ends_word(finder, word))
        return {};
    return Edit{word, altered(note[0], "s", octave)};
}

// the same where the letter of a distribution or of a curve would win over the note
std::optional<Edit> sharp_in_generator(const Finder &finder, const Place &place,
                                       const std::set<std::tuple<std::int32_t, std::uint64_t>> &letters)
{
    std::optional<Edit> edit = sharp_at(finder, place);
    if (edit && letters.count({edit->place.file, edit->place.begin}) != 0)
        edit->text = "f " + edit->text;
    return edit;
}

std::set<std::tuple<std::int32_t, std::uint64_t>> places_of_letters(const Finder &finder)
{
    std::set<std::tuple<std::int32_t, std::uint64_t>> places;
    for (const Block &block : finder.piece.blocks)
        for (const Section &section : block.sections)
            for (const Command &command : section.commands)
                for (const Set &set : command.sets)
                    for (const Letter &letter : set.letters)
                        if (places.size() < MOST_COMPARED)
                            places.insert({letter.place.file, letter.place.begin});
    return places;
}

constexpr char SHARP_REASON[] = "a sharp is written with s, and # is ";

void add_sharp(std::vector<Words> &all, std::int32_t block, const Edit &edit, std::string_view word, std::string_view what,
               std::string_view reason)
{
    add_word(all, HintKind::sharp_by_hash, block, NONE, edit, quoted(word) + " is " + std::string{what},
             SHARP_REASON + std::string{reason} + ": " + edit.text);
}

// the rest of a block behind an error
void add_sharps_behind(const Finder &finder, std::vector<Words> &all, std::int32_t block, const Place &place)
{
    bool comment = false;
    for (std::uint64_t at = place.end; at < place.end + MOST_LOOKED; ++at) {
        const char c = char_at(finder, place.file, at);
        comment      = c != '\n' && (comment || c == ';');
        if (c == '}' && !comment)
            return;
        const std::optional<Edit> edit =
            c == '#' && !comment ? sharp_at(finder, {place.file, at, at + 1, place.call}) : std::nullopt;
        if (edit)
            add_word(all, HintKind::sharp_by_hash, block, NONE, *edit, {}, {});
    }
}

void look_at_sharps(Finder &finder, std::vector<Words> &all)
{
    for (const Sharp &sharp : finder.piece.sharps) {
        if (sharp.place.file == NONE)
            continue;
        const std::optional<Edit> edit = sharp_at(finder, sharp.place);
        if (!edit)
            continue;
        const std::string word{text_at(finder, edit->place)};
        const bool        splits = word.size() == 3 && word[1] == '#';
        add_sharp(all, sharp.block, *edit, word,
                  splits ? "no note" : "read as the note " + edit->text.substr(0, 1) + edit->text.substr(2), "passed over");
    }
    const auto letters = places_of_letters(finder);
    for (const Diagnostic &diagnostic : finder.piece.diagnostics) {
        if (diagnostic.severity != Severity::error || diagnostic.input != TYPE_NO || diagnostic.place.file == NONE)
            continue;
        const Place               place = diagnostic.place;
        const bool                there = char_at(finder, place.file, place.begin) == '#';
        const std::optional<Edit> edit  = there ? sharp_in_generator(finder, place, letters) : std::nullopt;
        if (edit)
            add_sharp(all, diagnostic.block, *edit, text_at(finder, edit->place), "no note", "no part of a note");
        if (!all.empty() && all.back().kind == HintKind::sharp_by_hash && all.back().block == diagnostic.block)
            add_sharps_behind(finder, all, diagnostic.block, edit ? edit->place : place);
    }
}

// The body of a macro ends at the first sharp, and what follows is an error.
void look_at_body(Finder &finder, const Macro &macro, const Place &error)
{
    const std::string_view rest   = text_behind(finder, macro.place);
    const std::size_t      closes = rest.find('#') == std::string_view::npos ? std::string_view::npos : rest.rfind('#');
    if (closes == std::string_view::npos || error.begin - macro.place.end >= rest.size())
        return;
    std::vector<Edit> edits;
    for (std::uint64_t at = macro.place.end - 1; at < macro.place.end + closes; ++at) {
        if (char_at(finder, macro.place.file, at) != '#')
            continue;
        const std::optional<Edit> edit = sharp_at(finder, {macro.place.file, at, at + 1, NONE});
        if (!edit || edits.size() == MOST_EDITS || (!edits.empty() && edit->place.begin < edits.back().place.end))
            return;
        edits.push_back(*edit);
    }
    const Place       place = edits.front().place;
    const std::string word{text_at(finder, place)};
    add(finder, {HintKind::sharp_by_hash, "the # of " + quoted(word) + " ends the macro " + macro.name,
                 "a body stands between two #, and a sharp is written with s: " + edits.front().text, place, NONE, edits});
}

void look_at_bodies(Finder &finder)
{
    for (const Diagnostic &diagnostic : finder.piece.diagnostics) {
        const Place &error = diagnostic.place;
        if (diagnostic.severity != Severity::error || !is_plain(error))
            continue;
        const auto ends_before = [&error](const Macro &macro) {
            return is_plain(macro.place) && macro.place.file == error.file && macro.place.end <= error.begin &&
                   error.begin - macro.place.end < LINE_SIZE;
        };
        const auto found = std::find_if(finder.piece.macros.rbegin(), finder.piece.macros.rend(), ends_before);
        if (found == finder.piece.macros.rend())
            continue;
        const std::string_view between =
            text_behind(finder, found->place).substr(0, static_cast<std::size_t>(error.begin - found->place.end));
        if (std::all_of(between.begin(), between.end(), is_blank))
            look_at_body(finder, *found, error);
    }
}

} // namespace

void look_at_letters(Finder &finder)
{
    std::vector<Words> words;
    look_at_joined(finder, words);
    look_at_types(finder, words);
    look_at_sharps(finder, words);
    add_words(finder, words);
    look_at_bodies(finder);
    look_at_generators(finder);
}

} // namespace orlo::explain

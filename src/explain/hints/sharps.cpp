// Among notes a "#" is passed over as if it were a directive, in a generator it is an error, and in a macro it ends the body.

#include "base/codes.h"
#include "explain/hints/hints.h"
#include "explain/hints/note_words.h"
#include "input/line_reader.h"

#include <algorithm>
#include <optional>

namespace orlo::explain {
namespace {

constexpr std::size_t MOST_LOOKED  = 5000;  // bytes behind an error
constexpr std::size_t MOST_LETTERS = 10000; // of generators

using Places = std::set<std::pair<std::int32_t, std::uint64_t>>; // files and bytes

// The word around a "#": c#4, c#, c4# or #c4.
std::optional<Edit> sharp_at(const Finder &finder, const Place &place, bool in_macro)
{
    const auto at   = [&finder, &place](std::uint64_t byte) { return char_at(finder, place.file, byte); };
    Place      word = place;
    word.end        = place.begin + 1;
    std::string note;
    std::string octave;
    if (place.begin > 0 && NOTE_LETTERS.has(at(place.begin - 1))) {
        note       = at(place.begin - 1);
        word.begin = place.begin - 1;
    } else if (place.begin > 1 && is_digit(at(place.begin - 1)) && NOTE_LETTERS.has(at(place.begin - 2))) {
        note       = at(place.begin - 2);
        octave     = at(place.begin - 1);
        word.begin = place.begin - 2;
    } else if (NOTE_LETTERS.has(at(word.end))) {
        note = at(word.end++);
    } else {
        return {};
    }
    if (octave.empty() && is_digit(at(word.end)))
        octave = at(word.end++);
    if (!begins_word(finder, word, in_macro) || !ends_word(finder, word, in_macro))
        return {};
    return Edit{word, altered(note[0], "s", octave)};
}

// the same where the letter of a distribution or of a curve would win over the note
std::optional<Edit> sharp_in_generator(const Finder &finder, const Place &place, const Places &letters)
{
    std::optional<Edit> edit = sharp_at(finder, place, place.call != NONE);
    if (edit && letters.count({edit->place.file, edit->place.begin}) != 0)
        edit->text = "f " + edit->text;
    return edit;
}

Places places_of_letters(const Finder &finder)
{
    Places places;
    for (const Block &block : finder.piece.blocks)
        for (const Section &section : block.sections)
            for (const Command &command : section.commands)
                for (const Set &set : command.sets)
                    for (const Letter &letter : set.letters)
                        if (places.size() < MOST_LETTERS)
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
            c == '#' && !comment ? sharp_at(finder, {place.file, at, at + 1, place.call}, place.call != NONE) : std::nullopt;
        if (edit)
            add_word(all, HintKind::sharp_by_hash, block, NONE, *edit, {}, {});
    }
}

// whether a line goes to the score as it stands
bool is_direct(std::string_view line)
{
    const std::size_t begin = line.find_first_not_of(" \t");
    return begin != std::string_view::npos && line[begin] == '>';
}

void look_at_words(Finder &finder, std::vector<Words> &all)
{
    for (const Sharp &sharp : finder.piece.sharps) {
        if (sharp.place.file == NONE || char_at(finder, sharp.place.file, sharp.place.begin) != '#' ||
            is_direct(text_before(finder, sharp.place)))
            continue;
        const std::optional<Edit> edit = sharp_at(finder, sharp.place, sharp.place.call != NONE);
        if (!edit)
            continue;
        const std::string word{text_at(finder, edit->place)};
        const bool        splits = word.size() == 3 && word[1] == '#';
        add_sharp(all, sharp.block, *edit, word,
                  splits ? NO_NOTE : "read as the note " + edit->text.substr(0, 1) + edit->text.substr(2),
                  splits ? "no part of a note" : "passed over");
    }
    const auto letters = places_of_letters(finder);
    for (const Diagnostic &diagnostic : finder.piece.diagnostics) {
        if (diagnostic.severity != Severity::error || diagnostic.input != TYPE_NO || diagnostic.place.file == NONE)
            continue;
        const Place               place = diagnostic.place;
        const bool                there = char_at(finder, place.file, place.begin) == '#';
        const std::optional<Edit> edit  = there ? sharp_in_generator(finder, place, letters) : std::nullopt;
        if (edit)
            add_sharp(all, diagnostic.block, *edit, text_at(finder, edit->place), NO_NOTE, "no part of a note");
        if (!all.empty() && all.back().kind == HintKind::sharp_by_hash && all.back().block == diagnostic.block &&
            all.back().edits.front().place.file == place.file)
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
        const std::optional<Edit> edit = sharp_at(finder, {macro.place.file, at, at + 1, NONE}, true);
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

void look_at_sharps(Finder &finder)
{
    std::vector<Words> words;
    look_at_words(finder, words);
    add_words(finder, words);
    look_at_bodies(finder);
}

} // namespace orlo::explain

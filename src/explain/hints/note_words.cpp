#include "explain/hints/note_words.h"

#include "input/line_reader.h"
#include "input/names.h"

#include <algorithm>

namespace orlo::explain {
namespace {

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

} // namespace

bool begins_word(const Finder &finder, const Place &place, bool in_macro) { return parts(char_before(finder, place), in_macro); }

bool ends_word(const Finder &finder, const Place &place, bool in_macro)
{
    const char next = char_behind(finder, place);
    if (next == 'x')
        return is_digit(char_behind(finder, place, 1)); // a repeat
    return next != '+' && next != '-' && parts(next, in_macro);
}

void add_word(std::vector<Words> &all, HintKind kind, std::int32_t block, std::int32_t pfield, const Edit &edit,
              const std::string &text, const std::string &reason)
{
    const bool fits = !all.empty() && all.back().kind == kind && all.back().block == block && all.back().pfield == pfield &&
                      all.back().edits.front().place.file == edit.place.file;
    if (!fits)
        all.push_back({kind, block, pfield, text, reason, {}, {}});
    Words &words = all.back();
    words.mixed  = words.mixed || words.text.ends_with(NO_NOTE) != (text.empty() || text.ends_with(NO_NOTE));
    if (words.begins.insert({edit.place.file, edit.place.begin}).second && words.edits.size() < MOST_EDITS)
        words.edits.push_back(edit);
}

void add_words(Finder &finder, std::vector<Words> &all)
{
    const auto earlier = [](const Edit &a, const Edit &b) { return a.place.begin < b.place.begin; };
    for (Words &words : all) {
        const Place       place = words.edits.front().place;
        const std::size_t more  = words.begins.size() - 1;
        if (more > 0 && !words.mixed)
            words.text += more == 1 ? ", and so is another" : ", and so are " + std::to_string(more) + " others";
        std::sort(words.edits.begin(), words.edits.end(), earlier);
        add(finder, {words.kind, words.text, words.reason, place, words.block, std::move(words.edits)});
    }
}

std::string altered(char letter, std::string_view accidental, std::string_view octave)
{
    std::string note(1, letter);
    note += accidental;
    note += octave;
    return note;
}

} // namespace orlo::explain

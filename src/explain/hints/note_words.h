// note_words.h: words that are notes in another spelling, in the text around what the parsers took. Reads single characters, so
// that a long line costs no more than a short one.
#pragma once

#include "explain/hints/finder.h"
#include "input/character_set.h"

#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orlo::explain {

inline constexpr std::size_t  MOST_EDITS   = 200; // of a hint
inline constexpr CharacterSet NOTE_LETTERS = set_of("abcdefgABCDEFG");

/// Whether a word begins, or ends, with a place. In a macro's body it may stand beside a "#", which encloses the body.
[[nodiscard]] bool begins_word(const Finder &finder, const Place &place, bool in_macro);
[[nodiscard]] bool ends_word(const Finder &finder, const Place &place, bool in_macro);

inline constexpr char NO_NOTE[] = "no note"; // what is said of a word that is an error

/// A note as it is written.
[[nodiscard]] std::string altered(char letter, std::string_view accidental, std::string_view octave);

/// Hints about words of one section are one hint, with an edit for each.
struct Words {
    HintKind                                         kind;
    std::int32_t                                     block;
    std::int32_t                                     pfield;
    std::string                                      text;   // of the first word
    std::string                                      reason; // of it
    std::vector<Edit>                                edits;
    std::set<std::pair<std::int32_t, std::uint64_t>> begins;        // of words that are there already
    bool                                             mixed = false; // others are read otherwise than the first
};

/// Adds a word to the hint that was begun last, or begins another. The text and the reason are those of the first word.
void add_word(std::vector<Words> &all, HintKind kind, std::int32_t block, std::int32_t pfield, const Edit &edit,
              const std::string &text, const std::string &reason);

void add_words(Finder &finder, std::vector<Words> &all);

} // namespace orlo::explain

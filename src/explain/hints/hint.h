// hint.h: what a composer may not have meant, as it is found. The names of hints have their one home here.
#pragma once

#include "explain/gathered.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace orlo::explain {

inline constexpr std::size_t MOST_HINTS = 1000; // of a piece

enum class HintKind {
    late_block,
    seconds_in_p2,
    late_curve,
    cut_span,
    negative_interval,
    backward_starts,
    code_as_duration,
    flat_by_b,
    sharp_by_hash,
    range_letter,
    curve_letter,
    no_rhythm,
    no_number,
    three_decimals,
    decimals_in_whole,
    left_over,
    unreached_loop,
    open_loop,
    held_list,
    values_after_loop,
    event_at_end,
    missing_pfields,
    midi_velocity,
    midi_key,
    midi_blocks,
    same_seed,
    unused_macro,
    unused_constant,
    hidden_macro,
    text_after_block,
    include_elsewhere,
    byte_order_mark,
    no_utf8,
    carriage_returns,
};

struct HintRow {
    HintKind         kind;
    std::string_view name;    // in documents, in "; orlo: quiet NAME", and the anchor of its chapter in the manual
    std::string_view summary; // what it is about
};

inline constexpr HintRow hint_rows[] = {
    {HintKind::late_block, "late-block", "a block that starts elsewhere than others have its beat"},
    {HintKind::seconds_in_p2, "seconds-in-p2", "a span in p2 that ends before its block, or behind it"},
    {HintKind::late_curve, "late-curve", "a curve with * that stops short of its end"},
    {HintKind::cut_span, "cut-span", "a span of more events than there are"},
    {HintKind::negative_interval, "negative-interval", "an interval below 0 in a block of beats"},
    {HintKind::backward_starts, "backward-starts", "a deviation that turns intervals into rests"},
    {HintKind::code_as_duration, "code-as-duration", "a code of p3 that looks like a duration"},
    {HintKind::flat_by_b, "flat-by-b", "a flat that is written with b or es"},
    {HintKind::sharp_by_hash, "sharp-by-hash", "a sharp that is written with #"},
    {HintKind::range_letter, "range-letter", "a note that is read as the letter of a distribution"},
    {HintKind::curve_letter, "curve-letter", "a note that is read as the letter of a curve"},
    {HintKind::no_rhythm, "no-rhythm", "a rhythm of 0, or one with a fraction"},
    {HintKind::no_number, "no-number", "values that are no number, or infinite"},
    {HintKind::three_decimals, "three-decimals", "a constant that loses digits"},
    {HintKind::decimals_in_whole, "decimals-in-whole", "a constant where a whole number has to stand"},
    {HintKind::left_over, "left-over", "values that are left over in a section"},
    {HintKind::unreached_loop, "unreached-loop", "a loop that is never reached"},
    {HintKind::open_loop, "open-loop", "a loop without its end"},
    {HintKind::held_list, "held-list", "a list that ends early, and whose last value is held"},
    {HintKind::values_after_loop, "values-after-loop", "values behind a loop, which come once"},
    {HintKind::event_at_end, "event-at-end", "an event too many, at the end of a block"},
    {HintKind::missing_pfields, "missing-p-fields", "p-fields without a section"},
    {HintKind::midi_velocity, "midi-velocity", "a MIDI file whose velocities are silent or too high"},
    {HintKind::midi_key, "midi-key", "a MIDI file with keys that there are not"},
    {HintKind::midi_blocks, "midi-blocks", "blocks that a MIDI file leaves out"},
    {HintKind::same_seed, "same-seed", "the same chance twice"},
    {HintKind::unused_macro, "unused-macro", "a macro that is never called"},
    {HintKind::unused_constant, "unused-constant", "a constant that is never used"},
    {HintKind::hidden_macro, "hidden-macro", "a parameter with the name of a macro"},
    {HintKind::text_after_block, "text-after-block", "text behind a block, on its last line"},
    {HintKind::include_elsewhere, "include-elsewhere", "a file that would be found from another folder"},
    {HintKind::byte_order_mark, "byte-order-mark", "bytes before the text that editors hide"},
    {HintKind::no_utf8, "no-utf8", "text in another encoding than UTF-8"},
    {HintKind::carriage_returns, "carriage-returns", "line ends that end no line"},
};

static_assert([] {
    for (std::size_t i = 0; i < std::size(hint_rows); ++i)
        if (static_cast<std::size_t>(hint_rows[i].kind) != i)
            return false;
    return true;
}());

constexpr std::string_view name_of(HintKind kind) { return hint_rows[static_cast<std::size_t>(kind)].name; }

/// A change of the text: what stands at a place goes, and something else comes.
struct Edit {
    Place       place;
    std::string text;
};

struct Hint {
    HintKind          kind;
    std::string       text;         // a sentence, without a full stop
    std::string       reason;       // why it is so, with the figures of the piece
    Place             place;        // what it is about
    std::int32_t      block = NONE; // the one that it is about; NONE for the piece
    std::vector<Edit> edits;        // what would mend it, in one file and in the order of their places; none where nothing is sure
};

/// What was found of a piece.
struct Hints {
    std::vector<Hint> list;         // in the order of files and places
    bool              full = false; // MOST_HINTS were found: there may be more
};

} // namespace orlo::explain

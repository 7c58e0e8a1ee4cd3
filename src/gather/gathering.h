// gathering.h: what is known of a run while it is told, and what the functions that are told share. One run at a time.
#pragma once

#include "gather/collector.h"
#include "gather/distinct.h"
#include "gather/piece.h"
#include "gather/ring.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orlo::gather {

using Names = std::map<std::string, std::int32_t, std::less<>>; // an index by its name

/// What a value is of, until something else is told.
struct Source {
    Kind          kind    = Kind::literal;
    std::size_t   command = 0; // of a generator
    Place         place;       // of a repeat, or of the next literal
    std::uint64_t of    = 0;   // the value that is repeated
    std::uint64_t cycle = 1;
};

struct Gathering {
    Piece *piece      = nullptr;
    Detail detail     = Detail::events;
    bool   recovering = false;
    bool   lost       = false; // memory was exhausted

    // what is open
    std::int32_t                          block      = NONE; // index; the last one even after its end
    bool                                  in_block   = false;
    bool                                  in_section = false;
    bool                                  in_command = false;
    Place                                 definition; // of a macro: where it begins
    Macro                                 macro;
    std::vector<std::pair<float, double>> map; // beats and seconds of the tempo map; empty: not known
    std::vector<std::size_t>              open_conditionals;
    Names                                 macros; // by name: index of the one that is in force
    Names                                 constants;
    std::string                           defined_twice; // the name that a definition could not have
    Place                                 last_place;    // of what was read last

    // of the line
    Place       failed_call;      // a call in the text of another one, which could not be made
    std::size_t said_earlier = 0; // diagnostics before the line was read

    // of the section
    std::pair<std::size_t, std::size_t> last_literal{0, 0};   // columns of the last one on the line, where each is not asked for
    float                               last_start = 0.0F;    // seconds, of the event that p2 made last
    Place                               last_value;           // on the line, of a list or a generator, and its type
    std::size_t                         last_value_end   = 0; // its column; 0: there is none
    std::int32_t                        last_value_input = 0;
    bool                                fused            = false; // the last literal is a further member of a chord
    Source                              source;
    bool                                new_source = true; // the next value begins a run
    std::size_t                         set        = 0;
    float                               position = 0.0F, window_low = 0.0F, window_high = 0.0F;
    bool                                walks     = false;
    std::uint64_t                       last_read = 0; // the value that was read or generated last
    std::uint64_t                       chord     = 0; // the first value of the last chord
    std::uint64_t                       members   = 0; // its values, and how many of them have been repeated
    std::uint64_t                       repeated  = 0;
    std::vector<std::uint64_t>          looped;    // values in loops
    std::uint64_t                       drawn = 0; // draws of the sequence so far
    std::vector<Refused>                refused;   // of the next value
    Ring                                ring;
    Distinct                            distinct;

    // of the events
    std::size_t told = 0; // events
};

extern Gathering now;

/// Whether single values are gathered.
[[nodiscard]] bool wants_values();

/// The block, and the section, that were begun last.
[[nodiscard]] Block   &block();
[[nodiscard]] Section &section();

/// The commands of the section, of the block, or of neither: where the next one belongs.
[[nodiscard]] std::vector<Command> &commands();

/// Behind the word, the number or else the character at a column of a text that ends with '\0'; the column at its end.
[[nodiscard]] std::size_t end_of_word(const char *text, std::size_t column);

/// A part of the line.
Place here(std::size_t begin, std::size_t end);

/// A part of the line that belongs to the open section, if there is one.
Place in_section_here(std::size_t begin, std::size_t end);

/// Makes a place reach to a column of the line.
void extend(Place &place, std::size_t end);

/// NONE for a name that there is not.
[[nodiscard]] std::int32_t find(const Names &names, std::string_view name);

/// Whether the last loop has no end yet.
[[nodiscard]] bool loop_is_open();
void               close_loop(Loop &loop, bool open);

/// Makes the section reach to the last literal on the line.
void reach_last_literal();

/// A value stands in the text, in the section's input type; the text before it may be another value.
void join_value(std::size_t begin, std::size_t end);

/// A number ends at a column of the line, which may lie within the text of a constant.
void count_cut(std::size_t end);

/// Type in which values of the open section are written; NONE outside sections.
[[nodiscard]] std::int32_t input_in_force();

/// The section is over, if one is open.
void end_section();

} // namespace orlo::gather

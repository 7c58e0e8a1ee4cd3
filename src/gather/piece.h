// piece.h: what a run was, as it is gathered and then written. Plain data; units as in docs/explain.schema.json.
#pragma once

#include "base/observer.h"
#include "gather/source_map.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orlo::gather {

inline constexpr std::size_t MOST_DISTINCT = 10000; // values that are told apart in a section
inline constexpr std::size_t MOST_CODED    = 16;    // codes of p3 that are kept of a section
inline constexpr std::size_t MOST_JOINED   = 1000;  // pairs of values without a blank between them that are kept of a piece
inline constexpr std::size_t MOST_SHARPS   = 1000;  // "#" among notes that are kept of a piece
inline constexpr std::size_t MOST_CUTS     = 1000;  // numbers that end within a constant's text that are kept of a piece

struct Related {
    std::string text;
    Place       place;
};

struct Diagnostic {
    Severity             severity;
    int                  number = 0; // 0: it has none
    std::string          text;
    Place                place;
    bool                 placed    = false; // its place was told, not guessed
    bool                 recovered = false;
    std::vector<Related> related;
    std::int32_t         block = NONE; // that is open where it is said
    std::int32_t         input = NONE; // type in which values are written there; NONE outside sections
};

struct Macro {
    std::string              name;
    std::vector<std::string> parameters;
    std::string              body;
    TextMap                  map; // of the body
    Place                    place;
    Place                    name_place;
    Place                    undefined;
};

struct Constant {
    std::string        name;
    double             value;
    Place              place;
    TextMap            map; // of its value
    std::vector<Place> uses;
};

struct Conditional {
    Place place;
    bool  taken;
    Place end;
};

struct Sequence {
    std::int64_t seed;
    Place        place;

    // what hints ask for
    std::int32_t  block      = NONE;  // where it is started
    std::int32_t  pfield     = NONE;  // NONE outside sections
    bool          first      = false; // before any value of its section
    std::uint64_t draws      = 0;     // before the next one is started
    std::uint64_t in_section = 0;     // the same up to the end of its section
    std::uint64_t values     = 0;     // of its section
};

struct TempoChange {
    Place  place;
    float  start, end; // beats
    float  from, to;   // beats per minute
    int    curve;
    double exponent;
};

struct RandomRange {
    double low;
    double high;
    int    distribution;
};

struct Term {
    char   op     = 0; // 0: the first
    int    pfield = 0; // 0: a number
    double number = 0.0;
};

/// A letter of a set, of its curve or of one of its ranges.
struct Letter {
    Part  part;
    Place place;
};

struct Set {
    Place                            place;
    std::optional<double>            weight;
    std::optional<int>               curve;
    double                           exponent = 1.0;
    std::vector<RandomRange>         ranges;
    std::vector<std::vector<double>> lists;
    std::optional<int>               choice;
    std::optional<double>            window;
    std::optional<double>            start;
    std::vector<Term>                terms;
    std::vector<Letter>              letters;
    bool                             rounded = false;
};

struct Command {
    std::int32_t          code;
    Place                 place;
    std::vector<double>   numbers;
    std::optional<double> span;
    Place                 span_place;
    std::vector<Set>      sets;
    std::uint64_t         first      = 0; // of the values that a generator made
    std::uint64_t         count      = 0;
    std::int32_t          input      = NONE; // type in which its values are written; NONE outside sections
    float                 last_value = 0.0F; // the one that it made last, before deviation
    double                seconds    = 0.0;  // of all its intervals, in p2, without deviations
    double                beats      = 0.0;  // the same in beats
    double                longest    = 0.0;  // of its intervals, in beats
    float                 slowest    = 0.0F; // tempos of its intervals, in p2
    float                 fastest    = 0.0F;
    float                 first_beat = 0.0F; // of the events that a span in beats covers, from p3 up
    float                 last_beat  = 0.0F;
};

enum class Kind { literal, repeat, generator, fill, loop };

/// Values of one kind, one after the other.
struct Run {
    Kind                       kind;
    std::uint64_t              count      = 0;
    std::size_t                sequence   = 0;
    float                      deviation  = 0.0F;
    float                      factor     = 1.0F;
    std::uint64_t              first_draw = 0;
    std::size_t                places     = 0; // of literals, in the section's places
    Place                      place;          // of a repeat
    std::uint64_t              of    = 0;
    std::uint64_t              cycle = 1;
    std::vector<std::uint64_t> loop;
    std::size_t                command = 0;
    std::vector<std::uint8_t>  sets;
    std::vector<float>         positions; // of a walk, and its windows
    std::vector<float>         window_low;
    std::vector<float>         window_high;
};

struct Refused {
    std::uint64_t value;
    std::uint64_t first;
    std::uint64_t count;
};

/// What a section's values are like. Those that are no number are left out.
struct Statistics {
    std::uint64_t count    = 0;
    double        least    = 0.0;
    double        greatest = 0.0;
    double        sum      = 0.0;
};

struct Loop {
    Place         place;
    std::uint64_t first;
    std::uint64_t count = 0;
    bool          open  = true;
};

/// A p3 that may be a code or a duration; one that comes without being written again is that of the same number.
struct Coded {
    float         value;
    float         least;    // seconds that it makes of its events
    float         greatest; // seconds
    Place         place;
    bool          written; // as a value, where the place is
    std::uint64_t count = 1;
};

/// The values of a section that are written one after the other; a chord counts once, by its first member.
struct List {
    static constexpr std::size_t TOLD_APART = 3;

    std::uint64_t count    = 0;
    std::size_t   distinct = 0; // TOLD_APART: so many or more
    float         values[TOLD_APART];
    float         last    = 0.0F;
    bool          rises   = true; // no value is below the one before it
    bool          falls   = true;
    bool          twice   = false; // the last two are the same
    bool          chord   = false; // the last one is a chord
    bool          unmixed = true;  // nothing else has made values before the block was filled
    Place         begin;           // the first value
    Place         end;             // the last value, or the last member of its chord
};

struct Input {
    std::int32_t  code;
    bool          exact; // with "x": values are not rounded
    Place         place;
    std::uint64_t from;
};

struct Section {
    std::int32_t         pfield;
    Place                place;
    std::int32_t         output;
    std::int32_t         digits = NONE; // that are written behind the output type
    std::vector<Input>   inputs;
    std::vector<Command> commands;
    std::vector<Loop>    loops;
    std::uint64_t        written = 0;
    std::uint64_t        count   = 0;
    bool                 filled  = false; // by its last value or a loop
    bool                 by_loop = false;
    Statistics           statistics;
    std::size_t          distinct = 0; // MOST_DISTINCT + 1: there are more

    // what hints ask for
    std::uint64_t      no_numbers = 0;   // values that are no finite number
    Place              no_number;        // what made the first of them
    std::uint64_t      turned    = 0;    // intervals whose sign deviation has turned
    float              furthest  = 0.0F; // of them, in seconds
    float              deviation = 0.0F; // at the last of them
    std::uint64_t      backward  = 0;    // intervals below 0
    Place              backward_place;   // of the first of them
    std::vector<Coded> coded;            // MOST_CODED of them
    List               list;
    std::int32_t       full   = NONE;    // the warning that there are more values than events
    std::uint64_t      levels = 0;       // amplitudes that are written in decibels and have none
    Place              level;            // what made the first of them
    float              sounds   = 0.0F;  // the least value that is no rest
    bool               sounding = false; // there is one

    // of each value, when values are wanted
    std::vector<float>         read;
    std::vector<float>         deviated;
    std::vector<float>         result;
    std::vector<float>         tempo; // of p2
    std::vector<std::uint32_t> draw_counts;
    std::vector<Refused>       refused;
    std::vector<Run>           runs;
    std::vector<Place>         places; // of literals
};

/// Texts one after the other.
struct Column {
    std::string                text;
    std::vector<std::uint16_t> lengths;
};

struct Events {
    std::uint64_t                           count = 0;
    std::uint64_t                           rests = 0;
    std::vector<float>                      beat;
    std::vector<float>                      beats;
    std::vector<std::vector<float>>         values;  // by p-field, from p2 on
    std::vector<std::vector<std::uint32_t>> origins; // by p-field: the value of its section
    std::vector<Column>                     printed; // by p-field; none for a MIDI file
};

/// An event's start, in the time of its block.
struct Moment {
    float  beat;
    double second; // without deviations
    double start;  // as it is
};

/// Where the numbers of a header are written.
struct HeaderPlaces {
    Place pfields;
    Place start;
    Place length;
};

struct Block {
    std::uint32_t         number = 0; // among those that were written; 0: it was not
    Place                 place;
    HeaderPlaces          header;
    std::int32_t          instrument = 0;
    bool                  has_header = false;
    std::int32_t          pfields    = 0;
    bool                  skipped    = false;
    bool                  recovered  = false;
    bool                  closed     = false; // its "}" was read
    float                 start      = 0.0F;
    float                 beats      = 0.0F;
    std::uint64_t         events     = 0;
    bool                  started    = false;
    float                 tempo      = 0.0F;
    float                 seconds    = 0.0F;
    bool                  written    = false;
    double                duration   = 0.0;
    double                last_beat  = 0.0;
    double                end        = 0.0;
    std::vector<Command>  commands;
    std::vector<Section>  sections;
    std::optional<Events> notes;

    // what hints ask for
    std::int32_t        incomplete  = NONE;  // the error that sections are missing
    bool                tempo_moves = false; // the tempo map has more than one tempo
    float               settles     = 0.0F;  // beat from which on it has one
    double              by_map      = 0.0;   // seconds of its start by the whole map
    float               reach       = 0.0F;  // beat at which the last interval ends
    float               last_start  = 0.0F;  // beat at which it begins
    double              reach_time  = 0.0;   // the same in seconds, without deviations
    double              reach_start = 0.0;   // as it is
    bool                steady      = true;  // its beats only go on, one interval after the other
    std::vector<Moment> moments;             // of its events where the tempo moves, or starts are deviated
};

struct ScorePart {
    std::string  text;
    std::int32_t block = NONE; // its events instead of a text
};

/// Two values that are written without a blank between them.
struct Joined {
    Place        first;
    Place        second;
    std::int32_t block;
    std::int32_t pfield;
    std::int32_t input; // type in which the second is written
    std::int32_t input_of_first;
};

/// A "#" among notes.
struct Sharp {
    Place        place;
    std::int32_t block;
};

/// The text of a constant or an equation of which a whole number has taken a part.
struct Cut {
    std::int32_t call;
    std::size_t  length; // of the part
    std::int32_t block;
};

struct Piece {
    SourceMap                source;
    std::vector<Diagnostic>  diagnostics;
    std::vector<Macro>       macros;
    std::vector<Constant>    constants;
    std::vector<Conditional> conditionals;
    std::vector<Sequence>    sequences{{1, {}}};
    std::vector<TempoChange> tempo;
    std::vector<Command>     commands; // between blocks
    std::vector<Block>       blocks;
    std::vector<ScorePart>   score;
    std::vector<Joined>      joined;
    std::vector<Sharp>       sharps;
    std::vector<Cut>         cuts;
};

} // namespace orlo::gather

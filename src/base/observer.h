// observer.h: what a companion may see of a run while it happens. The core tells; nothing that is told changes what it does. A
// "column" is a position in the line that was read last, as it is at that moment: calls before it have been replaced already.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orlo {

enum class Severity { error, warning, note };

/// What a number in a command's text means.
enum class Part {
    seed,      // of "rs"
    deviation, // of "rd" and "dv"
    rate,      // of "sr"
    factor,    // of "pf"
    tempo,     // a term of "te", in the order of the text
    span,      // of a generator: beats, or below 0 minus the number of events
    weight,    // begins a set
    curve,     // code of a curve
    exponent,  // of the curve "v"
    range,     // code of a distribution, then its bounds in either order
    bounds,    // nothing: those of a walk follow
    low,       // a bound, that stands for both until the other comes
    high,      // the other bound
    value,     // of a list, or a held value
    list_end,  // a list is complete, by the number of its values
    window,    // of a walk
    start,     // of a walk
    choice,    // how elements are chosen, a Choice
    pfield,    // that an equation refers to
    constant,  // of an equation
    operation, // of an equation, its character
    rounding,  // of an equation, 1 for whole numbers
};

/// What a number in the header of a block means.
enum class HeaderPart { pfields, start, length };

/// Where a value of a section from p4 up goes.
enum class Goes {
    next,   // to the event after the cursor, which becomes the cursor
    beside, // to a copy of the cursor's event after it, a chord member, which becomes the cursor
};

/// A call in a text, by what it stands for.
enum class CallKind { macro, argument, constant, equation, time };

/// The functions that are told. All stand in a record that is used; "event" and "column" may be null where single events are not
/// asked for.
struct Observer {
    // files and how they become the combined input
    void (*include_met)(std::uint64_t begin, std::uint64_t end);  // a directive, by bytes of the file that is being copied
    void (*file_opened)(const char *name, bool found);            // the piece, then what is included; one that is found is copied
    void (*file_text)(const char *text, std::size_t length);      // what is read of the file that is copied, in order
    void (*file_left)();                                          // back to the file before it
    void (*copy_continues)(std::uint64_t to, std::uint64_t from); // byte "to" of the combined input is byte "from" of the file

    // lines
    void (*line_read)(std::uint64_t number, std::uint64_t offset, std::size_t length); // by bytes of the combined input

    // calls: each puts a text on a pile, whose lowest text is the line; columns are those of the text on top
    void (*call_begins)(CallKind kind, const char *name, std::size_t name_length, std::size_t begin, std::size_t end, double value);
    void (*argument_taken)(const char *name, std::size_t name_length, std::size_t begin, std::size_t end); // of the next call
    void (*call_failed)(const char *text, std::size_t column); // of the text on top: what is said of it comes before or after
    void (*call_replaced)(std::size_t begin, std::size_t end, std::size_t length); // by the text on top, which leaves the pile

    // definitions and conditions
    void (*definition_begins)(std::size_t column); // its "#"
    void (*macro_name)(std::size_t begin, std::size_t end);
    void (*macro_parameter)(const char *name, std::size_t length);
    void (*body_part)(std::size_t begin, std::size_t end); // what the body gains of the line, nothing for a line end
    void (*macro_defined)(const char *name, const char *body, std::size_t end, bool stored); // not stored: it is there already
    void (*macro_undefined)(const char *name, std::size_t length, std::size_t end);
    void (*constant_defined)(const char *name, double value, std::size_t begin, std::size_t end,
                             bool stored); // its value stands there
    void (*constant_used)(const char *name, std::size_t length, std::size_t begin, std::size_t end);
    void (*condition)(std::size_t begin, std::size_t end, bool taken);
    void (*condition_ends)(std::size_t begin, std::size_t end);
    void (*equation_drew)(); // a "?"

    // blocks
    void (*block_begins)(std::size_t column);                                   // its "i"
    void (*header_number)(HeaderPart part, std::size_t begin, std::size_t end); // of the block's header, where it is written
    void (*block_header)(std::int32_t instrument, std::int32_t pfields, float start, float beats, std::uint64_t events,
                         std::size_t end);
    void (*block_skipped)(std::int32_t instrument, std::size_t end);
    void (*block_starts)(float tempo, float seconds); // its start in seconds at a tempo
    void (*block_ends)(std::size_t end);              // after its "}"

    // sections
    void (*section_begins)(std::int32_t pfield, std::size_t begin, std::size_t end); // its "p" and number
    void (*output_type)(std::int32_t code, std::size_t begin, std::size_t end);
    void (*input_type)(std::int32_t code, std::size_t begin, std::size_t end);
    void (*section_ends)();

    // what stands in sections and between blocks
    void (*command_begins)(std::int32_t code, std::size_t column);
    void (*number_read)(Part part, double value, std::size_t begin, std::size_t end); // of the command
    void (*command_read)(std::size_t end);                                            // a generator's values follow
    void (*loop_mark)(bool opens, std::size_t column);
    void (*literal)(std::size_t begin, std::size_t end); // the next value is written there
    void (*repeat)(std::size_t begin, std::size_t end);  // the next values are repeated by it
    void (*fill)(bool by_loop);                          // the next values fill the block

    // values
    void (*covered)(float first, float last);              // beats of the first and the last event of the generator's span in beats
    void (*set_chosen)(std::size_t set);                   // of the generator, for the next value
    void (*refused)(std::uint64_t draws);                  // so many draws that were made last came to nothing: others follow
    void (*walked)(float position, float low, float high); // place of the value in its range, and the window of the next one
    void (*started)(float beats, float deviated, float tempo, float beat,
                    float start);                                         // p2: interval as read, in seconds; the event
    void (*lasted)(float value, float deviated, float duration);          // p3: as read, its amount, in seconds
    void (*stored)(Goes goes, float value, float deviated, float result); // p4 and up
    void (*chord_repeated)(Goes goes, bool grows, float value);           // of the last chord; grows: the list by an event

    // what comes of a block
    void (*block_done)(std::int32_t pfields); // its events follow, from the first on
    void (*event)(float start, float duration, float beat, const float *values, std::size_t count);
    void (*score_begins)();                                                    // events of the block
    void (*column)(std::int32_t pfield, const char *text, std::size_t length); // of an event's line, in the order of events
    void (*block_written)(std::uint32_t block, double duration, double beats, double end); // with its number in the run

    // what is written beside events, and what is said
    void (*score_text)(const char *text, std::size_t length);
    void (*message_begins)(Severity severity, int number);      // 0: a message of its own
    void (*message_text)(const char *text, std::size_t length); // a part of it
    void (*message_ends)();
    void (*message_place)(const char *line, std::size_t column); // of the message before, in the line that was read last
    void (*recovery_begins)();                                   // the run has failed; what is told from here on is only looked at
};

extern const Observer *observer; // null in orlo, and at start; set by companions

} // namespace orlo

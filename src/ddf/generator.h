// What every generator builds on: the span, weights, skipping between items, ranges, lists, and the place of an event on the span.
// A generator is a plain record of its data sets with two functions found by its type: get_set reads one set, make_value gives
// one event's value (store_group, for a generator of groups, stores all values of one).
#pragma once

#include "events/section.h"
#include "input/line_reader.h"

#include <cstdint>
#include <vector>

namespace orlo {

inline constexpr std::size_t MAX_SETS = 128; // data sets of one generator

/// How the frame treats a generator.
struct Traits {
    bool weighted; // it has sets with weights, not a single bare one
    bool groups;   // an element of a set is a group of values, which fills an event and its chord members
};

/// Traits of a generator by its record; what differs from these specialises them.
template <typename Data> inline constexpr Traits traits{true, false};

/// What the frame knows of a generator while its text is read.
struct Frame {
    float              span;    // beats, or below 0 minus the number of events
    std::vector<float> weights; // of the sets, fractions of 1
};

/// Where the event to be filled lies on the span.
struct Place {
    std::uint64_t index;   // events generated before it
    std::uint64_t count;   // events covered; in p2 those of a count span
    float         span;    // as in the frame
    float         elapsed; // seconds since the span began in p2, by the intervals' magnitudes; 0 elsewhere
    float         first;   // beats, first covered event; 0 for a count span
    float         last;    // beats, last covered event; 0 for a count span
    const Event  *event;   // the event after the cursor, which is filled unless a fuse is pending; null in p2
};

/// A random range between two bounds; a single value is a range with equal bounds.
struct RangeData {
    int   type; // distribution
    float low;
    float high;
};

/// Moves over blanks, line ends, comments and separators until nothing moves. @return 0 or an error
[[nodiscard]] int skip_items(Input &in);

/// Reads "(" and the span: beats, -n for n events, "T" or "T*f". @return 0, 36, 40, 53, or an error of reading
[[nodiscard]] int get_dynfunc_dur(float &span, Input &in);

/// Reads a set's weight, and what may stand after it. @return 0, missing when there is none, or an error of reading
[[nodiscard]] int get_weight(Frame &frame, Input &in, int missing);

/// Events of a count span: its magnitude, truncated.
[[nodiscard]] std::uint64_t count_of(float span);

/// True when a value of 0 must be refused: in p2 it would never use up a span of beats.
[[nodiscard]] bool zero_refused(float span);

/// Reads a value, or "[" letter value value "]", with the bounds in order. @return 0, 37, 39, 41, or an error of reading
[[nodiscard]] int get_range(RangeData &range, Input &in);

/// Reads a value, or "[" values "]", after the values that are there. @return 0, 39, 41, or an error of reading
[[nodiscard]] int get_values(std::vector<float> &values, Input &in);

/// How an element of a list is chosen.
enum class Choice : int { any = 0, all_before_repeating = 1, never_twice = 2 };

/// State of the choice from one list.
struct ChoiceState {
    Choice            mode;
    std::int64_t      last;  // element chosen last, -1 at start
    std::size_t       drawn; // flags that are set in did
    std::vector<bool> did;   // which elements have been chosen since all were clear
};

/// Reads an optional mark of the choice, "*" or "x", and what may stand after it. @return 0 or an error
[[nodiscard]] int get_choice(Choice &mode, Input &in);

/// State for a list of n elements at the start; a single element can only be chosen freely.
[[nodiscard]] ChoiceState init_did(Choice mode, std::size_t n);

/// Chooses one of n elements; one draw, more when a drawn element is refused. @return its number from 1
[[nodiscard]] std::size_t get_set_element(ChoiceState &state, std::size_t n);

/// Copies the first float of each of n records. Only tests call it: weights are gathered while they are read.
void fix_percents(float *const *records, float *out, int n);

/// Keeps a value that was stored for the fill, when a loop is open. @return 0 or 32
[[nodiscard]] int keep_for_loop(Section &section, float value);

/// Value of a curve at an event's place. A curve that follows the beat prints the time on the standard output first.
[[nodiscard]] float curve_at(const Place &place, float curve, float exponent, float start, float end);

} // namespace orlo

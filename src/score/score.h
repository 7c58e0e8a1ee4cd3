// score.h: a score as it is looked at: events with their numbers, whatever file they were read from, and what could not be
// read. Plain records; read by the readers, looked at by the pictures. Reads and prints nothing.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace orlo::score {

/// What a p-field with pitches holds.
enum class Pitch {
    none,  ///< no p-field is a pitch
    pch,   ///< octave.pitch-class, 8.09 is the a of 440 Hz
    oct,   ///< octave.fraction, 8.75 is the a of 440 Hz
    hertz, ///< cycles a second
    key,   ///< MIDI key number, 69 is the a of 440 Hz
};

/// One event. Its numbers stand together in Score::values.
struct Event {
    std::size_t first;      ///< where p1 stands in Score::values
    int         fields;     ///< p-fields, p1 included, >= 1; a p-field that the file leaves out or that is no number is NaN
    int         instrument; ///< index into Score::instruments
    double      start;      ///< seconds (beats where Score::beats is set), 0 to LARGEST_TIME
    double      duration;   ///< the same unit, 0 to LARGEST_TIME; a held note (p3 < 0) has its absolute value
    int         line;       ///< line of the file, 1 is the first; 0 in a MIDI file
};

/// Where pitches stand.
struct PitchField {
    int   field = 0;           ///< number of the p-field, 5 is p5; 0: there is none
    Pitch pitch = Pitch::none; ///< what it holds
};

/// What could not be read, or was left out.
struct Trouble {
    int         line; ///< line of the file, 1 is the first; 0 where there is none
    std::string text; ///< one sentence without a full stop
};

/// A whole score.
struct Score {
    std::string              title;       ///< file name without folders
    std::vector<double>      values;      ///< p1, p2, p3 ... of every event; NaN, or LARGEST_VALUE at most either way
    std::vector<Event>       events;      ///< in order of the file
    std::vector<std::string> instruments; ///< names by order of first appearance: "1", "2.1", "\"flute\"", "channel 10"
    std::vector<std::string> field_names; ///< of p1, p2, ...: "p4", or "velocity" of a MIDI file; as long as the widest event
    std::vector<Trouble>     troubles;    ///< in order of the file; at most MAX_TROUBLES, then one that counts the rest
    std::size_t              troubles_left_out = 0;           ///< beyond those kept
    int                      pitch_field       = 0;           ///< number of the p-field with the pitch, 5 is p5; 0: there is none
    Pitch                    pitch             = Pitch::none; ///< what that p-field holds
    std::vector<PitchField>  pitches;       ///< of each instrument, where they differ; else empty, and the two above hold for all
    double                   end   = 0;     ///< end of the last event, the unit of Event::start
    bool                     beats = false; ///< start and duration are beats, not seconds
};

/// Seconds or beats. Up to there a tenth of a millisecond is told apart, and what is added to a time still counts.
inline constexpr double LARGEST_TIME = 1e12;
/// Either way. Up to there two numbers differ by a number, and so has a range that holds them a width.
inline constexpr double LARGEST_VALUE = 1e300;

inline constexpr std::size_t MAX_TROUBLES = 100;   ///< kept in a Score
inline constexpr int         MAX_FIELDS   = 1000;  ///< p-fields of one event; more are trouble
inline constexpr std::size_t MANY_EVENTS = 50'000; ///< above this a drawing has a few paths an instrument, each for a slice of time

/// Value of a p-field.
/// @param field number of the p-field, 4 is p4
/// @return finite, or NaN where the event has no such p-field, or no number in it
double field_value(const Score &score, const Event &event, int field);

/// Height of an event's pitch.
/// @return MIDI key number with its fraction, NaN where there is none (or a frequency <= 0)
double key_of(const Score &score, const Event &event);

} // namespace orlo::score

// The tempo map: beats to seconds. Owns the tempo segments; reads no text, reports no errors.
#pragma once

#include <cstdint>

namespace orlo {

inline constexpr std::int32_t MAX_TEMPOS       = 50;       // segments
inline constexpr float        MIN_TEMPO        = 1.0F;     // beats per minute
inline constexpr float        MAX_TEMPO        = 4000.0F;  // beats per minute
inline constexpr float        MAX_TEMPO_CHANGE = 10000.0F; // beats at which a change starts or ends

struct TempoSegment {
    float stime;  // beats, start of the change
    float stempo; // beats per minute at the start
    float etime;  // beats, end of the change
    float etempo; // beats per minute at the end
    float type;   // code of the curve, a whole number
    float vcurve; // exponent of the curve "v"
};

extern TempoSegment
    TEMPO_LIST[MAX_TEMPOS]; // in the order of "te" commands, written by add_tempo; expected, but not checked, to be in stime order
extern std::int32_t TOT_TEMPOS; // segments in use, 1 at start: 60 beats per minute everywhere; written by add_tempo

/// Stores a segment: one that starts at 0 replaces the first, any other is appended.
/// @return false when the table is full
[[nodiscard]] bool add_tempo(const TempoSegment &segment);

/// Warns of every segment that starts before its predecessor ends.
void check_tempos();

/// Beats per minute at a beat of the piece: the curve of the last segment that starts at or before it.
[[nodiscard]] double find_tempo(float beat);

/// A span in beats as seconds, at the tempo in force at CBEATS for its whole length; sets TEMPO.
float to_tempo(float beats);

/// Lists the map on the screen.
void print_tempos();

/// Index of the segment in force at a beat.
[[nodiscard]] std::int32_t curtempo(float beat);

/// Whether a tempo is from MIN_TEMPO to MAX_TEMPO.
[[nodiscard]] bool good_tempo(float tempo);

/// Whether a time is from 0 to MAX_TEMPO_CHANGE.
[[nodiscard]] bool good_time(float beats);

/// Sets the map back to its start.
void reset_tempos();

} // namespace orlo

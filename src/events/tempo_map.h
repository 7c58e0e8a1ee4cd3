// The tempo map: beats to seconds. Owns the tempo segments; reads no text, reports no errors.
#pragma once

#include <cstdint>

namespace orlo {

inline constexpr std::int32_t MAX_TEMPOS = 50;

struct TempoSegment {
    float stime;  // beats, start of the change
    float stempo; // beats per minute at the start
    float etime;  // beats, end of the change
    float etempo; // beats per minute at the end
    float type;   // code of the curve, a whole number
    float vcurve; // exponent of the curve "v"
};

extern TempoSegment TEMPO_LIST[MAX_TEMPOS]; // in the order of "te" commands; expected, but not checked, to be in stime order
extern std::int32_t TOT_TEMPOS;             // segments in use, 1 at start: 60 beats per minute everywhere
extern float        TEMPO;                  // beats per minute found by the last to_tempo or block start, 60 at start
extern int          SHOW_TEMPOS;            // 1: the map and every conversion are traced, 0 at start; set by the options

/// Stores a segment: one that starts at 0 replaces the first, any other is appended.
/// @return 1, or 0 when the table is full
[[nodiscard]] int add_tempo(const TempoSegment &segment);

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

/// 1 for a tempo from 1 to 4000 beats per minute.
[[nodiscard]] int good_tempo(float tempo);

/// 1 for a time from 0 to 10000 beats.
[[nodiscard]] int good_time(float beats);

} // namespace orlo

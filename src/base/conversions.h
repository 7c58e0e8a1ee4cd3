// Units of the score: pitches in semitones (0 is octave-point-pitch-class 4.00, 16.35159783 Hz), amplitudes linear. Pure functions.
#pragma once

#include <cstdint>

namespace orlo {

extern std::uint64_t SRATE; // sampling rate in Hz, 44100 at start; set by "sr" (lang/settings), read by cpc_to_bin

/// Semitones to octave-point-pitch-class: 13.5 gives 5.015.
[[nodiscard]] float cpc_to_pch(float pitch);

/// Semitones to octave and decimal fraction: 18 gives 5.5.
[[nodiscard]] float cpc_to_oct(float pitch);

/// Semitones to Hz, equal temperament: 57 gives 440.
[[nodiscard]] float cpc_to_hz(float pitch);

/// Semitones to the nearest bin of a Fourier transform of 256 << size points at the rate SRATE; sizes above 6 count as 6.
[[nodiscard]] std::int32_t cpc_to_bin(std::int32_t size, float pitch);

/// Semitones to a transposition ratio: 12 gives 2.
[[nodiscard]] float st_to_tr(float semitones);

/// Decibels to a linear amplitude, truncated.
[[nodiscard]] std::int32_t db_to_amp(std::int32_t decibels);

/// Linear amplitude to decibels; minus infinity for 0.
[[nodiscard]] float amp_to_db(std::int32_t amplitude);

/// Sets the sampling rate back to its start.
void reset_conversions();

} // namespace orlo

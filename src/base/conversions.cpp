// Octave and pitch class are taken apart by truncation, so a pitch below 0 has a pitch class of 0 or less:
// -1 is 4.00 - 0.01 = 3.99, -13 is 3.00 - 0.01 = 2.99.

#include "base/conversions.h"

#include "base/numerics.h"

#include <algorithm>
#include <cmath>

namespace orlo {

namespace {

constexpr std::uint64_t START_SRATE = 44100;

constexpr double LOWEST_C_HZ    = 16.35159783;
constexpr double SEMITONE_RATIO = 1.059463094359; // 2^(1/12)
constexpr double LN10_BY_20     = 0.11512925;     // ln(10) / 20
constexpr int    LARGEST_FFT    = 6;              // 256 << 6 = 16384 points

float octave(float pitch)
{
    const std::int32_t octaves = to_int32(static_cast<double>(pitch)) / 12;
    return static_cast<float>(octaves);
}

float pitch_class(float pitch) { return mod(pitch, 12.0F); }

} // namespace

std::uint64_t SRATE;

float cpc_to_pch(float pitch) { return octave(pitch) + 4.0F + pitch_class(pitch) / 100.0F; }

float cpc_to_oct(float pitch) { return octave(pitch) + 4.0F + pitch_class(pitch) / 12.0F; }

float cpc_to_hz(float pitch)
{
    const float octaves = octave(pitch) + pitch_class(pitch) / 12.0F;
    return static_cast<float>(std::pow(2.0, static_cast<double>(octaves)) * LOWEST_C_HZ);
}

std::int32_t cpc_to_bin(std::int32_t size, float pitch)
{
    const float points    = static_cast<float>(256 << std::min(size, LARGEST_FFT));
    const float bin_width = static_cast<float>(SRATE) / points;
    return Round(cpc_to_hz(pitch) / bin_width);
}

float st_to_tr(float semitones) { return static_cast<float>(std::pow(SEMITONE_RATIO, static_cast<double>(semitones))); }

std::int32_t db_to_amp(std::int32_t decibels) { return to_int32(std::exp(decibels * LN10_BY_20)); }

float amp_to_db(std::int32_t amplitude) { return static_cast<float>(std::log(static_cast<double>(amplitude)) / LN10_BY_20); }

void reset_conversions() { SRATE = START_SRATE; }

} // namespace orlo

// A lookup walks the segments from the first: there are at most 50 of them, and they need not be in order.

#include "events/tempo_map.h"

#include "base/clock.h"
#include "base/curves.h"
#include "base/numerics.h"
#include "base/switches.h"
#include "diag/report.h"
#include "events/block.h"

#include <algorithm>
#include <iterator>

namespace orlo {

namespace {

constexpr TempoSegment FIRST_SEGMENT{0.0F, 60.0F, 0.0F, 60.0F, static_cast<float>(Curve::square), 0.0F};

constexpr char type_letters[] = "FELUSX"; // shown for the curve codes 0 to 5

} // namespace

TempoSegment TEMPO_LIST[MAX_TEMPOS];
std::int32_t TOT_TEMPOS;

bool add_tempo(const TempoSegment &segment)
{
    if (segment.stime == 0.0F) {
        TEMPO_LIST[0] = segment;
        return true;
    }
    if (TOT_TEMPOS == MAX_TEMPOS)
        return false;
    TEMPO_LIST[TOT_TEMPOS++] = segment;
    return true;
}

void check_tempos()
{
    float previous_end = 0.0F;
    for (std::int32_t i = 0; i < TOT_TEMPOS; ++i) {
        if (previous_end > TEMPO_LIST[i].stime)
            tell(Severity::warning, "\nWARNING: ", "Tempo #%d conflicts with previous tempo's end time!", "", i + 1);
        previous_end = TEMPO_LIST[i].etime;
    }
}

std::int32_t curtempo(float beat)
{
    std::int32_t i = 0;
    while (beat >= TEMPO_LIST[i].stime && i + 1 < TOT_TEMPOS && TEMPO_LIST[i + 1].stime <= beat)
        ++i;
    return i;
}

double find_tempo(float beat)
{
    const TempoSegment &s    = TEMPO_LIST[curtempo(beat)];
    const int           code = to_int32(static_cast<double>(s.type));
    return static_cast<double>(
        tplot_val(code, beat - s.stime, s.etime - s.stime, s.stempo, s.etempo, static_cast<double>(s.vcurve)));
}

float to_tempo(float beats)
{
    const double tempo = find_tempo(CBEATS);
    TEMPO              = static_cast<float>(tempo);

    const auto seconds = static_cast<float>(60.0 / tempo * static_cast<double>(beats));
    if (SHOW_TEMPOS)
        Mprintf("\n  > Beat %f Tempo = %f Val = %f (bts) %f (secs)", CBEATS, tempo, beats, seconds);
    return seconds;
}

void print_tempos()
{
    Mprintf("\n  Stored Tempos (There are %d defs):", TOT_TEMPOS);
    for (std::int32_t i = 0; i < TOT_TEMPOS; ++i) {
        const TempoSegment &s    = TEMPO_LIST[i];
        const std::int32_t  type = to_int32(static_cast<double>(s.type));
        Mprintf("\n\t%d: Stime %f, Etime %f, Stempo %f, Etempo %f, Type %c", i + 1, s.stime, s.etime, s.stempo, s.etempo,
                type_letters[type]);
        if (type == static_cast<std::int32_t>(Curve::power))
            Mprintf(", Vcurve = %f", s.vcurve);
    }
    Mprintf("\n");
}

bool good_tempo(float tempo) { return tempo >= MIN_TEMPO && tempo <= MAX_TEMPO; }

bool good_time(float beats) { return beats >= 0.0F && beats <= MAX_TEMPO_CHANGE; }

void reset_tempos()
{
    std::fill(std::begin(TEMPO_LIST), std::end(TEMPO_LIST), TempoSegment{});
    TEMPO_LIST[0] = FIRST_SEGMENT;
    TOT_TEMPOS    = 1;
}

} // namespace orlo

// All terms are read before any is checked, so that the caret of a range error stands on what follows the last term and its blanks.

#include "lang/tempo_command.h"

#include "base/curves.h"
#include "diag/messages.h"
#include "diag/report.h"
#include "events/tempo_map.h"
#include "input/scanners.h"
#include "lang/settings.h"
#include "words/curve_letters.h"

namespace orlo {
namespace {

constexpr float SIMPLE_END = 1000.0F; // end of the segment of the short form, in beats

void warn_of_tempo(const Input &in, float tempo, Warning fast, Warning slow)
{
    if (tempo > FAST_TEMPO)
        warn(in, fast);
    if (tempo < SLOW_TEMPO)
        warn(in, slow);
}

// term -> number, with the blanks and line ends after it
int get_term(Input &in, float &value, int error)
{
    const std::uint32_t begin = in.pos;
    if (!get_f(value, in))
        return error;
    tell_number(in, Part::tempo, static_cast<double>(value), begin);
    return skip_space(in);
}

// terms -> stime etime stempo etempo [ curve ]
// the position is after the first
int get_terms(Input &in, TempoSegment &segment)
{
    if (const int error = get_term(in, segment.etime, TE_BAD_TERM2))
        return error;
    if (const int error = get_term(in, segment.stempo, TE_BAD_TERM3))
        return error;
    if (const int error = get_term(in, segment.etempo, TE_BAD_TERM4))
        return error;
    if (!is_letter(peek(in)))
        return OK;
    if (const int error = get_curve_type(in, segment.type, segment.vcurve, false))
        return error;
    return skip_space(in);
}

int check_ranges(const TempoSegment &segment)
{
    if (!good_time(segment.stime))
        return TE_START_TIME_RANGE;
    if (!good_time(segment.etime))
        return TE_END_TIME_RANGE;
    if (!good_tempo(segment.stempo))
        return TE_START_TEMPO_RANGE;
    if (!good_tempo(segment.etempo))
        return TE_END_TEMPO_RANGE;
    return segment.stime > segment.etime ? TE_TIMES_BACKWARDS : OK;
}

void warn_of_segment(const Input &in, const TempoSegment &segment)
{
    if (segment.stime > LATE_BEAT)
        warn(in, W_TEMPO_LATE);
    if (segment.etime > LATE_BEAT)
        warn(in, W_TEMPO_LONG);
    warn_of_tempo(in, segment.stempo, W_TEMPO1_FAST, W_TEMPO1_SLOW);
    warn_of_tempo(in, segment.etempo, W_TEMPO2_FAST, W_TEMPO2_SLOW);
}

// short-form -> "te" "(" tempo ")"
int store_simple(Input &in, float tempo)
{
    if (!good_tempo(tempo))
        return BAD_TEMPO;
    const TempoSegment segment{0.0F, tempo, SIMPLE_END, tempo, static_cast<float>(Curve::line), TEMPO_LIST[0].vcurve};
    warn_of_tempo(in, tempo, W_TEMPO1_FAST, W_TEMPO1_SLOW);
    static_cast<void>(add_tempo(segment)); // replaces the first segment, which always exists
    return OK;
}

// long-form -> "te" "(" terms ")"
int store_change(Input &in, float stime)
{
    TempoSegment segment{stime, 0.0F, 0.0F, 0.0F, static_cast<float>(Curve::square), 1.0F};
    if (const int error = get_terms(in, segment))
        return error;
    if (const int error = check_ranges(segment))
        return error;
    warn_of_segment(in, segment);
    if (!add_tempo(segment)) {
        tell(Severity::error, "\n\nERROR: ", "Too many tempo changes! (Max = %d)", "\n", MAX_TEMPOS);
        return TEXT_REPORTED;
    }
    return peek(in) == ')' ? OK : MISSING_PAREN;
}

} // namespace

int get_tempo_change(Input &in)
{
    if (const int error = good_cmd_format(in))
        return error;
    ++in.pos;
    float first = 0.0F;
    if (const int error = get_term(in, first, TE_BAD_TERM1))
        return error;
    if (const int error = peek(in) == ')' ? store_simple(in, first) : store_change(in, first))
        return error;
    ++in.pos;
    tell_command_read(in);
    check_tempos();
    return OK;
}

} // namespace orlo

// The commands share their form and differ in the value; each part of the form is read by a function of its own.

#include "lang/settings.h"

#include "ddf/random.h"
#include "diag/messages.h"
#include "diag/report.h"
#include "events/timing.h"
#include "input/scanners.h"
#include "output/conversions.h"
#include "output/midi_conversion.h"

#include <cstring>

namespace orlo {
namespace {

// command -> name "(" value ")"
// up to the value
int open_command(Input &in)
{
    if (const int result = good_cmd_format(in); result != OK)
        return result;
    ++in.pos;
    const int result = skip_lines(in);
    return result > 0 ? result : OK;
}

// command -> name "(" value ")"
// from behind the value
int close_command(Input &in)
{
    if (const int result = skip_lines(in); result > 0)
        return result;
    if (peek(in) != ')')
        return MISSING_PAREN;
    ++in.pos;
    return OK;
}

int set_deviation(float &deviation, Input &in)
{
    if (const int result = open_command(in); result != OK)
        return result;
    if (get_f(deviation, in) == 0 || deviation < 0.0F || deviation > 100.0F)
        return BAD_DEVIATION;
    if (deviation > 1.0F)
        warning_no(W_LARGE_DEVIATION, in.line_no, in.line, in.pos);
    return close_command(in);
}

} // namespace

int good_cmd_format(Input &in)
{
    if (const int result = skip_lines(in); result > 0)
        return result;
    return peek(in) == '(' ? OK : BAD_COMMAND_FORMAT;
}

int set_rand_seed(Input &in)
{
    if (const int result = open_command(in); result != OK)
        return result;
    std::uint32_t seed = 0;
    if (get_ui(seed, in) == 0)
        return BAD_SEED;
    seed_draws(seed);
    return close_command(in);
}

int set_rand_dev(Input &in) { return set_deviation(MAX_DEV, in); }

int set_rand_dev2(Input &in) { return set_deviation(MAX_DEV2, in); }

int set_samp_rate(Input &in)
{
    if (const int result = open_command(in); result != OK)
        return result;
    if (get_uli(SRATE, in) == 0)
        return BAD_SAMPLING_RATE;
    return close_command(in);
}

int set_pfactor(Input &in)
{
    if (P_NO == 2)
        return PFACTOR_NOT_IN_P2;
    if (const int result = open_command(in); result != OK)
        return result;
    if (get_f(PFACTOR, in) == 0)
        return BAD_PFACTOR;
    return close_command(in);
}

void do_direct_out(Input &in, std::FILE *out)
{
    const char *rest = in.line + in.pos;
    if (MKMIDI == 0) {
        std::fputc('\n', out);
        std::fputs(rest, out);
    }
    in.pos += static_cast<std::uint32_t>(std::strlen(rest));
}

} // namespace orlo

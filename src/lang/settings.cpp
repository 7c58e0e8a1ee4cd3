// The commands share their form and differ in the value; each part of the form is read by a function of its own.

#include "lang/settings.h"

#include "base/conversions.h"
#include "base/random.h"
#include "base/switches.h"
#include "diag/messages.h"
#include "diag/report.h"
#include "events/block.h"
#include "input/scanners.h"
#include "platform/output_files.h"
#include "platform/terminal.h"

#include <cstring>

namespace orlo {
namespace {

// command -> name "(" value ")"
// up to the value
int open_command(Input &in)
{
    if (const int error = good_cmd_format(in))
        return error;
    ++in.pos;
    return skip_space(in);
}

// command -> name "(" value ")"
// the position is after the value
int close_command(Input &in)
{
    if (const int error = skip_space(in))
        return error;
    if (peek(in) != ')')
        return MISSING_PAREN;
    ++in.pos;
    return OK;
}

int set_deviation(float &deviation, Input &in)
{
    if (const int error = open_command(in))
        return error;
    if (!get_f(deviation, in) || deviation < 0.0F || deviation > MAX_DEVIATION)
        return BAD_DEVIATION;
    if (deviation > LARGE_DEVIATION)
        warn(in, W_LARGE_DEVIATION);
    return close_command(in);
}

} // namespace

int good_cmd_format(Input &in)
{
    if (const int error = skip_space(in))
        return error;
    return peek(in) == '(' ? OK : BAD_COMMAND_FORMAT;
}

int set_rand_seed(Input &in)
{
    if (const int error = open_command(in))
        return error;
    std::uint32_t seed = 0;
    if (!get_ui(seed, in))
        return BAD_SEED;
    seed_draws(seed);
    return close_command(in);
}

int set_rand_dev(Input &in) { return set_deviation(MAX_DEV, in); }

int set_rand_dev2(Input &in) { return set_deviation(MAX_DEV2, in); }

int set_samp_rate(Input &in)
{
    if (const int error = open_command(in))
        return error;
    if (!get_uli(SRATE, in))
        return BAD_SAMPLING_RATE;
    return close_command(in);
}

int set_pfactor(Input &in)
{
    if (P_NO == 2)
        return PFACTOR_NOT_IN_P2;
    if (const int error = open_command(in))
        return error;
    if (!get_f(PFACTOR, in))
        return BAD_PFACTOR;
    return close_command(in);
}

void do_direct_out(Input &in, std::FILE *out)
{
    const char *rest = in.line + in.pos;
    if (!MKMIDI) {
        begin_output(out);
        std::fputc('\n', out);
        if (is_terminal(out))
            put_safely(out, rest);
        else
            std::fputs(rest, out);
    }
    in.pos += static_cast<std::uint32_t>(std::strlen(rest));
}

} // namespace orlo

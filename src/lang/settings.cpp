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
    tell_command_read(in);
    return OK;
}

int set_deviation(float &deviation, Input &in)
{
    if (const int error = open_command(in))
        return error;
    const std::uint32_t begin = in.pos;
    if (!get_f(deviation, in) || deviation < 0.0F || deviation > MAX_DEVIATION)
        return BAD_DEVIATION;
    tell_number(in, Part::deviation, static_cast<double>(deviation), begin);
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
    const std::uint32_t begin = in.pos;
    std::uint32_t       seed  = 0;
    if (!get_ui(seed, in))
        return BAD_SEED;
    tell_number(in, Part::seed, static_cast<double>(seed), begin);
    seed_draws(seed);
    return close_command(in);
}

int set_rand_dev(Input &in) { return set_deviation(MAX_DEV, in); }

int set_rand_dev2(Input &in) { return set_deviation(MAX_DEV2, in); }

int set_samp_rate(Input &in)
{
    if (const int error = open_command(in))
        return error;
    const std::uint32_t begin = in.pos;
    if (!get_uli(SRATE, in))
        return BAD_SAMPLING_RATE;
    tell_number(in, Part::rate, static_cast<double>(SRATE), begin);
    return close_command(in);
}

int set_pfactor(Input &in)
{
    if (P_NO == 2)
        return PFACTOR_NOT_IN_P2;
    if (const int error = open_command(in))
        return error;
    const std::uint32_t begin = in.pos;
    if (!get_f(PFACTOR, in))
        return BAD_PFACTOR;
    tell_number(in, Part::factor, static_cast<double>(PFACTOR), begin);
    return close_command(in);
}

void do_direct_out(Input &in, std::FILE *out)
{
    const char *rest = in.line + in.pos;
    if (!MKMIDI && observer != nullptr) {
        observer->score_text("\n", 1);
        observer->score_text(rest, std::strlen(rest));
    }
    if (!MKMIDI && out != nullptr) {
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

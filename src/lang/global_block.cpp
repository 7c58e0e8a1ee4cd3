// A line is either commands one after another, or text in which only the opening "i" and comments may stand. The first character
// that is no command switches from one to the other for the rest of the line.

#include "lang/global_block.h"

#include "base/switches.h"
#include "diag/messages.h"
#include "events/tempo_map.h"
#include "input/constants.h"
#include "input/macros.h"
#include "lang/settings.h"
#include "lang/tempo_command.h"
#include "words/keywords.h"

namespace orlo {
namespace {

// global-line -> { command } rest
// the commands at the start of a line
int run_commands(Input &in, std::FILE *out)
{
    skip_blanks(in);
    while (is_gcommand(in)) { // each command takes characters
        const std::uint32_t begin = in.pos;
        std::int32_t        code  = 0;
        if (!get_command(code, in))
            return INVALID_GLOBAL;
        if (observer != nullptr)
            observer->command_begins(code, begin);
        if (const int error = do_gcommand(code, in, out))
            return error;
        skip_blanks(in);
    }
    return OK;
}

// rest -> { blank | comment } [ "i" ]
// opened tells whether the "i" was met
int read_rest(Input &in, bool &opened)
{
    opened = false;
    for (;;) { // each round takes a comment
        skip_blanks(in);
        if (peek(in) == '\0')
            return OK;
        if (peek(in) == 'i') {
            opened = true;
            return OK;
        }
        Comment kind{};
        if (!is_comment(in.line, in.pos, kind))
            return INVALID_GLOBAL;
        if (const int status = skip_comment(in, kind))
            return status == OUT_OF_MEMORY ? OUT_OF_MEMORY : MISMATCHED_COMMENTS;
    }
}

} // namespace

int parse_gblock(Input &in, std::FILE *out)
{
    for (bool opened = false; !opened;) { // each round reads a line
        if (const int status = get_buff(in))
            return status;
        if (const int error = run_commands(in, out))
            return error;
        if (const int error = read_rest(in, opened))
            return error;
    }
    if (SHOW_TEMPOS)
        print_tempos();
    return OK;
}

int do_gcommand(std::int32_t code, Input &in, std::FILE *out)
{
    switch (code) {
    case CMD_TE:
        return get_tempo_change(in);
    case CMD_RD:
        return set_rand_dev(in);
    case CMD_RS:
        return set_rand_seed(in);
    case CMD_SR:
        return set_samp_rate(in);
    case CMD_DIRECT:
        do_direct_out(in, out);
        return OK;
    case CMD_DIRECTIVE:
        return parse_macro(in);
    case CMD_CONSTANT:
        return parse_var(in);
    default:
        return INVALID_GLOBAL_DATA;
    }
}

} // namespace orlo

// A section has no end mark of its own: it ends where the next one begins, "p" and a digit, or at the block's "}". So both are
// looked for before anything else, at each item, also while what does not fit into the block is passed over.

#include "lang/pfield.h"

#include "ddf/ddf.h"
#include "diag/messages.h"
#include "diag/report.h"
#include "events/block.h"
#include "events/filling.h"
#include "events/pfields.h"
#include "lang/data_list.h"
#include "lang/settings.h"
#include "words/keywords.h"

namespace orlo {
namespace {

bool at_section_end(const Input &in) { return is_pfield(in) || peek(in) == '}'; }

// the next line of a section, which may not be the last of the input
int next_line(Input &in)
{
    const int result = get_buff(in);
    return result < 0 ? EOF_IN_SECTION : result;
}

// output -> [ "(" output-type ")" ]
int get_output_type(Input &in)
{
    OUT_TYPE = TYPE_RE;
    if (peek(in) != '(')
        return OK;
    ++in.pos;
    if (const int error = skip_space(in))
        return error;
    const std::uint32_t begin = in.pos;
    if (!is_out_type(in) || !get_command(OUT_TYPE, in))
        return BAD_OUTPUT_TYPE;
    if (observer != nullptr)
        observer->output_type(OUT_TYPE, begin, in.pos);
    if (P_NO <= 3 && OUT_TYPE != TYPE_RE)
        return MUST_OUTPUT_FLOATS;
    if (const int error = skip_space(in))
        return error;
    if (peek(in) != ')')
        return MISSING_PAREN;
    ++in.pos;
    return OK;
}

int set_input_type(std::int32_t code)
{
    IN_TYPE = code;
    if (P_NO == 2 && code != TYPE_RE && code != TYPE_RH && code != TYPE_IN)
        return BAD_P2_INPUT;
    if (P_NO == 3 && code != TYPE_IN && code != TYPE_RE)
        return BAD_P3_INPUT;
    return OK;
}

// command -> input-type | generator | setting
int run_command(Section &section, Input &in)
{
    const std::uint32_t begin = in.pos;
    std::int32_t        code  = 0;
    if (!get_command(code, in))
        return INVALID_COMMAND;
    if (!is_input_code(code)) {
        if (observer != nullptr)
            observer->command_begins(code, begin);
        return do_commands(code, section, in);
    }
    if (observer != nullptr)
        observer->input_type(code, begin, in.pos);
    return set_input_type(code);
}

// item -> command | comment | "<" | ">" | literal data
int do_item(Section &section, Input &in)
{
    if (is_command(in))
        return run_command(section, in);
    if (Comment kind{}; is_comment(in.line, in.pos, kind))
        return pass_comment(in, kind);
    if (peek(in) == '<' || peek(in) == '>') {
        if (!set_loop(peek(in)))
            return BAD_LOOP;
        if (observer != nullptr)
            observer->loop_mark(IN_LOOP, in.pos);
        ++in.pos;
        return OK;
    }
    return parse_pdata(section, in);
}

// one step over what does not fit into the block
int pass_on(Input &in)
{
    if (peek(in) == '\0')
        return next_line(in);
    if (Comment kind{}; is_comment(in.line, in.pos, kind))
        return pass_comment(in, kind);
    ++in.pos;
    return OK;
}

// one step: what stands between items, or an item
int do_step(Section &section, Input &in)
{
    skip_blanks(in);
    if (peek(in) == '\0')
        return next_line(in);
    return at_section_end(in) ? OK : do_item(section, in);
}

// body -> { item }
int do_body(Section &section, Input &in)
{
    while (!at_section_end(in)) // each step moves on or reads a line
        if (const int error = section.done ? pass_on(in) : do_step(section, in))
            return error;
    return OK;
}

// section -> body, and what fills the block after it
int do_pfield(Section &section, Input &in)
{
    const std::uint64_t events_before = EVENTS;
    if (P_NO > 2)
        LUT = section.list;
    if (const int error = do_body(section, in))
        return error;
    if (!WROTE_DATA) {
        tell(Severity::error, "\nERROR: ", "P%d is blank ... OY!", "\n\n", P_NO);
        return FULLY_REPORTED;
    }
    if (const int error = fill_to_end(section, in))
        return error;
    if (P_NO > 2 && ETIME < 0.0F && EVENTS != events_before)
        tell(Severity::note, "\n\t", "P%d: Fused data changed \"events\" from %d to %d", "", P_NO, events_before, EVENTS);
    return OK;
}

} // namespace

int do_pN(Input &in, Event *&list)
{
    if (const int error = skip_space(in))
        return error;
    const auto slot = static_cast<std::size_t>(P_NO - 2);
    RE_FW[slot]     = RE_FW_DEFAULT;
    if (const int error = get_output_type(in))
        return error;
    OUTS[slot] = OUT_TYPE;

    Section   section{list, list, nullptr, true, false, way_of(P_NO)};
    const int result = do_pfield(section, in);
    FreeQNodes(section.queue);
    return result;
}

int do_commands(std::int32_t code, Section &section, Input &in)
{
    switch (code) {
    case CMD_DV:
        return set_rand_dev2(in);
    case CMD_PF:
        return set_pfactor(in);
    case CMD_RD:
        return set_rand_dev(in);
    case CMD_RS:
        return set_rand_seed(in);
    default:
        return do_DDF(static_cast<Code>(code), section, in);
    }
}

} // namespace orlo

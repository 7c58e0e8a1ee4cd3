// A section has no end mark of its own: it ends where the next one begins, "p" and a digit, or at the block's "}". So both are
// looked for before anything else, at each item, also while what does not fit into the block is passed over.

#include "lang/pfield.h"

#include "ddf/ddf.h"
#include "ddf/second_order.h"
#include "diag/messages.h"
#include "diag/report.h"
#include "events/timing.h"
#include "lang/data_list.h"
#include "lang/keywords.h"
#include "lang/settings.h"

namespace orlo {
namespace {

bool at_section_end(const Input &in) { return is_pfield(in) != 0 || peek(in) == '}'; }

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
    if (const int result = skip_lines(in); result > 0)
        return result;
    if (is_out_type(in) == 0 || get_command(OUT_TYPE, in) == 0)
        return BAD_OUTPUT_TYPE;
    if (P_NO <= 3 && OUT_TYPE != TYPE_RE)
        return MUST_OUTPUT_FLOATS;
    if (const int result = skip_lines(in); result > 0)
        return result;
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
    std::int32_t code = 0;
    if (get_command(code, in) == 0)
        return INVALID_COMMAND;
    return is_input_code(code) != 0 ? set_input_type(code) : do_commands(code, section, in);
}

// item -> command | comment | "<" | ">" | literal data
int do_item(Section &section, Input &in)
{
    if (is_command(in) != 0)
        return run_command(section, in);
    if (Comment kind{}; is_comment(in.line, in.pos, kind) != 0)
        return pass_comment(in, kind);
    if (peek(in) == '<' || peek(in) == '>') {
        if (set_loop(peek(in)) == 0)
            return BAD_LOOP;
        ++in.pos;
        return OK;
    }
    return parse_pdata(section, in);
}

// passes over what does not fit into the block, up to the section's end
int pass_rest(Input &in)
{
    while (!at_section_end(in)) { // each step moves on or reads a line
        int     result = OK;
        Comment kind{};
        if (peek(in) == '\0')
            result = next_line(in);
        else if (is_comment(in.line, in.pos, kind) != 0)
            result = pass_comment(in, kind);
        else
            ++in.pos;
        if (result != OK)
            return result;
    }
    return OK;
}

// body -> { item }
int do_body(Section &section, Input &in)
{
    while (!at_section_end(in)) { // each step moves on or reads a line
        if (section.done)
            return pass_rest(in);
        int result = OK;
        if (peek(in) == '\0')
            result = next_line(in);
        else if (is_blank(peek(in)))
            skip_blanks(in);
        else
            result = do_item(section, in);
        if (result != OK)
            return result;
    }
    return OK;
}

// section -> body, and what fills the block behind it
int do_pfield(Section &section, Input &in)
{
    const std::uint64_t events_before = EVENTS;
    if (P_NO > 2)
        LUT = section.list;
    if (const int result = do_body(section, in); result != OK)
        return result;
    if (WROTE_DATA == 0) {
        Mprintf("\nERROR: P%d is blank ... OY!\n\n", P_NO);
        return FULLY_REPORTED;
    }
    if (const int result = fill_to_end(section.list, section.cursor, section.queue, in); result != OK)
        return result;
    if (P_NO > 2 && ETIME < 0.0F && EVENTS != events_before)
        Mprintf("\n\tP%d: Fused data changed \"events\" from %d to %d", P_NO, events_before, EVENTS);
    return OK;
}

} // namespace

int do_pN(Input &in, Event *&list)
{
    if (const int result = skip_lines(in); result > 0)
        return result;
    const auto slot = static_cast<std::size_t>(P_NO - 2);
    RE_FW[slot]     = RE_FW_DEFAULT;
    if (const int result = get_output_type(in); result != OK)
        return result;
    OUTS[slot] = OUT_TYPE;

    Section   section{list, list, nullptr, true, false};
    const int result = do_pfield(section, in);
    FreeQNodes(section.queue);
    return result;
}

int do_commands(std::int32_t code, Section &section, Input &in)
{
    switch (code) {
    case CMD_S2:
        return do_S2(section, in);
    case CMD_DV:
        return set_rand_dev2(in);
    case CMD_PF:
        return set_pfactor(in);
    case CMD_RD:
        return set_rand_dev(in);
    case CMD_RS:
        return set_rand_seed(in);
    case CMD_SR:
        return set_samp_rate(in);
    default:
        return do_DDF(static_cast<Code>(code), section, in);
    }
}

} // namespace orlo

// The block's sections may stand in any order after p2, which makes the events that the others fill; DID_P remembers which are
// done.

#include "lang/iblock.h"

#include "diag/messages.h"
#include "diag/report.h"
#include "events/block.h"
#include "events/pfields.h"
#include "input/scanners.h"
#include "lang/pfield.h"
#include "lang/settings.h"
#include "words/keywords.h"

namespace orlo {

namespace {

constexpr int SEPARATORS = 4; // between two items of the header

int skip_separators(Input &in)
{
    for (int i = 0; i < SEPARATORS; ++i)
        if (const int error = skip_stuff(in))
            return error;
    return OK;
}

// skipped-block -> anything up to "}" outside comments
int skip_block(Input &in)
{
    while (peek(in) != '}') { // each step moves on or reads a line
        Comment kind{};
        if (peek(in) == '\0') {
            if (const int status = get_buff(in)) {
                if (status == END_OF_INPUT) // nothing is left: the position moves past the line, where it reads as its end
                    in.line[++in.pos] = '\0';
                return status;
            }
        } else if (is_comment(in.line, in.pos, kind)) {
            if (const int error = pass_comment(in, kind))
                return error;
        } else {
            ++in.pos;
        }
    }
    ++in.pos;
    if (observer != nullptr)
        observer->block_skipped(I_NO, in.pos);
    return END_OF_INPUT;
}

void tell_header(HeaderPart part, const Input &in, std::uint32_t begin)
{
    if (observer != nullptr)
        observer->header_number(part, begin, end_of_item(in, begin));
}

// number -> "i" [ "-" ] digits
int get_i_number(Input &in)
{
    ++in.pos;
    if (const int error = skip_space(in))
        return error;
    if (!is_digit(peek(in)) && peek(in) != '-')
        return BAD_I_NUMBER;
    return get_i(I_NO, in) ? OK : BAD_I_NUMBER;
}

// pfields -> "=" digits
int get_pfield_count(Input &in)
{
    if (const int error = skip_space(in))
        return error;
    if (peek(in) != '=')
        return MISSING_EQUALS;
    ++in.pos;
    if (const int error = skip_space(in))
        return error;
    const std::uint32_t begin = in.pos;
    if (!get_i(MAX_PFIELDS, in))
        return BAD_P_COUNT;
    tell_header(HeaderPart::pfields, in, begin);
    if (MAX_PFIELDS < LEAST_PFIELDS || MAX_PFIELDS > MOST_PFIELDS) {
        tell(Severity::error, "\n\nERROR: ", "Bad number of p-fields (3 - %d)", "\n", MOST_PFIELDS);
        return TEXT_REPORTED;
    }
    if (MAX_PFIELDS > MANY_PFIELDS)
        warn(in, W_MANY_PFIELDS);
    return make_pfield_record(MAX_PFIELDS) ? OK : OUT_OF_MEMORY;
}

int get_start(Input &in)
{
    if (const int error = skip_separators(in))
        return error;
    const std::uint32_t begin = in.pos;
    if (!get_f(STIME, in) || STIME < 0.0F)
        return BAD_START_TIME;
    tell_header(HeaderPart::start, in, begin);
    if (STIME > LATE_START)
        warn(in, W_LATE_START);
    SBEAT = STIME;
    return OK;
}

// amount -> "-" digits | real
int get_amount(Input &in)
{
    EVENTS = 0;
    BEATS  = 0.0F;
    if (peek(in) == '-') {
        ++in.pos;
        if (!get_uli(EVENTS, in))
            return BAD_EVENTS;
        ETIME = -static_cast<float>(EVENTS);
        return OK;
    }
    if (!is_digit(peek(in)) && peek(in) != '+' && peek(in) != '.')
        return peek(in) == '{' ? SKIPPED_DURATION : BAD_DURATION;
    if (!get_f(BEATS, in) || BEATS < 0.0F)
        return BAD_BEATS;
    ETIME = BEATS;
    return OK;
}

int get_length(Input &in)
{
    if (const int error = skip_separators(in))
        return error;
    const std::uint32_t begin = in.pos;
    if (const int error = get_amount(in))
        return error;
    tell_header(HeaderPart::length, in, begin);
    if (BEATS > MOST_BEATS) {
        complain_here(in, "Maximum number of beats = %f", MOST_BEATS);
        return TEXT_REPORTED;
    }
    if (BEATS > LONG_DURATION)
        warn(in, W_LONG_DURATION);
    return OK;
}

// header -> number pfields start length "{"
int do_p1(Input &in)
{
    if (observer != nullptr)
        observer->block_begins(in.pos);
    if (const int error = get_i_number(in))
        return error;
    if (I_NO < 0)
        return skip_block(in);
    if (const int error = get_pfield_count(in))
        return error;
    if (const int error = get_start(in))
        return error;
    if (const int error = get_length(in))
        return error;
    if (const int error = skip_separators(in))
        return error;
    if (peek(in) != '{')
        return MISSING_OPEN_BRACE;
    ++in.pos;
    if (observer != nullptr)
        observer->block_header(I_NO, MAX_PFIELDS, SBEAT, BEATS, EVENTS, in.pos);
    return OK;
}

// whether the section of P_NO may stand here
int check_pfield_number()
{
    if (P_NO > MAX_PFIELDS)
        return P_OUT_OF_BOUNDS;
    if (OUTS == nullptr) // after a block that has been written
        return INVALID_IBLOCK;
    if (P_NO != 2 && !DID_P[2])
        return P2_MUST_BE_FIRST;
    if (P_NO < 2)
        return BAD_P_NUMBER;
    return DID_P[P_NO] ? DUPLICATE_PFIELD : OK;
}

// section -> "p" digits body
int do_section(Input &in, Event *&list)
{
    if (IN_LOOP)
        warn(in, W_LOOP_TERMINATED);
    const std::uint32_t begin = in.pos++;
    if (!get_i(P_NO, in))
        return BAD_P_NUMBER;
    if (const int error = check_pfield_number())
        return error;
    reset_pfield(list);
    if (observer != nullptr)
        observer->section_begins(P_NO, begin, in.pos);
    if (const int error = do_pN(in, list))
        return error;
    DID_P[P_NO] = true;
    if (P_NO == 2)
        EVENTS = EVENT_NO;
    if (observer != nullptr)
        observer->section_ends();
    return OK;
}

// block-commands -> { comment | "rs" value | "rd" value }, up to a section
int do_block_commands(Input &in)
{
    for (;;) { // each round takes a command or a comment
        if (const int status = skip_lines(in))
            return status;
        if (is_pfield(in))
            return OK;
        if (Comment kind{}; is_comment(in.line, in.pos, kind)) {
            if (const int error = pass_comment(in, kind))
                return error;
            continue;
        }
        if (!is_command(in))
            return INVALID_IBLOCK;
        const std::uint32_t begin = in.pos;
        std::int32_t        code  = 0;
        if (!get_command(code, in))
            return INVALID_COMMAND;
        if (code != CMD_RS && code != CMD_RD)
            return BAD_VALUE;
        if (observer != nullptr)
            observer->command_begins(code, begin);
        if (const int error = code == CMD_RS ? set_rand_seed(in) : set_rand_dev(in))
            return error;
    }
}

// one part of a block, or the next line
int do_part(Input &in, Event *&list)
{
    if (peek(in) == '\0')
        return get_buff(in);
    if (is_pfield(in))
        return do_section(in, list);
    if (peek(in) != 'i')
        return do_block_commands(in);
    const int status = do_p1(in);
    if (status == END_OF_INPUT)
        warn(in, W_BLOCK_SKIPPED);
    return status;
}

// end -> "}"
int end_block(Input &in)
{
    for (std::int32_t p = 2; p <= MAX_PFIELDS; ++p)
        if (!DID_P[p])
            return SKIPPED_PFIELDS;
    ++in.pos;
    if (observer != nullptr)
        observer->block_ends(in.pos);
    return OK;
}

} // namespace

// block -> { header | section | block-commands } end
int parse_iblock(Input &in, Event *&list)
{
    clear_pfields_done();
    for (;;) { // each round takes a part of the block or reads a line
        skip_blanks(in);
        if (peek(in) == '}')
            return end_block(in);
        if (const int status = do_part(in, list))
            return status;
    }
}

} // namespace orlo

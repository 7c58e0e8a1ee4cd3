// A false block is skipped inside the line reader: its lines are read raw, and only the number of open blocks is kept.

#include "input/conditionals.h"

#include "diag/messages.h"
#include "input/comment_flags.h"
#include "input/constants.h"
#include "input/directives.h"
#include "input/macro_expansion.h"
#include "input/macros.h"
#include "input/scanners.h"

#include <cstring>
#include <string_view>

namespace orlo {
namespace {

std::int32_t IF_MATCH;    // open blocks, kept and skipped alike
bool         IN_IF0;      // a false block is being skipped
std::int32_t start_level; // IF_MATCH before the block that is skipped
float        value;       // the condition that was read last

bool stands_at(const char *line, std::uint32_t pos, std::string_view word)
{
    return std::strncmp(line + pos, word.data(), word.size()) == 0;
}

// a "#" in a line that is skipped: blocks inside are counted
// true when the block that is skipped ends here
bool skip_directive(Input &in)
{
    ++in.pos;
    if (is_if(in.line, in.pos))
        ++IF_MATCH;
    return do_endif(in) == OK && IF_MATCH == start_level;
}

// skipped-block -> characters "#" "endif", with blocks inside it
int skip_false_block(Input &in)
{
    RawComments flags{false, false};
    for (bool closed = false; !closed;) { // each step moves on or reads a line
        if (peek(in) == '\0') {
            if (const int status = get_buff(in))
                return status == END_OF_INPUT ? static_cast<int>(EOF_IN_IF) : status;
            flags.line = false;
        } else if (peek(in) == '#' && !flags.line && !flags.block) {
            closed = skip_directive(in);
        } else {
            follow_comment(flags, peek(in), in.line[in.pos + 1]);
            ++in.pos;
        }
    }
    return OK;
}

// if -> "if(" value ")" lines "#endif"
// a condition that can't be read is not reported, unless memory is exhausted: the block goes by the one before it
int do_if(Input &in)
{
    const std::uint32_t begin = in.pos - 1;
    if (get_if(in, value) == OUT_OF_MEMORY)
        return OUT_OF_MEMORY;
    if (observer != nullptr)
        observer->condition(begin, end_of_item(in, begin), value != 0.0F);
    start_level = IF_MATCH;
    ++IF_MATCH;
    if (value != 0.0F)
        return OK;
    IN_IF0           = true;
    const int result = skip_false_block(in);
    IN_IF0           = false;
    return result;
}

} // namespace

bool is_if(const char *line, std::uint32_t pos) { return stands_at(line, pos, IF_WORD) && line[pos + IF_WORD.size()] == '('; }

bool is_endif(const char *line, std::uint32_t pos) { return stands_at(line, pos, ENDIF_WORD); }

bool in_if0() { return IN_IF0; }

int do_if_interface(Input &in) { return do_if(in); }

int get_if(Input &in, float &condition)
{
    if (!is_if(in.line, in.pos))
        return BAD_IF;
    move_within_line(in, IF_WORD.size() + 1);
    skip_blanks(in);
    if (peek(in) == '$') {
        ++in.pos;
        if (const int error = expand_macro(in))
            return error;
    }
    if (peek(in) == '~') {
        ++in.pos;
        if (const int error = expand_variables(in))
            return error;
    }
    if (!is_digit(peek(in)) || !get_f(condition, in))
        return IF_NEEDS_VALUE;
    skip_blanks(in);
    if (peek(in) != ')')
        return IF_MISSING_PAREN;
    ++in.pos;
    return OK;
}

int do_endif(Input &in)
{
    if (!is_endif(in.line, in.pos))
        return BAD_ENDIF;
    const std::uint32_t begin = in.pos - 1;
    move_within_line(in, ENDIF_WORD.size());
    if (IF_MATCH < 1)
        return MISMATCHED_ENDIF;
    --IF_MATCH;
    if (observer != nullptr && (!IN_IF0 || IF_MATCH == start_level)) // the end of a block inside a skipped one is skipped too
        observer->condition_ends(begin, in.pos);
    return OK;
}

bool ifdef_match() { return IF_MATCH == 0; }

void reset_conditionals()
{
    IF_MATCH    = 0;
    IN_IF0      = false;
    start_level = 0;
    value       = 0.0F;
}

} // namespace orlo

// A false block is skipped inside the line reader: its lines are read raw, and only the number of open blocks is kept.

#include "input/conditionals.h"

#include "diag/messages.h"
#include "input/constants.h"
#include "input/macro_expansion.h"
#include "input/scanners.h"

#include <cstring>

namespace orlo {
namespace {

std::int32_t IF_MATCH    = 0;     // open blocks, kept and skipped alike
bool         IN_IF0      = false; // a false block is being skipped
std::int32_t start_level = 0;     // IF_MATCH before the block that is skipped
float        value       = 0.0F;  // the condition that was read last

bool stands_at(const char *line, std::uint32_t pos, const char *word)
{
    return std::strncmp(line + pos, word, std::strlen(word)) == 0;
}

// moves over a comment within a line that is skipped; in_block tells whether a block comment is open
// true when there was one
bool pass_comment(Input &in, bool &in_block)
{
    if (in_block) {
        in_block = !stands_at(in.line, in.pos, "*/");
        in.pos += in_block ? 1 : 2;
        return true;
    }
    if (stands_at(in.line, in.pos, "/*")) {
        in_block = true;
        in.pos += 2;
        return true;
    }
    if (peek(in) == ';') {
        in.pos += static_cast<std::uint32_t>(std::strlen(in.line + in.pos));
        return true;
    }
    return false;
}

// skipped-block -> characters "#" "endif", with blocks inside it
int skip_false_block(Input &in)
{
    for (bool in_block = false;;) {
        if (peek(in) == '\0') {
            const int result = get_buff(in);
            if (result != OK)
                return result > 0 ? result : EOF_IN_IF;
        } else if (pass_comment(in, in_block)) {
            continue;
        } else if (peek(in) != '#') {
            ++in.pos;
        } else {
            ++in.pos;
            if (is_if(in.line, in.pos) != 0)
                ++IF_MATCH;
            else if (is_endif(in.line, in.pos) != 0) {
                if (const int result = do_endif(in); result != OK)
                    return result;
                if (IF_MATCH == start_level)
                    return OK;
            }
        }
    }
}

// if -> "if(" value ")" lines "#endif"
// a condition that can't be read is not reported: the block goes by the one before it
int do_if(Input &in)
{
    static_cast<void>(get_if(in, value));
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

int is_if(const char *line, std::uint32_t pos) { return stands_at(line, pos, "if(") ? 1 : 0; }

int is_endif(const char *line, std::uint32_t pos) { return stands_at(line, pos, "endif") ? 1 : 0; }

int in_if0() { return IN_IF0 ? 1 : 0; }

int do_if_interface(Input &in) { return do_if(in); }

int get_if(Input &in, float &condition)
{
    if (is_if(in.line, in.pos) == 0)
        return BAD_IF;
    in.pos += 3;
    skip_blanks(in);
    if (peek(in) == '$') {
        ++in.pos;
        if (const int result = expand_macro(in); result != OK)
            return result;
    }
    if (peek(in) == '~') {
        ++in.pos;
        if (const int result = expand_variables(in); result != OK)
            return result;
    }
    if (!is_digit(peek(in)) || get_f(condition, in) == 0)
        return IF_NEEDS_VALUE;
    skip_blanks(in);
    if (peek(in) != ')')
        return IF_MISSING_PAREN;
    ++in.pos;
    return OK;
}

int do_endif(Input &in)
{
    if (is_endif(in.line, in.pos) == 0)
        return BAD_ENDIF;
    in.pos += 5;
    if (IF_MATCH < 1)
        return MISMATCHED_ENDIF;
    --IF_MATCH;
    return OK;
}

int ifdef_match() { return IF_MATCH == 0 ? 1 : 0; }

} // namespace orlo

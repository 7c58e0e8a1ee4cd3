// A repeat places the last value the way the first placement did, except that from p4 up the last chord is repeated as a whole.
// "x0" repeats as often as a 64-bit count can: until the block is full, or until p2 is seen not to move.

#include "lang/data_list.h"

#include "diag/messages.h"
#include "diag/report.h"
#include "events/block.h"
#include "events/filling.h"
#include "events/storing.h"
#include "input/character_set.h"
#include "input/scanners.h"
#include "words/values.h"

namespace orlo {
namespace {

constexpr CharacterSet separators = set_of(" \t\n\v\f\r/',:");

// the section ends here: nothing more fits into the block
int block_full(Section &section, const Input &in, Warning warning)
{
    warn(in, warning);
    section.done = true;
    return OK;
}

// value -> a number, pitch or rhythm in the section's input type
int do_data(Section &section, Input &in)
{
    if (out_of_time())
        return block_full(section, in, W_EVENTS_NOT_ADDED);
    section.first_value       = false;
    const std::uint32_t begin = in.pos;
    float               value = 0.0F;
    if (!get_input_type(value, in))
        return BAD_VALUE;
    if (observer != nullptr)
        observer->literal(begin, in.pos);
    LAST_VAL = value;
    if (IN_LOOP && !StoreInQ(section.queue, IS_FUSED, value))
        return MISPLACED_LOOP;
    if (const int error = store_one(section, in, value, ZeroBy::value))
        return error;
    ++EVENT_NO;
    return OK;
}

int repeat_last(Section &section, const Input &in)
{
    if (const int error = store_last(section, in, ZeroBy::value))
        return error;
    if (IN_LOOP && !DoQEvent(section.queue))
        return MISPLACED_LOOP;
    ++EVENT_NO;
    return OK;
}

// slashes -> "/" { "/" }
// the position is after the first, which only separates
int do_slash(Section &section, Input &in)
{
    while (peek(in) == '/') { // each round takes a slash
        ++in.pos;
        if (out_of_time())
            return block_full(section, in, W_REPEAT_TRUNCATED);
        if (observer != nullptr)
            observer->repeat(in.pos - 1, in.pos);
        if (const int error = repeat_last(section, in))
            return error;
        skip_blanks(in);
    }
    return OK;
}

// repeat -> "x" digits
int do_x(Section &section, Input &in)
{
    const std::uint32_t begin = in.pos;
    ++in.pos;
    std::uint64_t count = 0;
    if (!is_digit(peek(in)) || !get_uli(count, in))
        return X_NEEDS_DIGIT;
    if (observer != nullptr)
        observer->repeat(begin, end_of_item(in, begin));
    const bool to_the_end = count == 0;
    for (std::uint64_t left = count - 1; left > 0; --left) { // ends with the count or the block
        if (out_of_time())
            return block_full(section, in, W_REPEAT_TRUNCATED);
        const float before = CBEATS;
        if (const int error = repeat_last(section, in))
            return error;
        if (to_the_end && p2_stands_still(before))
            return never_ends(in);
    }
    return OK;
}

// fuse -> "'" | ":"
int do_fuse(Input &in)
{
    ++IS_FUSED;
    if (P_NO != 2)
        ++EVENTS;
    ++in.pos;
    return IS_FUSED >= 2 ? MULTIPLE_FUSES : OK;
}

int do_separators(Section &section, Input &in)
{
    skip_blanks(in);
    if (section.first_value)
        return INVALID_IBLOCK;
    switch (peek(in)) {
    case '\'':
    case ':':
        return do_fuse(in);
    case '/':
        ++in.pos;
        skip_blanks(in);
        return do_slash(section, in);
    case 'x':
        return do_x(section, in);
    default:
        ++in.pos;
        return OK;
    }
}

} // namespace

int parse_pdata(Section &section, Input &in)
{
    const char c = peek(in);
    if (separators.has(c) || c == 'x')
        return do_separators(section, in);
    return in_limits(c) ? do_data(section, in) : OUT_OF_BOUNDS;
}

} // namespace orlo

// A repeat places the last value the way the first placement did, except that from p4 up the last chord is repeated as a whole.
// "x0" repeats as often as a 64-bit count can: until the block is full, or until p2 is seen not to move.

#include "lang/data_list.h"

#include "diag/messages.h"
#include "diag/report.h"
#include "events/tempo_map.h"
#include "events/timing.h"
#include "input/scanners.h"
#include "lang/values.h"

namespace orlo {
namespace {

bool is_separator(char c) { return is_blank(c) || c == '/' || c == '\'' || c == ',' || c == ':'; }

// the section ends here: nothing more fits into the block
int block_full(Section &section, const Input &in, Warning warning)
{
    warning_no(warning, in.line_no, in.line, in.pos);
    section.done = true;
    return OK;
}

int place_start(Section &section, float value)
{
    const float seconds = to_tempo(value);
    if (value == 0.0F && EVENTS == 0)
        return ZERO_INTERVAL;
    return store_start(section.list, value, seconds) != 0 ? OK : OUT_OF_MEMORY;
}

int place_value(Section &section, float value, const Input &in)
{
    if (P_NO == 2)
        return place_start(section, value);
    if (P_NO == 3) {
        store_p3(section.cursor, in, value);
        return OK;
    }
    return store_value_or_rest(section.list, section.cursor, value) != 0 ? OK : OUT_OF_MEMORY;
}

// value -> a number, pitch or rhythm in the section's input type
int do_data(Section &section, Input &in)
{
    if (out_of_time() != 0)
        return block_full(section, in, W_EVENTS_NOT_ADDED);
    section.first_value = false;
    float value         = 0.0F;
    if (get_input_type(value, in) == 0)
        return BAD_VALUE;
    LAST_VAL = value;
    if (IN_LOOP != 0 && StoreInQ(section.queue, IS_FUSED, value) == 0)
        return MISPLACED_LOOP;
    if (const int result = place_value(section, value, in); result != OK)
        return result;
    ++EVENT_NO;
    return OK;
}

int repeat_chord(Section &section)
{
    std::uint64_t members = 0;
    if (DoListChord(section.list, section.cursor, LUT, P_NO, MAX_PFIELDS, members) == 0)
        return OUT_OF_MEMORY;
    EVENTS += members;
    EVENT_NO += members;
    return OK;
}

int repeat_last(Section &section, const Input &in)
{
    const bool chord_pending = P_NO > 3 && section.cursor != LUT;
    const int  result        = chord_pending ? repeat_chord(section) : place_value(section, LAST_VAL, in);
    if (result != OK)
        return result;
    if (IN_LOOP != 0 && DoQEvent(section.queue) == 0)
        return MISPLACED_LOOP;
    ++EVENT_NO;
    return OK;
}

// slashes -> "/" { "/" }
// from behind the first, which only separates
int do_slash(Section &section, Input &in)
{
    while (peek(in) == '/') { // each round takes a slash
        ++in.pos;
        if (out_of_time() != 0)
            return block_full(section, in, W_REPEAT_TRUNCATED);
        if (const int result = repeat_last(section, in); result != OK)
            return result;
        skip_blanks(in);
    }
    return OK;
}

// repeat -> "x" digits
int do_x(Section &section, Input &in)
{
    ++in.pos;
    std::uint64_t count = 0;
    if (!is_digit(peek(in)) || get_uli(count, in) == 0)
        return X_NEEDS_DIGIT;
    const bool to_the_end = count == 0;
    for (std::uint64_t left = count - 1; left > 0; --left) { // ends with the count or the block
        if (out_of_time() != 0)
            return block_full(section, in, W_REPEAT_TRUNCATED);
        const float before = CBEATS;
        if (const int result = repeat_last(section, in); result != OK)
            return result;
        if (to_the_end && p2_stands_still(before) != 0)
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
    if (is_separator(c) || c == 'x')
        return do_separators(section, in);
    return in_limits(c) != 0 ? do_data(section, in) : OUT_OF_BOUNDS;
}

} // namespace orlo

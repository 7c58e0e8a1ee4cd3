// The choice without repetition draws until an element comes up that is still free: the number of draws is part of what a seed
// reproduces. It ends because at least one element is free.

#include "ddf/generator.h"

#include "ddf/curves.h"
#include "ddf/distributions.h"
#include "ddf/random.h"
#include "diag/messages.h"
#include "diag/report.h"
#include "events/timing.h"
#include "input/scanners.h"
#include "lang/values.h"
#include "output/number_text.h"
#include "output/numerics.h"

#include <algorithm>
#include <cmath>

namespace orlo {
namespace {

// distributions of the letters "b" to "x"
constexpr char  FIRST_LETTER = 'b';
constexpr Range letters[]    = {
       /* b */ Range::beta,     /* c */ Range::uniform, /* d */ Range::uniform, /* e */ Range::uniform,
    /* f */ Range::uniform,
    /* g */ Range::gaussian, /* h */ Range::high,    /* i */ Range::uniform, /* j */ Range::uniform,
    /* k */ Range::uniform,
    /* l */ Range::low,      /* m */ Range::uniform, /* n */ Range::uniform, /* o */ Range::uniform,
    /* p */ Range::uniform,
    /* q */ Range::uniform,  /* r */ Range::uniform, /* s */ Range::uniform, /* t */ Range::triangular,
    /* u */ Range::uniform,  /* v */ Range::uniform, /* w */ Range::uniform, /* x */ Range::bilateral,
};
static_assert(std::size(letters) == 'x' - FIRST_LETTER + 1);

// fraction -> "*" number
int get_fraction(float &fraction, Input &in)
{
    ++in.pos;
    if (!is_digit(peek(in)) && peek(in) != '.')
        return BAD_TIME_FRACTION;
    return get_f(fraction, in) != 0 ? OK : BAD_TIME_FRACTION;
}

// whole-block -> "T" [ fraction ]
int get_whole_block(float &span, Input &in)
{
    ++in.pos;
    float fraction = 1.0F;
    if (peek(in) == '*')
        if (const int result = get_fraction(fraction, in); result != OK)
            return result;
    if (ETIME >= 0.0F)
        span = fraction * ETIME;
    else
        span = -RoundF(fraction * static_cast<float>(EVENTS));
    if (SUPRESS == 0)
        Mprintf("\n\tLine %d: T evaluated at = %f", in.line_no, span);
    return OK;
}

} // namespace

int skip_items(Input &in)
{
    for (;;) { // ends where nothing moves, at the latest at the input's end
        const std::uint64_t line_no = in.line_no;
        const std::uint32_t pos     = in.pos;
        if (const int result = skip_stuff(in); result > 0)
            return result;
        if (in.line_no == line_no && in.pos == pos)
            return OK;
    }
}

int get_dynfunc_dur(float &span, Input &in)
{
    if (const int result = skip_lines(in); result > 0)
        return result;
    if (peek(in) != '(')
        return BAD_DDF_FORMAT;
    ++in.pos;
    if (const int result = skip_items(in); result != OK)
        return result;
    if (peek(in) == 'T') {
        if (const int result = get_whole_block(span, in); result != OK)
            return result;
    } else if (get_f(span, in) == 0) {
        return BAD_SPAN;
    }
    return skip_items(in);
}

int get_weight(Frame &frame, Input &in, int missing)
{
    float weight = 0.0F;
    if (get_f(weight, in) == 0)
        return missing;
    frame.weights.push_back(weight);
    return skip_items(in);
}

std::uint64_t count_of(float span) { return to_uint64(static_cast<double>(std::fabs(span))); }

bool zero_refused(float span) { return P_NO == 2 && span > 0.0F; }

int is_rrange_type(char c)
{
    switch (lower(c)) {
    case 'f':
    case 'l':
    case 'h':
    case 't':
    case 'g':
    case 'x':
    case 'b':
        return 1;
    default:
        return 0;
    }
}

int get_rrange_type(Input &in)
{
    const char letter = lower(peek(in));
    if (is_rrange_type(letter) == 0)
        return static_cast<int>(Range::uniform);
    ++in.pos;
    return static_cast<int>(letters[letter - FIRST_LETTER]);
}

// range -> value | "[" [ letter ] value [ value ] "]"
int get_range(RangeData &range, Input &in)
{
    if (peek(in) != '[') {
        range.type = static_cast<int>(Range::uniform);
        if (get_input_type(range.low, in) == 0)
            return VALUES_OR_BRACKETS;
        range.high = range.low;
        return OK;
    }
    ++in.pos;
    if (const int result = skip_items(in); result != OK)
        return result;
    range.type = get_rrange_type(in);
    if (const int result = skip_items(in); result != OK)
        return result;
    if (get_input_type(range.low, in) == 0)
        return VALUE_MISSING;
    range.high = range.low;
    if (const int result = skip_items(in); result != OK)
        return result;
    if (peek(in) != ']') {
        if (get_input_type(range.high, in) == 0)
            return VALUE_MISSING;
        if (const int result = skip_items(in); result != OK)
            return result;
        if (peek(in) != ']')
            return TOO_MANY_VALUES;
    }
    ++in.pos;
    if (range.low > range.high)
        swapf(range.low, range.high);
    return OK;
}

// values -> value | "[" value { value } "]"
int get_values(std::vector<float> &values, Input &in)
{
    float value = 0.0F;
    if (peek(in) != '[') {
        if (get_input_type(value, in) == 0)
            return VALUES_OR_BRACKETS;
        values.push_back(value);
        return OK;
    }
    ++in.pos;
    if (const int result = skip_items(in); result != OK)
        return result;
    do { // each value takes characters
        if (get_input_type(value, in) == 0)
            return VALUE_MISSING;
        values.push_back(value);
        if (const int result = skip_items(in); result != OK)
            return result;
    } while (peek(in) != ']');
    ++in.pos;
    return OK;
}

int get_choice(Choice &mode, Input &in)
{
    mode = Choice::any;
    if (peek(in) == '*')
        mode = Choice::all_before_repeating;
    else if (peek(in) == 'x')
        mode = Choice::never_twice;
    else
        return OK;
    ++in.pos;
    return skip_items(in);
}

ChoiceState init_did(Choice mode, std::size_t n) { return {n == 1 ? Choice::any : mode, -1, 0, std::vector<bool>(n, false)}; }

std::size_t get_set_element(ChoiceState &state, std::size_t n)
{
    if (state.mode == Choice::all_before_repeating && state.drawn == n) {
        std::fill(state.did.begin(), state.did.end(), false);
        state.drawn = 0;
    }
    for (;;) { // ends with an element that is not refused: one is free
        const std::size_t element = static_cast<std::size_t>(draw_int()) % n;
        switch (state.mode) {
        case Choice::any:
            return element + 1;
        case Choice::all_before_repeating:
            if (state.did[element])
                continue;
            state.did[element] = true;
            ++state.drawn;
            return element + 1;
        case Choice::never_twice:
            if (static_cast<std::int64_t>(element) == state.last)
                continue;
            state.last = static_cast<std::int64_t>(element);
            return element + 1;
        }
    }
}

float curve_at(const Place &place, float curve, float exponent, float start, float end)
{
    const int  code  = to_int32(static_cast<double>(curve));
    const auto power = static_cast<double>(exponent);
    if (P_NO == 2) {
        if (place.span < 0.0F)
            return pplot_val(place.index, place.count, code, start, end, power);
        return tplot_val(code, place.elapsed, place.span, start, end, power);
    }
    if (code < TIME_CURVE)
        return pplot_val(place.index, place.count, code, start, end, power);
    const float time = place.event->beat - place.first;
    std::printf("\ntime = %f", printable(static_cast<double>(time)));
    return tplot_val(code - TIME_CURVE, time, place.last + place.first, start, end, power);
}

} // namespace orlo

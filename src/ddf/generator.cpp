// The choice without repetition draws until an element comes up that is still free: the number of draws is part of what a seed
// reproduces. It ends because at least one element is free.

#include "ddf/generator.h"

#include "base/curves.h"
#include "base/distributions.h"
#include "base/number_text.h"
#include "base/numerics.h"
#include "base/random.h"
#include "base/switches.h"
#include "diag/report.h"
#include "events/block.h"
#include "input/scanners.h"
#include "platform/screen.h"
#include "words/range_letters.h"
#include "words/values.h"

#include <algorithm>
#include <cmath>

namespace orlo {
namespace {

// fraction -> "*" number
int get_fraction(float &fraction, Input &in)
{
    ++in.pos;
    if (!is_digit(peek(in)) && peek(in) != '.')
        return BAD_TIME_FRACTION;
    return get_f(fraction, in) ? OK : BAD_TIME_FRACTION;
}

// whole-block -> "T" [ fraction ]
int get_whole_block(float &span, Input &in)
{
    ++in.pos;
    float fraction = 1.0F;
    if (peek(in) == '*')
        if (const int error = get_fraction(fraction, in))
            return error;
    if (ETIME >= 0.0F)
        span = fraction * ETIME;
    else
        span = -RoundF(fraction * static_cast<float>(EVENTS));
    if (!SUPRESS)
        Mprintf("\n\tLine %d: T evaluated at = %f", in.line_no, span);
    return OK;
}

} // namespace

int skip_items(Input &in)
{
    for (;;) { // ends where nothing moves, at the latest at the input's end
        const std::uint64_t line_no = in.line_no;
        const std::uint32_t pos     = in.pos;
        if (const int error = skip_stuff(in))
            return error;
        if (in.line_no == line_no && in.pos == pos)
            return OK;
    }
}

int get_dynfunc_dur(float &span, Input &in)
{
    if (const int error = skip_space(in))
        return error;
    if (peek(in) != '(')
        return BAD_DDF_FORMAT;
    ++in.pos;
    if (const int error = skip_items(in))
        return error;
    const std::uint32_t begin = in.pos;
    if (peek(in) == 'T') {
        if (const int error = get_whole_block(span, in))
            return error;
    } else if (!get_f(span, in)) {
        return BAD_SPAN;
    }
    tell_number(in, Part::span, static_cast<double>(span), begin);
    return skip_items(in);
}

int get_weight(Frame &frame, Input &in, int missing)
{
    const std::uint32_t begin  = in.pos;
    float               weight = 0.0F;
    if (!get_f(weight, in))
        return missing;
    tell_number(in, Part::weight, static_cast<double>(weight), begin);
    frame.weights.push_back(weight);
    return skip_items(in);
}

std::uint64_t count_of(float span) { return to_uint64(static_cast<double>(std::fabs(span))); }

bool zero_refused(float span) { return P_NO == 2 && span > 0.0F; }

namespace {

int get_bound(float &bound, Part part, Input &in, int missing)
{
    const std::uint32_t begin = in.pos;
    if (!get_input_type(bound, in))
        return missing;
    tell_number(in, part, static_cast<double>(bound), begin);
    return OK;
}

// its letter, where there is one
void tell_type(const RangeData &range, const Input &in, std::uint32_t begin)
{
    tell_number(in, Part::range, static_cast<double>(range.type), begin);
}

} // namespace

// range -> value | "[" [ letter ] value [ value ] "]"
int get_range(RangeData &range, Input &in)
{
    if (peek(in) != '[') {
        range.type = static_cast<int>(Range::uniform);
        tell_type(range, in, in.pos);
        const int error = get_bound(range.low, Part::low, in, VALUES_OR_BRACKETS);
        range.high      = range.low;
        return error;
    }
    ++in.pos;
    if (const int error = skip_items(in))
        return error;
    const std::uint32_t begin = in.pos;
    range.type                = get_rrange_type(in);
    tell_type(range, in, begin);
    if (const int error = skip_items(in))
        return error;
    if (const int error = get_bound(range.low, Part::low, in, VALUE_MISSING))
        return error;
    range.high = range.low;
    if (const int error = skip_items(in))
        return error;
    if (peek(in) != ']') {
        if (const int error = get_bound(range.high, Part::high, in, VALUE_MISSING))
            return error;
        if (const int error = skip_items(in))
            return error;
        if (peek(in) != ']')
            return TOO_MANY_VALUES;
    }
    ++in.pos;
    if (range.low > range.high)
        swapf(range.low, range.high);
    return OK;
}

namespace {

// value -> one of a list
int get_value_of_list(std::vector<float> &values, Input &in, int missing)
{
    const std::uint32_t begin = in.pos;
    float               value = 0.0F;
    if (!get_input_type(value, in))
        return missing;
    tell_number(in, Part::value, static_cast<double>(value), begin);
    values.push_back(value);
    return OK;
}

int tell_list(const std::vector<float> &values, std::size_t before, const Input &in)
{
    tell_number(in, Part::list_end, static_cast<double>(values.size() - before), in.pos);
    return OK;
}

} // namespace

// values -> value | "[" value { value } "]"
int get_values(std::vector<float> &values, Input &in)
{
    const std::size_t before = values.size();
    if (peek(in) != '[') {
        const int error = get_value_of_list(values, in, VALUES_OR_BRACKETS);
        return error != OK ? error : tell_list(values, before, in);
    }
    ++in.pos;
    if (const int error = skip_items(in))
        return error;
    do { // each value takes characters
        if (const int error = get_value_of_list(values, in, VALUE_MISSING))
            return error;
        if (const int error = skip_items(in))
            return error;
    } while (peek(in) != ']');
    ++in.pos;
    return tell_list(values, before, in);
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
    tell_number(in, Part::choice, static_cast<double>(mode), in.pos - 1);
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
                break;
            state.did[element] = true;
            ++state.drawn;
            return element + 1;
        case Choice::never_twice:
            if (static_cast<std::int64_t>(element) == state.last)
                break;
            state.last = static_cast<std::int64_t>(element);
            return element + 1;
        }
        if (observer != nullptr)
            observer->refused(1);
    }
}

void fix_percents(float *const *records, float *out, int n)
{
    for (int i = 0; i < n; ++i)
        out[i] = records[i][0];
}

int keep_for_loop(Section &section, float value)
{
    return !IN_LOOP || StoreInQ(section.queue, IS_FUSED, value) ? OK : OUT_OF_MEMORY;
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
    if (screen_is_shown()) {
        flush_screen();
        std::fputs("\ntime = ", stdout);
        print_real(stdout, time, 0, 6);
    }
    return tplot_val(code - TIME_CURVE, time, place.last + place.first, start, end, power);
}

} // namespace orlo

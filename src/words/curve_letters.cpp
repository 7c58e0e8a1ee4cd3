#include "words/curve_letters.h"

#include "diag/messages.h"
#include "input/scanners.h"

#include <algorithm>
#include <iterator>

namespace orlo {
namespace {

const CurveLetter *find_letter(char c)
{
    return std::find_if(std::begin(curve_letters), std::end(curve_letters),
                        [c](const CurveLetter &row) { return row.letter == c; });
}

// letter -> [ "c" | "e" | "f" | "l" | "s" | "v" exponent ]
int get_letter(Input &in, int &code, float &exponent)
{
    code              = static_cast<int>(Curve::line);
    exponent          = 1.0F;
    const auto *found = find_letter(lower(peek(in)));
    if (found == std::end(curve_letters))
        return OK;
    ++in.pos;
    code = static_cast<int>(found->curve);
    if (found->curve == Curve::power && (!get_f(exponent, in) || !(exponent > 0.0F)))
        return BAD_CURVE;
    return OK;
}

} // namespace

// curve -> letter [ "*" ]
int get_curve_type(Input &in, float &curve, float &exponent, bool time_allowed)
{
    const std::uint32_t begin = in.pos;
    int                 code  = 0;
    if (const int error = get_letter(in, code, exponent))
        return error;
    skip_blanks(in);
    if (peek(in) == '*') {
        if (!time_allowed)
            return BEAT_CURVE_NOT_HERE;
        ++in.pos;
        code += TIME_CURVE;
    }
    curve = static_cast<float>(code);
    tell_number(in, Part::exponent, static_cast<double>(exponent), begin);
    tell_number(in, Part::curve, static_cast<double>(code), begin);
    return OK;
}

} // namespace orlo

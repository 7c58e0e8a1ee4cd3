// The octave of a note name is remembered for the whole run, so that a melody names it once. A tie is read by recursion, which ends
// with the line: each level has consumed a digit and a comma.

#include "words/values.h"

#include "base/numerics.h"
#include "base/switches.h"
#include "events/block.h"
#include "input/character_set.h"
#include "input/scanners.h"

namespace orlo {
namespace {

constexpr float REST = -1.0F;

constexpr std::int32_t FIRST_OCTAVE = 4;

std::int32_t last_octave; // octave of a note that is written without one; written by get_pitch

// semitones above c of the letters a to g
constexpr float pitch_classes[] = {9.0F, 11.0F, 0.0F, 2.0F, 4.0F, 5.0F, 7.0F};

// modifiers -> { "s" | "f" | "n" | "+" | "-" }, the last two after "nox" alone
bool take_modifiers(float &pitch_class, Input &in)
{
    for (;; ++in.pos) { // ends with the line
        switch (peek(in)) {
        case 's':
            pitch_class += 1.0F;
            break;
        case 'f':
            pitch_class -= 1.0F;
            break;
        case 'n':
            break;
        case '+':
            if (!NX)
                return false;
            pitch_class += 0.5F;
            break;
        case '-':
            if (!NX)
                return false;
            pitch_class -= 0.5F;
            break;
        default:
            return true;
        }
    }
}

constexpr CharacterSet whole_starts  = set_of("0123456789+-");
constexpr CharacterSet octave_starts = set_of("0123456789+-zZ");
constexpr CharacterSet real_starts   = set_of("0123456789+-zZ.");

bool get_whole(float &value, Input &in)
{
    if (!get_f(value, in))
        return false;
    value = RoundF(value);
    return true;
}

} // namespace

bool get_input_type(float &value, Input &in)
{
    if (is_last_variable(in)) {
        value = LAST_VAL;
        ++in.pos;
        return true;
    }
    switch (IN_TYPE) {
    case TYPE_DB:
        return get_db(value, in);
    case TYPE_IN:
        return get_whole(value, in);
    case TYPE_NO:
        return get_pitch(value, in);
    case TYPE_OP:
        return get_oct_pc(value, in);
    case TYPE_RE:
        return get_f(value, in);
    case TYPE_RH:
        return get_rdc(value, in);
    default:
        return false;
    }
}

bool get_pitch(float &value, Input &in)
{
    const char letter = lower(peek(in));
    if (letter == 'r') {
        ++in.pos;
        value = REST;
        return true;
    }
    if (letter < 'a' || letter > 'g')
        return false;
    ++in.pos;
    float pitch_class = pitch_classes[letter - 'a'];
    if (!take_modifiers(pitch_class, in))
        return false;
    if (is_digit(peek(in)) && (!get_i(last_octave, in) || last_octave > MAX_OCTAVE))
        return false;
    const std::int32_t octave = MKMIDI ? last_octave + 1 : last_octave;
    value                     = static_cast<float>(octave * 12) + pitch_class;
    return true;
}

bool get_rdc(float &value, Input &in)
{
    const char c = peek(in);
    if (!is_digit(c) && c != '-' && c != '+')
        return false;
    std::int32_t n = 0;
    if (!get_i(n, in))
        return false;
    float added = 4.0F / static_cast<float>(n < 0 ? -n : n);
    float beats = added;
    for (; peek(in) == '.'; ++in.pos) {
        added *= 0.5F;
        beats += added;
    }
    if (peek(in) == ',') {
        ++in.pos;
        float tied = 0.0F;
        if (!get_rdc(tied, in))
            return false;
        beats += tied;
    }
    value = n < 0 ? -beats : beats;
    return true;
}

bool in_limits(char c)
{
    switch (IN_TYPE) {
    case TYPE_DB:
    case TYPE_RE:
    case TYPE_RH:
        return real_starts.has(c);
    case TYPE_IN:
        return whole_starts.has(c);
    case TYPE_NO:
        return is_digit(c) || is_letter(c);
    case TYPE_OP:
        return octave_starts.has(c);
    default:
        return false;
    }
}

void reset_values() { last_octave = FIRST_OCTAVE; }

} // namespace orlo

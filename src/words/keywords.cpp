// One table holds every two-letter word, with the places where it may stand; the three recognisers and get_command read it.

#include "words/keywords.h"

#include "events/block.h"
#include "events/pfields.h"
#include "input/scanners.h"

#include <algorithm>
#include <iterator>

namespace orlo {
namespace {

constexpr bool by_letters(const Keyword &x, const Keyword &y) { return x.a != y.a ? x.a < y.a : x.b < y.b; }

static_assert(std::is_sorted(std::begin(keywords), std::end(keywords), by_letters));

const Keyword *find_keyword(const Input &in)
{
    const char a = lower(peek(in));
    if (!is_letter(a))
        return nullptr;
    const Keyword wanted{a, lower(in.line[in.pos + 1]), CMD_EX, NOWHERE};
    const auto   *found = std::lower_bound(std::begin(keywords), std::end(keywords), wanted, by_letters);
    return found != std::end(keywords) && !by_letters(wanted, *found) ? found : nullptr;
}

bool begins_keyword(char c)
{
    return std::any_of(std::begin(keywords), std::end(keywords), [c](const Keyword &keyword) { return keyword.a == lower(c); });
}

bool stands_at(const Input &in, WordPlace place)
{
    const Keyword *keyword = find_keyword(in);
    return keyword != nullptr && (keyword->places & place) != 0;
}

// digit-suffix -> [ digits ], 0 to MAX_SUFFIX
// kept in the slot of the p-field being read, when there is one
bool take_digit_suffix(Input &in, std::int32_t *slots, const std::int32_t *otherwise)
{
    std::int32_t value = 0;
    if (is_digit(peek(in))) {
        if (!get_i(value, in) || value > MAX_SUFFIX)
            return false;
    } else if (otherwise != nullptr) {
        value = *otherwise;
    } else {
        return true;
    }
    if (slots != nullptr && P_NO >= 2 && P_NO <= MAX_PFIELDS)
        slots[P_NO - 2] = value;
    return true;
}

// "x" after "no" and "op"
void take_x_suffix(Input &in)
{
    NX = peek(in) == 'x';
    if (NX)
        ++in.pos;
}

} // namespace

bool get_command(std::int32_t &code, Input &in)
{
    const char c = peek(in);
    if (c == '>') {
        code = CMD_DIRECT;
        ++in.pos;
        return true;
    }
    if (c == '#' || c == '$') {
        ++in.pos;
        code = lower(peek(in)) == 'c' ? CMD_CONSTANT : CMD_DIRECTIVE;
        return true;
    }
    const Keyword *keyword = find_keyword(in);
    if (keyword == nullptr)
        return begins_keyword(c);
    code = keyword->code;
    in.pos += 2;
    switch (keyword->code) {
    case TYPE_NO:
    case TYPE_OP:
        take_x_suffix(in);
        return true;
    case TYPE_RE:
        return take_digit_suffix(in, RE_FW, nullptr);
    case TYPE_BN:
        return take_digit_suffix(in, FFT_SZ, &FFT_SZ_DEFAULT);
    default:
        return true;
    }
}

bool is_command(const Input &in) { return peek(in) == '#' || stands_at(in, BLOCK); }

bool is_out_type(const Input &in) { return stands_at(in, OUTPUT); }

bool is_gcommand(const Input &in) { return peek(in) == '#' || peek(in) == '>' || stands_at(in, GLOBAL); }

bool is_input_code(std::int32_t code)
{
    return std::any_of(std::begin(keywords), std::end(keywords),
                       [code](const Keyword &keyword) { return keyword.code == code && (keyword.places & INPUT) != 0; });
}

} // namespace orlo

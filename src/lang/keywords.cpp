// One table holds every two-letter word, with the places where it may stand; the three recognisers and get_command read it.

#include "lang/keywords.h"

#include "events/timing.h"
#include "input/scanners.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace orlo {

std::int32_t *OUTS   = nullptr;
std::int32_t *RE_FW  = nullptr;
std::int32_t *FFT_SZ = nullptr;

namespace {

enum Place : unsigned { NOWHERE = 0, BLOCK = 1, OUTPUT = 2, GLOBAL = 4 };

struct Keyword {
    char     a, b;
    Code     code;
    unsigned places;
};

constexpr Keyword keywords[] = {
    {'b', 'n', TYPE_BN, OUTPUT},         {'d', 'b', TYPE_DB, BLOCK | OUTPUT}, {'d', 'v', CMD_DV, BLOCK},
    {'e', 'x', CMD_EX, BLOCK},           {'h', 'o', CMD_HO, BLOCK},           {'h', 'z', TYPE_HZ, OUTPUT},
    {'i', 'n', TYPE_IN, BLOCK | OUTPUT}, {'m', 'o', CMD_MO, BLOCK},           {'m', 's', CMD_MS, BLOCK},
    {'n', 'o', TYPE_NO, BLOCK},          {'o', 'd', TYPE_OD, OUTPUT},         {'o', 'p', TYPE_OP, BLOCK | OUTPUT},
    {'p', 'f', CMD_PF, BLOCK | GLOBAL},  {'r', 'a', CMD_RA, BLOCK},           {'r', 'd', CMD_RD, BLOCK | GLOBAL},
    {'r', 'e', TYPE_RE, BLOCK | OUTPUT}, {'r', 'h', TYPE_RH, BLOCK},          {'r', 's', CMD_RS, BLOCK | GLOBAL},
    {'r', 'w', CMD_RW, BLOCK},           {'s', '2', CMD_S2, BLOCK},           {'s', 'e', CMD_SE, BLOCK},
    {'s', 'r', CMD_SR, GLOBAL},          {'t', 'e', CMD_TE, GLOBAL},          {'t', 'r', TYPE_TR, OUTPUT},
    {'x', 'x', TYPE_XX, OUTPUT},
};

constexpr bool by_letters(const Keyword &x, const Keyword &y) { return x.a != y.a ? x.a < y.a : x.b < y.b; }

static_assert(std::is_sorted(std::begin(keywords), std::end(keywords), by_letters));

const Keyword *find_keyword(const Input &in)
{
    const char a = lower(peek(in));
    if (a == '\0')
        return nullptr;
    const Keyword wanted{a, lower(in.line[in.pos + 1]), CMD_EX, NOWHERE};
    const auto   *found = std::lower_bound(std::begin(keywords), std::end(keywords), wanted, by_letters);
    return found != std::end(keywords) && !by_letters(wanted, *found) ? found : nullptr;
}

bool begins_keyword(char c)
{
    return std::any_of(std::begin(keywords), std::end(keywords), [c](const Keyword &keyword) { return keyword.a == lower(c); });
}

int stands_at(const Input &in, Place place)
{
    const Keyword *keyword = find_keyword(in);
    return keyword != nullptr && (keyword->places & place) != 0 ? 1 : 0;
}

// digit-suffix -> [ digits ], 0 to 7
// kept in the slot of the p-field being read, when there is one
int take_digit_suffix(Input &in, std::int32_t *slots, const std::int32_t *otherwise)
{
    std::int32_t value = 0;
    if (is_digit(peek(in))) {
        if (get_i(value, in) == 0 || value > 7)
            return 0;
    } else if (otherwise != nullptr) {
        value = *otherwise;
    } else {
        return 1;
    }
    if (slots != nullptr && P_NO >= 2 && P_NO <= MAX_PFIELDS)
        slots[P_NO - 2] = value;
    return 1;
}

// "x" behind "no" and "op"
void take_x_suffix(Input &in)
{
    NX = peek(in) == 'x' ? 1 : 0;
    if (NX != 0)
        ++in.pos;
}

} // namespace

int make_pfield_record(std::int32_t n)
{
    free_pfield_record();
    const auto slots = static_cast<std::size_t>(n - 1);

    OUTS   = static_cast<std::int32_t *>(std::calloc(slots, sizeof(std::int32_t)));
    RE_FW  = static_cast<std::int32_t *>(std::calloc(slots, sizeof(std::int32_t)));
    FFT_SZ = static_cast<std::int32_t *>(std::calloc(slots, sizeof(std::int32_t)));
    if (OUTS != nullptr && RE_FW != nullptr && FFT_SZ != nullptr)
        return 1;
    free_pfield_record();
    return 0;
}

void free_pfield_record()
{
    std::free(OUTS);
    std::free(RE_FW);
    std::free(FFT_SZ);
    OUTS   = nullptr;
    RE_FW  = nullptr;
    FFT_SZ = nullptr;
}

int get_command(std::int32_t &code, Input &in)
{
    const char c = peek(in);
    if (c == '>') {
        code = CMD_DIRECT;
        ++in.pos;
        return 1;
    }
    if (c == '#' || c == '$') {
        ++in.pos;
        code = lower(peek(in)) == 'c' ? CMD_CONSTANT : CMD_DIRECTIVE;
        return 1;
    }
    const Keyword *keyword = find_keyword(in);
    if (keyword == nullptr)
        return begins_keyword(c) ? 1 : 0;
    code = keyword->code;
    in.pos += 2;
    switch (keyword->code) {
    case TYPE_NO:
    case TYPE_OP:
        take_x_suffix(in);
        return 1;
    case TYPE_RE:
        return take_digit_suffix(in, RE_FW, nullptr);
    case TYPE_BN:
        return take_digit_suffix(in, FFT_SZ, &FFT_SZ_DEFAULT);
    default:
        return 1;
    }
}

int is_command(const Input &in) { return peek(in) == '#' ? 1 : stands_at(in, BLOCK); }

int is_out_type(const Input &in) { return stands_at(in, OUTPUT); }

int is_gcommand(const Input &in) { return peek(in) == '#' || peek(in) == '>' ? 1 : stands_at(in, GLOBAL); }

int is_input_code(std::int32_t code)
{
    switch (code) {
    case TYPE_DB:
    case TYPE_IN:
    case TYPE_NO:
    case TYPE_OP:
    case TYPE_OD:
    case TYPE_RE:
    case TYPE_RH:
        return 1;
    default:
        return 0;
    }
}

int is_pfield(const Input &in) { return peek(in) == 'p' && is_digit(in.line[in.pos + 1]) ? 1 : 0; }

} // namespace orlo

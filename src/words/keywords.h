// The two-letter words of the whole language, and the marks that count as commands.
#pragma once

#include "base/codes.h"
#include "input/line_reader.h"

#include <cstdint>

namespace orlo {

/// Where a word may stand: in a p-field section or a block, as an output type, in the global block. INPUT says that it is an input
/// type where it stands in a section.
enum WordPlace : unsigned { NOWHERE = 0, BLOCK = 1, OUTPUT = 2, GLOBAL = 4, INPUT = 8 };

struct Keyword {
    char     a, b;
    Code     code;
    unsigned places;
};

inline constexpr Keyword keywords[] = {
    {'b', 'n', TYPE_BN, OUTPUT},
    {'d', 'b', TYPE_DB, BLOCK | INPUT | OUTPUT},
    {'d', 'v', CMD_DV, BLOCK},
    {'e', 'x', CMD_EX, BLOCK},
    {'h', 'o', CMD_HO, BLOCK},
    {'h', 'z', TYPE_HZ, OUTPUT},
    {'i', 'n', TYPE_IN, BLOCK | INPUT | OUTPUT},
    {'m', 'o', CMD_MO, BLOCK},
    {'m', 's', CMD_MS, BLOCK},
    {'n', 'o', TYPE_NO, BLOCK | INPUT},
    {'o', 'd', TYPE_OD, OUTPUT},
    {'o', 'p', TYPE_OP, BLOCK | INPUT | OUTPUT},
    {'p', 'f', CMD_PF, BLOCK | GLOBAL},
    {'r', 'a', CMD_RA, BLOCK},
    {'r', 'd', CMD_RD, BLOCK | GLOBAL},
    {'r', 'e', TYPE_RE, BLOCK | INPUT | OUTPUT},
    {'r', 'h', TYPE_RH, BLOCK | INPUT},
    {'r', 's', CMD_RS, BLOCK | GLOBAL},
    {'r', 'w', CMD_RW, BLOCK},
    {'s', '2', CMD_S2, BLOCK},
    {'s', 'e', CMD_SE, BLOCK},
    {'s', 'r', CMD_SR, GLOBAL},
    {'t', 'e', CMD_TE, GLOBAL},
    {'t', 'r', TYPE_TR, OUTPUT},
    {'x', 'x', TYPE_XX, OUTPUT},
};

inline constexpr std::int32_t MAX_SUFFIX = 7; // of the digits after "re" and "bn"

/// Reads the keyword at the position: one character for a token, two for a word, and the suffixes of "no", "op", "re", "bn".
/// @return true with the position after it; false for a letter that begins no keyword or a digit suffix above MAX_SUFFIX; true
/// with nothing moved for another second letter, which the recognisers below keep away
[[nodiscard]] bool get_command(std::int32_t &code, Input &in);

/// Whether a command of a p-field or block, or an input type, stands at the position; "#" is one that does nothing, "od" and "sr"
/// are none.
[[nodiscard]] bool is_command(const Input &in);

/// Whether an output type stands at the position.
[[nodiscard]] bool is_out_type(const Input &in);

/// Whether a command of the global block stands at the position.
[[nodiscard]] bool is_gcommand(const Input &in);

/// Whether a code is that of an input type.
[[nodiscard]] bool is_input_code(std::int32_t code);

/// Whether "p" and a digit stand at the position.
[[nodiscard]] inline bool is_pfield(const Input &in) { return peek(in) == 'p' && is_digit(in.line[in.pos + 1]); }

} // namespace orlo

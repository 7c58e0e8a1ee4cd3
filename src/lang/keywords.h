// The keywords of the whole language and their codes, and the p-field record that some of them write to.
#pragma once

#include "input/line_reader.h"

#include <cstdint>

namespace orlo {

/// Codes of commands, input types and output types; no keyword has code 8.
enum Code : std::int32_t {
    CMD_EX        = 0,
    CMD_TE        = 1,
    TYPE_DB       = 2,
    CMD_DV        = 3,
    TYPE_HZ       = 4,
    CMD_HO        = 5,
    TYPE_IN       = 6,
    CMD_MO        = 7,
    CMD_SE        = 9,
    TYPE_NO       = 10,
    TYPE_OP       = 11,
    CMD_PF        = 12,
    TYPE_OD       = 13,
    TYPE_RE       = 14,
    TYPE_RH       = 15,
    CMD_RA        = 16,
    CMD_RD        = 17,
    CMD_RS        = 18,
    CMD_RW        = 19,
    CMD_DIRECT    = 20, // ">"
    CMD_DIRECTIVE = 21, // "#" or "$"
    CMD_MS        = 22,
    TYPE_XX       = 23,
    CMD_S2        = 24,
    CMD_CONSTANT  = 25, // "#c" or "$c"
    TYPE_TR       = 26,
    TYPE_BN       = 27,
    CMD_SR        = 28,
};

/// How each p-field from p2 up is written; index 0 is p2. The arrays are made by the i-block header for MAX_PFIELDS - 1 p-fields
/// and given back when the block has been written as a score.
extern std::int32_t *OUTS;   // output type code, TYPE_RE when the section gives none; written by the p-field header
extern std::int32_t *RE_FW;  // decimals of "re", 0 to 7; RE_FW_DEFAULT at the start of a section
extern std::int32_t *FFT_SZ; // size digit of "bn", 0 to 7; FFT_SZ_DEFAULT without a digit

inline constexpr std::int32_t RE_FW_DEFAULT  = 3;
inline constexpr std::int32_t FFT_SZ_DEFAULT = 4;

/// Makes the p-field record for n p-fields, in place of any earlier one. @return 1, or 0 when memory is exhausted
[[nodiscard]] int make_pfield_record(std::int32_t n);

/// Gives the p-field record back.
void free_pfield_record();

/// Reads the keyword at the position: one character for a token, two for a word, and the suffixes of "no", "op", "re", "bn".
/// @return 1 with the position behind it; 0 for a letter that begins no keyword or a digit suffix above 7; 1 with nothing moved for
/// another second letter, which the recognisers below keep away
[[nodiscard]] int get_command(std::int32_t &code, Input &in);

/// 1 when a command of a p-field or block, or an input type, stands at the position; "#" is one that does nothing, "od" and "sr"
/// are none.
[[nodiscard]] int is_command(const Input &in);

/// 1 when an output type stands at the position.
[[nodiscard]] int is_out_type(const Input &in);

/// 1 when a command of the global block stands at the position.
[[nodiscard]] int is_gcommand(const Input &in);

/// 1 for the code of an input type.
[[nodiscard]] int is_input_code(std::int32_t code);

/// 1 when "p" and a digit stand at the position.
[[nodiscard]] int is_pfield(const Input &in);

} // namespace orlo

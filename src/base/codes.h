// The codes of commands, input types and output types.
#pragma once

#include <cstdint>

namespace orlo {

/// No word has code 8.
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

} // namespace orlo

// The p-field record: which p-fields a block has, which are complete, and how each is written. Reads no text.
#pragma once

#include "base/codes.h"

#include <cstdint>

namespace orlo {

inline constexpr std::int32_t LEAST_PFIELDS = 3;
inline constexpr std::int32_t MOST_PFIELDS  = 128;

extern std::int32_t MAX_PFIELDS;     // p-fields of every event, 0 at start; written by the i-block header
extern bool DID_P[MOST_PFIELDS + 1]; // by p-field number: its section is complete; set by lang/iblock, cleared as a block begins

/// How each p-field from p2 up is written; index 0 is p2. The arrays, all zero and null at start, are made by the i-block header
/// for MAX_PFIELDS - 1 p-fields and given back when the block has been written as a score.
extern std::int32_t *OUTS;   // output type code, TYPE_RE when the section gives none; written by lang/pfield
extern std::int32_t *RE_FW;  // decimals of "re", 0 to 7; RE_FW_DEFAULT as a section begins (lang/pfield); written by get_command
extern std::int32_t *FFT_SZ; // size digit of "bn", 0 to 7; FFT_SZ_DEFAULT without a digit; written by get_command

inline constexpr std::int32_t RE_FW_DEFAULT  = 3;
inline constexpr std::int32_t FFT_SZ_DEFAULT = 4;

/// Makes the p-field record for n p-fields, in place of any earlier one. @return false when memory is exhausted
[[nodiscard]] bool make_pfield_record(std::int32_t n);

/// Gives the p-field record back.
void free_pfield_record();

/// No p-field is complete: a block begins.
void clear_pfields_done();

/// Gives the record back and sets the rest to its start.
void reset_pfields();

} // namespace orlo

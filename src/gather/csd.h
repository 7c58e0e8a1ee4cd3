// csd.h: the score part of a Csound document that orlo is to run. The one reading of such documents, for all companions.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace orlo::gather {

/// The score part of a document.
struct CsdScore {
    std::uint64_t begin = 0; // bytes: after the tag's line
    std::uint64_t end   = 0; // where the closing tag stands
    std::uint64_t line  = 0; // of the first byte, from 0
};

inline constexpr std::size_t MOST_CSD = std::size_t{1} << 26U; // bytes of a document

/// Whether a text is a Csound document: a line of it begins with "<CsoundSynthesizer>".
[[nodiscard]] bool is_csd(std::string_view text);

/// Finds the part between "<CsScore bin="...">" whose program is orlo, with or without a folder and options, and "</CsScore>".
/// @return what is wrong, empty when nothing is
[[nodiscard]] std::string find_csd_score(std::string_view text, CsdScore &score);

} // namespace orlo::gather

// musicxml.h: music as notation, after "MusicXML 4.0" (W3C Music Notation Community Group, 2021).
#pragma once

#include "export/grid.h"
#include "export/voices.h"

#include <cstdio>
#include <string>
#include <vector>

namespace orlo::exporting {

/// Writes a partwise score.
/// @param said gets what was decided: sentences without a full stop
/// @return what can't be written, as the end of a sentence; empty when all was
[[nodiscard]] std::string write_musicxml(const Music &music, const NotationOptions &options, std::vector<std::string> &said,
                                         std::FILE *file);

} // namespace orlo::exporting

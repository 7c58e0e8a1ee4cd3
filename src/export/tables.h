// tables.h: music as a table, an event a line, or as JSON.
#pragma once

#include "export/music.h"

#include <cstdio>
#include <map>
#include <string>

namespace orlo::exporting {

using Names = std::map<int, std::string>; // of p-fields, by their numbers

/// Comma-separated values after RFC 4180, with a line of names; lines end with "\r\n".
/// @return false when they could not be written in full
[[nodiscard]] bool write_csv(const Music &music, const Names &names, std::FILE *file);

/// A JSON document: title, parts, blocks, and an object for each event.
/// @return false when it could not be written in full
[[nodiscard]] bool write_json(const Music &music, const Names &names, std::FILE *file);

} // namespace orlo::exporting

// document.h: a gathered piece as a JSON document. Its form is docs/explain.schema.json.
#pragma once

#include "explain/hints/hint.h"

#include <cstdio>
#include <string>
#include <vector>

namespace orlo::explain {

/// What a document says beside the piece.
struct Heading {
    std::string name; // of the piece, as it was given
    bool        csd    = false;
    bool        midi   = false;
    bool        events = true; // with single values and events
    int         status = 0;    // that orlo has
    std::string folder;        // working folder
};

/// Writes the document. @return false when it could not be written in full
[[nodiscard]] bool write_document(Piece &piece, const Hints &hints, const Heading &heading, std::FILE *file);

} // namespace orlo::explain

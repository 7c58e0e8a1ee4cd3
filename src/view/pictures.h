// pictures.h: a score as a picture: an HTML page, an SVG drawing, a roll of characters. Each returns the whole text; nothing is
// written to a file and nothing of the score is changed.
#pragma once

#include "view/scores.h"

#include <string>

namespace orlo::view {

/// A self-contained page: a roll and a lane for each p-field as inline SVG, with its own style and script and no link to
/// anything outside. Text of the score is escaped.
std::string html_page(const Score &score);

/// The roll and the lanes as an SVG document of its own; the same score gives the same bytes.
std::string svg_picture(const Score &score);

/// A roll for the terminal, UTF-8 or ASCII alone.
/// @param columns width of the whole roll, >= 40
/// @param rows height of the roll without its axis, >= 5
std::string text_roll(const Score &score, int columns, int rows);

} // namespace orlo::view

// markup.h: text and numbers as they stand in HTML and SVG. The same value gives the same bytes everywhere: no locale, no
// stream. Pure functions.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace orlo {

/// Texts one after the other.
std::string joined(std::initializer_list<std::string_view> texts);

/// Text for an element or a quoted attribute. What XML can't hold (control characters, broken UTF-8) becomes U+FFFD.
std::string escaped(std::string_view text);

/// A number as people read it.
/// @param digits significant digits, 1 to 17
/// @return "0.25", "1e+30"; never "-0"
std::string number_text(double value, int digits = 6);

/// A number with at most so many digits after the point, without zeros at their end; never "-0".
std::string decimal_text(double value, int decimals = 3);

/// Tenths of a coordinate of a drawing, rounded.
std::int64_t tenths(double coordinate);

/// A coordinate counted in tenths: 125 is "12.5", -120 is "-12".
void put_tenths(std::string &out, std::int64_t tenths);

/// A coordinate with one decimal, rounded.
std::string pixels(double coordinate);

/// The first characters of a UTF-8 text, with an ellipsis where something was left out.
/// @param most characters, >= 1, the ellipsis included
std::string shortened(std::string_view text, std::size_t most);

/// A whole number with thousands apart: "1,000,000".
std::string count_text(std::uint64_t count);

/// A count with its noun: "1 event", "12 events".
std::string counted(std::uint64_t count, std::string_view noun);

} // namespace orlo

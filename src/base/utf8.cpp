// The first byte tells the length, the others begin with the bits 10, and the second one rules out overlong forms, surrogates and
// what lies beyond U+10FFFF.

#include "base/utf8.h"

namespace orlo {
namespace {

bool continues(std::string_view text, std::size_t at)
{
    return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80;
}

bool second_fits(unsigned first, unsigned second)
{
    switch (first) {
    case 0xE0:
        return second >= 0xA0;
    case 0xED:
        return second < 0xA0;
    case 0xF0:
        return second >= 0x90;
    case 0xF4:
        return second < 0x90;
    default:
        return true;
    }
}

} // namespace

std::size_t character_length(std::string_view text, std::size_t at)
{
    const unsigned    first  = static_cast<unsigned char>(text[at]);
    const std::size_t length = first < 0x80 ? 1 : first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
    for (std::size_t i = 1; i < length; i++) {
        if (!continues(text, at + i))
            return 0;
    }
    if (length > 2 && !second_fits(first, static_cast<unsigned char>(text[at + 1])))
        return 0;
    return length;
}

} // namespace orlo

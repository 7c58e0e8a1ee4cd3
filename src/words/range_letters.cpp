#include "words/range_letters.h"

#include <algorithm>
#include <iterator>

namespace orlo {
namespace {

const RangeLetter *find_letter(char c)
{
    const auto is_it = [letter = lower(c)](const RangeLetter &row) { return row.letter == letter; };
    return std::find_if(std::begin(range_letters), std::end(range_letters), is_it);
}

} // namespace

bool is_rrange_type(char c) { return find_letter(c) != std::end(range_letters); }

int get_rrange_type(Input &in)
{
    const RangeLetter *found = find_letter(peek(in));
    if (found == std::end(range_letters))
        return static_cast<int>(Range::uniform);
    ++in.pos;
    return static_cast<int>(found->range);
}

} // namespace orlo

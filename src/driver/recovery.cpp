// After an error in a block the text up to its "}" says nothing that could be relied on, and is passed over; where the "}" is what
// is missing, the header of the next block ends it. Nothing that is read here is written. Ends with the input: each round reads a
// line or moves on.

#include "driver/recovery.h"

#include "diag/report.h"
#include "events/event_list.h"
#include "events/pfields.h"
#include "lang/global_block.h"
#include "lang/iblock.h"

#include <cstring>

namespace orlo {
namespace {

enum class Next { between_blocks, header, nothing };

void report(int error, const Input &in, int &errors)
{
    ++errors;
    error_no(error, in.line_no, in.line, in.pos);
}

// header -> "i" [ "-" ] digits "="
bool begins_header(const Input &in)
{
    const char *c          = in.line + in.pos;
    const auto  skip_while = [&c](bool (*belongs)(char)) {
        while (belongs(*c))
            ++c;
    };
    if (*c != 'i')
        return false;
    ++c;
    skip_while(is_blank);
    if (*c == '-')
        ++c;
    if (!is_digit(*c))
        return false;
    skip_while(is_digit);
    skip_while(is_blank);
    return *c == '=';
}

// the next line, of which nothing is left when it can't be read
bool read_next(Input &in, int &errors)
{
    const int status = get_buff(in);
    if (status == END_OF_INPUT)
        return false;
    if (status != OK) {
        report(status, in, errors);
        in.pos = static_cast<std::uint32_t>(std::strlen(in.line));
    }
    skip_blanks(in);
    return true;
}

Next skip_block(Input &in, int &errors)
{
    while (errors < MOST_ERRORS) { // each round moves on or reads a line
        Comment kind{};
        if (peek(in) == '}') {
            ++in.pos;
            return Next::between_blocks;
        }
        if (peek(in) == '\0') {
            if (!read_next(in, errors))
                return Next::nothing;
            if (begins_header(in))
                return Next::header;
        } else if (is_comment(in.line, in.pos, kind)) {
            if (const int error = pass_comment(in, kind))
                report(error, in, errors);
        } else {
            ++in.pos;
        }
    }
    return Next::nothing;
}

Next check_between(Input &in, int &errors)
{
    const int status = parse_gblock(in, nullptr);
    if (status == OK)
        return Next::header;
    if (status == END_OF_INPUT)
        return Next::nothing;
    report(status, in, errors);
    in.pos = 0;
    skip_blanks(in);
    return begins_header(in) ? Next::header : Next::between_blocks; // what was read may have gone on into a header
}

Next check_block(Input &in, int &errors)
{
    const int status = parse_iblock(in, note_list);
    FreeListNodes(note_list);
    free_pfield_record();
    if (status <= OK)
        return in.ended && peek(in) == '\0' ? Next::nothing : Next::between_blocks;
    report(status, in, errors);
    return status == OUT_OF_MEMORY ? Next::nothing : skip_block(in, errors);
}

} // namespace

void check_rest(Input &in, bool in_block)
{
    if (observer != nullptr)
        observer->recovery_begins();
    FreeListNodes(note_list);
    int  errors = 1;
    Next next   = in_block ? skip_block(in, errors) : Next::between_blocks;
    while (next != Next::nothing && errors < MOST_ERRORS)
        next = next == Next::header ? check_block(in, errors) : check_between(in, errors);
}

} // namespace orlo

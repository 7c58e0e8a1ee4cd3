// A block, and a section in it, is open from its beginning to its end, or to an error.

#include "explain/told.h"

#include "base/codes.h"
#include "events/block.h"
#include "events/pfields.h"
#include "explain/gathering.h"

namespace orlo::explain::told {

void block_begins(std::size_t column)
{
    const Place place = here(column, column + 1);
    if (!now.in_block || now.recovering) { // a second header in a block takes the place of the first
        end_section();
        now.block = static_cast<std::int32_t>(now.piece->blocks.size());
        now.piece->blocks.emplace_back();
    }
    now.in_block      = true;
    now.in_section    = false;
    block().place     = place;
    block().recovered = now.recovering;
}

void block_header(std::int32_t instrument, std::int32_t pfields, float start, float beats, std::uint64_t events, std::size_t end)
{
    block().has_header = true;
    block().instrument = instrument;
    block().pfields    = pfields;
    block().start      = start;
    block().beats      = beats;
    block().events     = events;
    extend(block().place, end);
}

void block_skipped(std::int32_t instrument, std::size_t end)
{
    block().instrument = instrument;
    block().skipped    = true;
    block().closed     = true;
    extend(block().place, end);
    now.in_block = false;
}

void block_starts(float tempo, float seconds)
{
    block().started = true;
    block().tempo   = tempo;
    block().seconds = seconds;
}

void block_ends(std::size_t end)
{
    extend(block().place, end);
    block().closed = true;
    now.in_block   = false;
}

// sections

void section_begins(std::int32_t pfield, std::size_t begin, std::size_t end)
{
    Section &begun = block().sections.emplace_back();
    begun.pfield   = pfield;
    begun.place    = here(begin, end);
    begun.output   = TYPE_RE;
    now.in_section = true;
    now.source     = {};
    now.new_source = true;
    now.last_read = now.chord = now.members = now.repeated = 0;
    now.looped.clear();
    now.refused.clear();
    now.distinct.clear();
    if (pfield == 2)
        now.ring.clear();
    else
        now.ring.begin_section(static_cast<std::size_t>(pfield));
}

void output_type(std::int32_t code, std::size_t begin, std::size_t end)
{
    section().output = code;
    in_section_here(begin, end);
    if (end - begin > 2 && (code == TYPE_RE || code == TYPE_BN))
        section().digits = (code == TYPE_RE ? RE_FW : FFT_SZ)[section().pfield - 2];
}

void input_type(std::int32_t code, std::size_t begin, std::size_t end)
{
    section().inputs.push_back({code, NX && (code == TYPE_NO || code == TYPE_OP), in_section_here(begin, end), section().count});
}

void section_ends() { end_section(); }

} // namespace orlo::explain::told

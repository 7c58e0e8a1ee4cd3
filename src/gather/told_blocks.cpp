// A block, and a section in it, is open from its beginning to its end, or to an error.

#include "gather/told.h"

#include "base/codes.h"
#include "events/block.h"
#include "events/pfields.h"
#include "events/tempo_map.h"
#include "gather/gathering.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace orlo::gather {
namespace {

// seconds between two beats, by the middle of pieces that are smallest at the beginning, where a curve may leave it steeply
double seconds_between(float from, float to)
{
    constexpr int PIECES  = 512;
    const double  length  = static_cast<double>(to - from);
    double        seconds = 0.0;
    for (int piece = 0; piece < PIECES; ++piece) {
        const double begin = static_cast<double>(piece) / PIECES;
        const double end   = static_cast<double>(piece + 1) / PIECES;
        const double at    = static_cast<double>(from) + length * (begin * begin + end * end) / 2.0;
        seconds += 60.0 / find_tempo(static_cast<float>(at)) * length * (end * end - begin * begin);
    }
    return seconds;
}

// the bounds of the map's segments and their seconds, which stay until the map changes
void know_map()
{
    if (!now.map.empty())
        return;
    std::vector<float> bounds{0.0F};
    for (std::int32_t i = 0; i < TOT_TEMPOS; ++i)
        for (const float bound : {TEMPO_LIST[i].stime, TEMPO_LIST[i].etime})
            bounds.push_back(bound);
    std::sort(bounds.begin(), bounds.end());
    for (const float bound : bounds)
        if (now.map.empty())
            now.map.emplace_back(bound, 0.0);
        else if (bound > now.map.back().first)
            now.map.emplace_back(bound, now.map.back().second + seconds_between(now.map.back().first, bound));
}

// seconds from beat 0 to a beat
double seconds_to(float beat)
{
    know_map();
    const auto later = [beat](const std::pair<float, double> &bound) { return bound.first <= beat; };
    const auto bound = std::partition_point(now.map.begin(), now.map.end(), later) - 1;
    return bound->second + (beat > bound->first ? seconds_between(bound->first, beat) : 0.0);
}

// what the tempo map is when a block starts
void take_map(Block &block)
{
    const float first   = TEMPO_LIST[0].stempo;
    const float last    = TEMPO_LIST[TOT_TEMPOS - 1].etempo;
    bool        ordered = true;
    for (std::int32_t i = 0; i < TOT_TEMPOS; ++i) {
        const TempoSegment &segment = TEMPO_LIST[i];
        if (i > 0 && segment.stime <= TEMPO_LIST[i - 1].stime)
            ordered = false;
        block.tempo_moves = block.tempo_moves || segment.stempo != first || segment.etempo != first;
        if (segment.etempo != last)
            block.settles = TEMPO_LIST[i + 1].stime; // the last one has that tempo
        else if (segment.stempo != last)
            block.settles = segment.etime;
    }
    if (!ordered) // which one is in force where is not to be said in a word
        block.settles = std::numeric_limits<float>::max();
    block.by_map = block.tempo_moves ? seconds_to(block.start) : static_cast<double>(block.seconds);
}

} // namespace
} // namespace orlo::gather

namespace orlo::gather::told {

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

void header_number(HeaderPart part, std::size_t begin, std::size_t end)
{
    HeaderPlaces &header = block().header;
    count_cut(end);
    switch (part) {
    case HeaderPart::pfields:
        header.pfields = here(begin, end);
        return;
    case HeaderPart::start:
        header.start = here(begin, end);
        return;
    case HeaderPart::length:
        header.length = here(begin, end);
        return;
    }
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
    take_map(block());
    block().reach       = block().start;
    block().reach_time  = static_cast<double>(seconds);
    block().reach_start = static_cast<double>(seconds);
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
    count_cut(end);
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

} // namespace orlo::gather::told

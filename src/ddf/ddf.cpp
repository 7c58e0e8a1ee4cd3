// One frame serves every generator: it is written once over the type of the generator's data, and the compiler finds get_set and
// make_value by that type. Data sets live in vectors, which are given back on every path; exhausted memory in one of them becomes
// an error number here.
// Outside p2 the loop ends with the block, which has a number of events by then; in p2 with its span, where steps that use up
// nothing and reports of a full block are counted.

#include "ddf/ddf.h"

#include "base/distributions.h"
#include "base/exhaustion.h"
#include "base/numerics.h"
#include "base/observer.h"
#include "base/switches.h"
#include "ddf/expression.h"
#include "ddf/generator.h"
#include "ddf/held_value.h"
#include "ddf/mask.h"
#include "ddf/motion.h"
#include "ddf/random_range.h"
#include "ddf/random_walk.h"
#include "ddf/second_order.h"
#include "ddf/selection.h"
#include "diag/messages.h"
#include "diag/report.h"
#include "events/block.h"
#include "events/storing.h"
#include "events/tempo_map.h"

#include <algorithm>
#include <cmath>

namespace orlo {
namespace {

constexpr int BLOCK_FULL = -3; // a step of p2 that found no room; no other result has this value

// generators that ask nothing of their p-field before they are read
template <typename Data> int check_pfield(const Data &, const Input &) { return OK; }

// generator -> name "(" span set { set } ")"
template <typename Data> int get_sets(Data &data, Frame &frame, Input &in)
{
    if (const int error = get_dynfunc_dur(frame.span, in))
        return error;
    do { // at most MAX_SETS sets
        if (frame.weights.size() == MAX_SETS)
            return OUT_OF_BOUNDS;
        if (const int error = get_set(data, frame, in))
            return error;
        if (const int error = skip_items(in))
            return error;
        if (!traits<Data>.weighted && peek(in) != ')')
            return HO_MISSING_PAREN;
    } while (peek(in) != ')');
    ++in.pos;
    if (traits<Data>.weighted && !hundred_percent(frame.weights.data(), static_cast<int>(frame.weights.size())))
        return BAD_WEIGHTS;
    tell_command_read(in);
    return OK;
}

// The loops stand twice, so that a run that nobody looks at pays nothing for it: told says which.

// index of the set that makes the next value; one draw
std::size_t choose_set(const Frame &frame)
{
    const int sets = std::max(1, static_cast<int>(frame.weights.size()));
    return static_cast<std::size_t>(std::min(prob_result(frame.weights.data(), sets), sets - 1));
}

// one event of p2: 0, BLOCK_FULL or an error
template <typename Data, bool told>
int insert_DDFp2(Data &data, const Frame &frame, Place &place, Section &section, const Input &in)
{
    if (out_of_time()) {
        truncate(section, in);
        return BLOCK_FULL;
    }
    const std::size_t set   = choose_set(frame);
    float             value = 0.0F;
    if (const int error = make_value(data, set, place, value))
        return error;
    if constexpr (told)
        observer->set_chosen(set);
    LAST_VAL            = value;
    const float seconds = to_tempo(value);
    if (!store_start(section, value, seconds))
        return OUT_OF_MEMORY;
    if (const int error = keep_for_loop(section, value))
        return error;
    ++place.index;
    ++EVENT_NO;
    place.elapsed += std::fabs(seconds);
    return OK;
}

template <typename Data, bool told> int fill_p2_beats(Data &data, const Frame &frame, Section &section, const Input &in)
{
    Place place{};
    place.span = frame.span;
    for (int stalled = 0; place.elapsed < frame.span;) { // at most MOST_STALLED_STEPS steps that do not move on
        const float elapsed = place.elapsed;
        const float beats   = CBEATS;
        if (const int result = insert_DDFp2<Data, told>(data, frame, place, section, in))
            return result == BLOCK_FULL ? OK : result;
        const bool moved = place.elapsed > elapsed || CBEATS > beats;
        stalled          = moved ? 0 : stalled + 1;
        if (stalled == MOST_STALLED_STEPS)
            return ZERO_P2_IN_DDF;
    }
    return OK;
}

// a full block is reported at every step that is left
template <typename Data, bool told> int fill_p2_events(Data &data, const Frame &frame, Section &section, const Input &in)
{
    Place place{};
    place.span   = frame.span;
    place.count  = count_of(frame.span);
    int warnings = 0;
    for (std::uint64_t step = 0; step < place.count && warnings < MOST_FULL_WARNINGS; ++step) { // goes by the count
        const int result = insert_DDFp2<Data, told>(data, frame, place, section, in);
        if (result == BLOCK_FULL)
            ++warnings;
        else if (result != OK)
            return result;
    }
    return OK;
}

int store_generated(Section &section, const Input &in, float value)
{
    if (IN_TYPE == TYPE_IN)
        value = RoundF(value);
    LAST_VAL = value;
    if (P_NO == 3)
        store_p3(section, in, value);
    else if (!store_value(section, value))
        return OUT_OF_MEMORY;
    return keep_for_loop(section, value);
}

// one event from p3 up, with its chord members when the generator makes groups
template <typename Data, bool told> int fill_event(Data &data, const Frame &frame, Place &place, Section &section, const Input &in)
{
    const std::size_t set = choose_set(frame);
    if constexpr (traits<Data>.groups) {
        if constexpr (told)
            observer->set_chosen(set);
        return store_group(data, set, section);
    } else {
        place.event = section.cursor->next;
        float value = 0.0F;
        if (const int error = make_value(data, set, place, value))
            return error;
        if constexpr (told)
            observer->set_chosen(set);
        return store_generated(section, in, value);
    }
}

template <typename Data, bool told> int fill_events(Data &data, const Frame &frame, Section &section, const Input &in)
{
    Place place{};
    place.span  = frame.span;
    place.count = covered_events(frame.span, section, in, place.first, place.last);
    if constexpr (told)
        if (frame.span >= 0.0F)
            observer->covered(place.first, place.last);
    while (place.index < place.count) { // ends with the count or the block
        if (EVENT_NO >= EVENTS) {
            truncate(section, in);
            return OK;
        }
        if (const int error = fill_event<Data, told>(data, frame, place, section, in))
            return error;
        ++place.index;
        ++EVENT_NO;
    }
    return OK;
}

template <typename Data, bool told> int fill(Data &data, const Frame &frame, Section &section, const Input &in)
{
    if constexpr (!traits<Data>.groups)
        if (P_NO == 2)
            return frame.span < 0.0F ? fill_p2_events<Data, told>(data, frame, section, in)
                                     : fill_p2_beats<Data, told>(data, frame, section, in);
    return fill_events<Data, told>(data, frame, section, in);
}

template <typename Data> int generate(Section &section, Input &in)
{
    Data  data{};
    Frame frame{};
    if (const int error = check_pfield(data, in))
        return error;
    if (const int error = get_sets(data, frame, in))
        return error;
    return section.way == Way::observed ? fill<Data, true>(data, frame, section, in) : fill<Data, false>(data, frame, section, in);
}

int generate_by_code(Code code, Section &section, Input &in)
{
    switch (code) {
    case CMD_RA:
        return generate<RandomRange>(section, in);
    case CMD_RW:
        return generate<RandomWalk>(section, in);
    case CMD_MO:
        return generate<Motion>(section, in);
    case CMD_SE:
        return generate<Selection>(section, in);
    case CMD_EX:
        return generate<Expression>(section, in);
    case CMD_MS:
        return generate<Mask>(section, in);
    case CMD_HO:
        return generate<HeldValue>(section, in);
    case CMD_S2:
        return generate<SecondOrder>(section, in);
    default:
        return OK;
    }
}

} // namespace

int do_DDF(Code code, Section &section, Input &in)
{
    return unless_exhausted([&] { return generate_by_code(code, section, in); }, OUT_OF_MEMORY);
}

std::uint64_t covered_events(float span, const Section &section, const Input &in, float &first, float &last)
{
    first = 0.0F;
    last  = 0.0F;
    if (span < 0.0F)
        return count_of(span);
    const std::uint64_t count = ListSize(first, last, section, span);
    if (span - SPAN_SLACK > last && !SUPRESS) {
        warn(in, W_DURATION_ALTERED);
        Mprintf("Old duration = %f, New duration = %f\n", span, last);
    }
    return count;
}

void truncate(Section &section, const Input &in)
{
    warn(in, W_DDF_TRUNCATED);
    section.done = true;
}

} // namespace orlo

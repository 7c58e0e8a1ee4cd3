// A chord is repeated from its first event, LUT, when the cursor has moved past that event: the last value was a member.

#include "events/storing.h"

#include "base/clock.h"
#include "base/distributions.h"
#include "base/numerics.h"
#include "base/observer.h"
#include "diag/messages.h"
#include "events/block.h"
#include "events/tempo_map.h"

#include <cmath>

namespace orlo {
namespace {

int store_chord(Section &section)
{
    std::uint64_t members = 0;
    if (!DoListChord(section, members))
        return OUT_OF_MEMORY;
    EVENTS += members;
    EVENT_NO += members;
    return OK;
}

// how the value that was stored last went to its event
Goes goes(const Event *event) { return event->code == 0 ? Goes::next : Goes::beside; }

// seconds of an event that lasts span seconds to the next start
float duration_of(P3Code code, float amount, float span)
{
    switch (code) {
    case P3Code::factor:
        return amount * span;
    case P3Code::longer:
        return amount + span;
    case P3Code::shorter:
        return span - amount;
    case P3Code::beats:
        return 60.0F / TEMPO * amount;
    case P3Code::seconds:
        return amount;
    }
    return 0.0F;
}

// Each way of storing stands twice, so that a run that nobody looks at pays nothing for it: told says which.

template <bool told> inline bool store_as_start(Section &section, float value, float seconds)
{
    const float deviated = add_rdev(seconds, MAX_DEV + MAX_DEV2);
    if (!InsertBegTime(section, deviated))
        return false;
    if constexpr (told)
        observer->started(value, deviated, TEMPO, section.list->beat, section.list->start);
    CBEATS += value;
    return true;
}

template <bool told> inline int store_interval(Section &section, float value, ZeroBy zero)
{
    const float seconds = to_tempo(value);
    if ((zero == ZeroBy::value ? value : seconds) == 0.0F && EVENTS == 0)
        return ZERO_INTERVAL;
    return store_as_start<told>(section, value, seconds) ? OK : OUT_OF_MEMORY;
}

template <bool told> inline P3Code store_duration(Section &section, const Input &in, float value)
{
    Event *event = section.cursor = section.cursor->next;

    P3Code code{};
    float  amount = extract_p3val(code, value);
    amount        = add_rdev(amount, MAX_DEV);
    amount        = add_rdev(amount, MAX_DEV2);
    // the warning's test is the wrong way round: it is given when the event sounds
    if (code == P3Code::shorter && amount - event->dur < 0.0F)
        warn(in, W_P3_BELOW_ZERO);
    event->dur = duration_of(code, amount, event->dur) * PFACTOR;
    WROTE_DATA = true;
    if constexpr (told)
        observer->lasted(value, amount, event->dur);
    return code;
}

template <bool told> inline bool store_as_value(Section &section, float value)
{
    const float deviated = add_rdev(value, MAX_DEV + MAX_DEV2);
    if (!StorePfield(section, adjust(deviated)))
        return false;
    if constexpr (told)
        observer->stored(goes(section.cursor), value, deviated, section.cursor->pf[P_NO - 4]);
    return true;
}

template <bool told> inline bool store_as_rest(Section &section, float value)
{
    if (!store_as_value<told>(section, value))
        return false;
    if (IN_TYPE == TYPE_NO && value < 0.0F)
        section.cursor->dur = -section.cursor->dur;
    return true;
}

int store_observed(Section &section, const Input &in, float value, ZeroBy zero)
{
    if (P_NO == 2)
        return store_interval<true>(section, value, zero);
    if (P_NO == 3) {
        store_duration<true>(section, in, value);
        return OK;
    }
    return store_as_rest<true>(section, value) ? OK : OUT_OF_MEMORY;
}

} // namespace

float extract_p3val(P3Code &code, float value)
{
    const float magnitude = std::fabs(value);
    if (magnitude < 200.0F)
        code = P3Code::factor;
    else if (magnitude < 300.0F)
        code = P3Code::longer;
    else if (magnitude < 400.0F)
        code = P3Code::shorter;
    else if (magnitude < 1000.0F)
        code = P3Code::beats;
    else
        code = P3Code::seconds;
    const float amount = magnitude - static_cast<float>(code);
    return value < 0.0F ? -amount : amount;
}

P3Code store_p3(Section &section, const Input &in, float value)
{
    return section.way == Way::observed ? store_duration<true>(section, in, value) : store_duration<false>(section, in, value);
}

bool store_value(Section &section, float value)
{
    return section.way == Way::observed ? store_as_value<true>(section, value) : store_as_value<false>(section, value);
}

bool store_value_or_rest(Section &section, float value)
{
    return section.way == Way::observed ? store_as_rest<true>(section, value) : store_as_rest<false>(section, value);
}

bool store_start(Section &section, float value, float seconds)
{
    return section.way == Way::observed ? store_as_start<true>(section, value, seconds)
                                        : store_as_start<false>(section, value, seconds);
}

int store_one(Section &section, const Input &in, float value, ZeroBy zero)
{
    if (section.way == Way::values)
        return store_as_rest<false>(section, value) ? OK : OUT_OF_MEMORY;
    if (section.way == Way::starts)
        return store_interval<false>(section, value, zero);
    if (section.way == Way::observed)
        return store_observed(section, in, value, zero);
    store_duration<false>(section, in, value);
    return OK;
}

int store_last(Section &section, const Input &in, ZeroBy zero)
{
    const bool chord_pending = P_NO > 3 && section.cursor != LUT;
    return chord_pending ? store_chord(section) : store_one(section, in, LAST_VAL, zero);
}

Way way_of(std::int32_t pfield)
{
    if (observer != nullptr)
        return Way::observed;
    if (pfield == 2)
        return Way::starts;
    return pfield == 3 ? Way::durations : Way::values;
}

float adjust(float value)
{
    if (!NX && (IN_TYPE == TYPE_NO || IN_TYPE == TYPE_OP))
        return RoundF(value);
    return value;
}

} // namespace orlo

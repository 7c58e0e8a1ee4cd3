// A chord is repeated from its first event, LUT, when the cursor has moved past that event: the last value was a member.

#include "events/storing.h"

#include "base/clock.h"
#include "base/distributions.h"
#include "base/numerics.h"
#include "diag/messages.h"
#include "events/block.h"
#include "events/tempo_map.h"

#include <cmath>

namespace orlo {
namespace {

int store_interval(Section &section, float value, ZeroBy zero)
{
    const float seconds = to_tempo(value);
    if ((zero == ZeroBy::value ? value : seconds) == 0.0F && EVENTS == 0)
        return ZERO_INTERVAL;
    return store_start(section, value, seconds) ? OK : OUT_OF_MEMORY;
}

int store_chord(Section &section)
{
    std::uint64_t members = 0;
    if (!DoListChord(section, members))
        return OUT_OF_MEMORY;
    EVENTS += members;
    EVENT_NO += members;
    return OK;
}

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
    return code;
}

bool store_value(Section &section, float value) { return StorePfield(section, adjust(add_rdev(value, MAX_DEV + MAX_DEV2))); }

bool store_value_or_rest(Section &section, float value)
{
    if (!store_value(section, value))
        return false;
    if (IN_TYPE == TYPE_NO && value < 0.0F)
        section.cursor->dur = -section.cursor->dur;
    return true;
}

bool store_start(Section &section, float value, float seconds)
{
    if (!InsertBegTime(section, add_rdev(seconds, MAX_DEV + MAX_DEV2)))
        return false;
    CBEATS += value;
    return true;
}

int store_one(Section &section, const Input &in, float value, ZeroBy zero)
{
    if (P_NO == 2)
        return store_interval(section, value, zero);
    if (P_NO == 3) {
        store_p3(section, in, value);
        return OK;
    }
    return store_value_or_rest(section, value) ? OK : OUT_OF_MEMORY;
}

int store_last(Section &section, const Input &in, ZeroBy zero)
{
    const bool chord_pending = P_NO > 3 && section.cursor != LUT;
    return chord_pending ? store_chord(section) : store_one(section, in, LAST_VAL, zero);
}

float adjust(float value)
{
    if (!NX && (IN_TYPE == TYPE_NO || IN_TYPE == TYPE_OP))
        return RoundF(value);
    return value;
}

} // namespace orlo

// A block that is given in beats knows no number of events while p2 is read (EVENTS is 0) and is full when the running sum of p2
// reaches its end; from then on, and in a block given in events, it is full when the section has filled EVENTS events. A chord in a
// loop of p2 is the exception: cycling through it counts EVENTS up from 0, and the block is full at once.
// Filling ends because every step counts EVENT_NO up, or is found to have moved p2 nowhere.

#include "events/timing.h"

#include "ddf/distributions.h"
#include "diag/messages.h"
#include "diag/report.h"
#include "events/tempo_map.h"
#include "lang/keywords.h"
#include "output/numerics.h"

#include <cmath>
#include <utility>

namespace orlo {

std::int32_t  I_NO     = 0;
float         STIME    = 0.0F;
float         SBEAT    = 0.0F;
float         BEATS    = 0.0F;
float         ETIME    = 0.0F;
std::uint64_t EVENTS   = 0;
std::uint64_t EVENT_NO = 0;
float         CBEATS   = 0.0F;
float         LAST_VAL = 0.0F;
std::int32_t  P_NO     = 0;
std::int32_t  IN_TYPE  = TYPE_RE;
std::int32_t  OUT_TYPE = TYPE_RE;
std::int32_t  IN_LOOP  = 0;
std::int32_t  NX       = 0;
float         MAX_DEV  = 0.0F;
float         MAX_DEV2 = 0.0F;

namespace {

int fill_start(Event *&list, float value)
{
    const float seconds = to_tempo(value);
    if (seconds == 0.0F && EVENTS == 0)
        return ZERO_INTERVAL;
    return store_start(list, value, seconds) != 0 ? OK : OUT_OF_MEMORY;
}

// one value of the section once more
int fill_one(Event *&list, Event *&cursor, float value, const Input &in)
{
    if (P_NO == 2)
        return fill_start(list, value);
    if (P_NO == 3) {
        store_p3(cursor, in, value);
        return OK;
    }
    return store_value_or_rest(list, cursor, value) != 0 ? OK : OUT_OF_MEMORY;
}

int repeat_chord(Event *&list, Event *&cursor)
{
    std::uint64_t members = 0;
    if (DoListChord(list, cursor, LUT, P_NO, MAX_PFIELDS, members) == 0)
        return OUT_OF_MEMORY;
    EVENTS += members;
    EVENT_NO += members;
    return OK;
}

int fill_with_last(Event *&list, Event *&cursor, const Input &in)
{
    do { // ends when the block is full, or p2 stands still
        const float before        = CBEATS;
        const bool  chord_pending = P_NO > 3 && cursor != LUT;
        const int   result        = chord_pending ? repeat_chord(list, cursor) : fill_one(list, cursor, LAST_VAL, in);
        if (result != OK)
            return result;
        ++EVENT_NO;
        if (p2_stands_still(before) != 0)
            return never_ends(in);
    } while (out_of_time() == 0);
    return OK;
}

// a chord is completed past the block's end
int fill_with_queue(Event *&list, Event *&cursor, const QueueNode *queue, const Input &in)
{
    const QueueNode *head         = queue->next;
    const QueueNode *node         = head;
    float            cycle_before = CBEATS;
    do { // the same, but p2 is looked at after each cycle
        IS_FUSED = node->code == 1 ? 1 : 0;
        if (IS_FUSED != 0)
            ++EVENTS;
        if (const int result = fill_one(list, cursor, node->value, in); result != OK)
            return result;
        ++EVENT_NO;
        node = node->next;
        if (node == head) {
            if (p2_stands_still(cycle_before) != 0)
                return never_ends(in);
            cycle_before = CBEATS;
        }
    } while (out_of_time() == 0 || node->code == 1);
    return OK;
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

P3Code store_p3(Event *&cursor, const Input &in, float value)
{
    cursor = cursor->next;

    P3Code code{};
    float  amount = extract_p3val(code, value);
    amount        = add_rdev(amount, MAX_DEV);
    amount        = add_rdev(amount, MAX_DEV2);

    const float span = cursor->dur;
    float       dur  = 0.0F;
    switch (code) {
    case P3Code::factor:
        dur = amount * span;
        break;
    case P3Code::longer:
        dur = amount + span;
        break;
    case P3Code::shorter:
        // the warning's test is the wrong way round: it is given when the event sounds
        if (amount - span < 0.0F)
            warning_no(W_P3_BELOW_ZERO, in.line_no, in.line, in.pos);
        dur = span - amount;
        break;
    case P3Code::beats:
        dur = 60.0F / TEMPO * amount;
        break;
    case P3Code::seconds:
        dur = amount;
        break;
    }
    cursor->dur = dur * PFACTOR;
    WROTE_DATA  = 1;
    return code;
}

int store_value(Event *&list, Event *&cursor, float value)
{
    const float deviated = add_rdev(value, MAX_DEV + MAX_DEV2);
    return StorePfield(cursor, list, P_NO, MAX_PFIELDS, IS_FUSED, LUT, adjust(deviated));
}

int store_value_or_rest(Event *&list, Event *&cursor, float value)
{
    if (store_value(list, cursor, value) == 0)
        return 0;
    if (IN_TYPE == TYPE_NO && value < 0.0F)
        cursor->dur = -cursor->dur;
    return 1;
}

int store_start(Event *&list, float value, float seconds)
{
    const float deviated = add_rdev(seconds, MAX_DEV + MAX_DEV2);
    if (InsertBegTime(list, MAX_PFIELDS, IS_FUSED, deviated, STIME, CBEATS) == 0)
        return 0;
    CBEATS += value;
    return 1;
}

int fill_to_end(Event *&list, Event *&cursor, const QueueNode *queue, const Input &in)
{
    if (queue != nullptr && queue->next->code == 1)
        ++EVENTS;
    if (out_of_time() != 0)
        return OK;
    return queue == nullptr ? fill_with_last(list, cursor, in) : fill_with_queue(list, cursor, queue, in);
}

int out_of_time()
{
    if (EVENTS == 0)
        return CBEATS >= ETIME + SBEAT ? 1 : 0;
    return EVENT_NO >= EVENTS ? 1 : 0;
}

int p2_stands_still(float before) { return P_NO == 2 && EVENTS == 0 && !(CBEATS > before) ? 1 : 0; }

int never_ends(const Input &in)
{
    Mprintf("\n\nERROR: Line %d: P2 never reaches the end of the i-block!\n", in.line_no);
    return TEXT_REPORTED;
}

float adjust(float value)
{
    if (NX == 0 && (IN_TYPE == TYPE_NO || IN_TYPE == TYPE_OP))
        return RoundF(value);
    return value;
}

int set_loop(char mark)
{
    if (mark == '<') {
        if (IN_LOOP != 0 || IS_FUSED != 0)
            return 0;
        IN_LOOP = 1;
        return 1;
    }
    if (mark == '>' && IN_LOOP == 0)
        return 0;
    IN_LOOP = 0;
    return 1;
}

void reset_pfield(Event *list)
{
    EVENT_NO = 0;
    if (P_NO == 2) {
        TEMPO  = static_cast<float>(find_tempo(SBEAT));
        CBEATS = SBEAT;
        STIME  = STIME * 60.0F / TEMPO;
    }
    IN_TYPE    = TYPE_RE;
    OUT_TYPE   = TYPE_RE;
    IS_FUSED   = 0;
    IN_LOOP    = 0;
    WROTE_DATA = 0;
    PFACTOR    = 1.0F;
    MAX_DEV2   = 0.0F;
    ClearLFusedCode(list);
}

void fix_percents(float *const *records, float *out, int n)
{
    for (int i = 0; i < n; ++i)
        out[i] = records[i][0];
}

void swapf(float &a, float &b) { std::swap(a, b); }

} // namespace orlo

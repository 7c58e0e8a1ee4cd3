// A block that is given in beats knows no number of events while p2 is read (EVENTS is 0) and is full when the running sum of p2
// reaches its end; from then on, and in a block given in events, it is full when the section has filled EVENTS events. A chord in a
// loop of p2 is the exception: cycling through it counts EVENTS up from 0, and the block is full at once.

#include "events/block.h"

#include "base/clock.h"
#include "base/observer.h"
#include "events/event_list.h"
#include "events/tempo_map.h"

namespace orlo {

std::int32_t  I_NO;
float         STIME;
float         SBEAT;
float         BEATS;
float         ETIME;
float         MAX_DEV;
std::uint64_t EVENTS;
std::int32_t  P_NO;
std::uint64_t EVENT_NO;
float         CBEATS;
float         LAST_VAL;
std::int32_t  IN_TYPE;
std::int32_t  OUT_TYPE;
bool          IN_LOOP;
bool          NX;
float         MAX_DEV2;
float         PFACTOR;
std::int32_t  IS_FUSED;
bool          WROTE_DATA;
Event        *LUT;

namespace {

void reset_section()
{
    EVENT_NO   = 0;
    IN_TYPE    = TYPE_RE;
    OUT_TYPE   = TYPE_RE;
    IS_FUSED   = 0;
    IN_LOOP    = false;
    WROTE_DATA = false;
    PFACTOR    = 1.0F;
    MAX_DEV2   = 0.0F;
}

} // namespace

bool set_loop(char mark)
{
    if (mark == '<') {
        if (IN_LOOP || IS_FUSED != 0)
            return false;
        IN_LOOP = true;
        return true;
    }
    if (mark == '>' && !IN_LOOP)
        return false;
    IN_LOOP = false;
    return true;
}

void reset_pfield(Event *list)
{
    reset_section();
    if (P_NO == 2) {
        TEMPO  = static_cast<float>(find_tempo(SBEAT));
        CBEATS = SBEAT;
        STIME  = STIME * 60.0F / TEMPO;
        if (observer != nullptr)
            observer->block_starts(TEMPO, STIME);
    }
    ClearLFusedCode(list);
}

void reset_block()
{
    reset_section();
    I_NO     = 0;
    STIME    = 0.0F;
    SBEAT    = 0.0F;
    BEATS    = 0.0F;
    ETIME    = 0.0F;
    MAX_DEV  = 0.0F;
    EVENTS   = 0;
    P_NO     = 0;
    CBEATS   = 0.0F;
    LAST_VAL = 0.0F;
    NX       = false;
    LUT      = nullptr;
}

} // namespace orlo

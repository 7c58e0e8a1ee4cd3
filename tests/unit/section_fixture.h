// A section as the tests of events need it: rooms at their start, a list of events that can be made and looked at.
#pragma once

#include "base/clock.h"
#include "base/switches.h"
#include "events/block.h"
#include "events/event_list.h"
#include "events/pfields.h"
#include "events/section.h"
#include "events/tempo_map.h"
#include "support.h"

#include <vector>

namespace orlo::test {

using Floats = std::vector<float>;

class SectionTest : public testing::Test {
  protected:
    void SetUp() override { reset(); }
    void TearDown() override
    {
        FreeListNodes(list);
        FreeQNodes(section.queue);
        reset();
    }

    static void reset()
    {
        reset_switches();
        reset_clock();
        reset_block();
        reset_events();
        reset_pfields();
        reset_tempos();
        MAX_PFIELDS = 5;
    }

    // an event behind the tail, as p2 makes it
    void add(float dur, float start = 0.0F, float beat = 0.0F)
    {
        STIME  = start;
        CBEATS = beat;
        ASSERT_TRUE(InsertBegTime(section, dur));
        STIME  = 0.0F;
        CBEATS = 0.0F;
    }

    // events of equal time spans, the cursor before the first of them
    void fill(int count, float span = 1.0F)
    {
        for (int i = 0; i < count; ++i)
            add(span, 0.0F, static_cast<float>(i));
        section.cursor = list;
        LUT            = list;
        WROTE_DATA     = false;
    }

    std::vector<Event *> events() const
    {
        std::vector<Event *> all;
        if (list == nullptr)
            return all;
        for (Event *event = list->next;; event = event->next) {
            all.push_back(event);
            if (event == list || all.size() > 100)
                return all;
        }
    }

    // what follows is about a p-field
    void read_section(std::int32_t pfield)
    {
        P_NO        = pfield;
        section.way = way_of(pfield);
    }

    // one field of every event from the head on
    template <class Field> Floats all(Field field) const
    {
        Floats values;
        for (const Event *event : events())
            values.push_back(static_cast<float>(field(*event)));
        return values;
    }

    Floats values(int pfield = 4) const
    {
        return all([pfield](const Event &event) { return event.pf[pfield - 4]; });
    }

    Event  *list = nullptr;
    Section section{list, nullptr, nullptr, true, false, Way::starts};
};

} // namespace orlo::test

// The MIDI conversion against the plain walk that defines it, on random lists.

#include "output/midi_conversion.h"

#include "events/block.h"
#include "events/event_list.h"
#include "midi_bytes.h"
#include "output/midi_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <ostream>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace orlo {
namespace {

using test::append_number;
using test::written;

constexpr std::int32_t P_FIELDS = 6; // p4, p5 and a p6 that is carried along

// what a test looks at in an event
struct Item {
    std::int32_t code;
    float        start, dur, beat, p4, p5, p6;

    bool operator==(const Item &) const = default;
};

void PrintTo(const Item &item, std::ostream *out)
{
    *out << (item.code == 1 ? "on" : "off") << " start " << item.start << " dur " << item.dur << " beat " << item.beat << " p4 "
         << item.p4 << " p5 " << item.p5 << " p6 " << item.p6;
}

Event *make_list(const std::vector<Item> &items)
{
    Event *tail = nullptr;
    for (const Item &item : items) {
        Event *event = GetListNode(P_FIELDS);
        event->code  = item.code;
        event->start = item.start;
        event->dur   = item.dur;
        event->beat  = item.beat;
        event->pf[0] = item.p4;
        event->pf[1] = item.p5;
        event->pf[2] = item.p6;
        event->next  = tail == nullptr ? event : tail->next;
        if (tail != nullptr) {
            tail->next = event;
        }
        tail = event;
    }
    return tail;
}

std::vector<Item> read_list(const Event *list)
{
    std::vector<Item> items;
    if (list == nullptr) {
        return items;
    }
    const Event *event = list;
    do {
        event = event->next;
        items.push_back({event->code, event->start, event->dur, event->beat, event->pf[0], event->pf[1], event->pf[2]});
    } while (event != list);
    return items;
}

std::uint64_t delta_ticks(float from, float to)
{
    const float t = (to - from) * 480.0F;
    return t > 0 ? static_cast<std::uint64_t>(t) : 0;
}

std::uint64_t groups_of_seven(std::uint64_t value) { return value < 128 ? 1 : 1 + groups_of_seven(value / 128); }

// The definition, step by step: every note-on, in the order of the list, puts its note-off behind the last of the events that
// follow it and do not start after its end. Quadratic.
std::pair<std::vector<Item>, std::uint64_t> plain_walk(const std::vector<Item> &events)
{
    std::vector<Item> list;
    for (const Item &event : events) {
        if (!(event.dur <= 0)) {
            list.push_back(event);
            list.back().code = 1;
        }
    }
    std::uint64_t length   = 0;
    float         previous = 0;
    for (std::size_t i = 0; i < list.size(); i++) {
        const float end = list[i].start + list[i].dur;
        list[i].p4      = static_cast<float>(static_cast<double>(list[i].p4) * 0.003875850703452);
        list[i].p5      = list[i].p5 - 128.0F * std::trunc(list[i].p5 / 128.0F); // +0 where nothing is left of a negative key
        length += groups_of_seven(delta_ticks(previous, list[i].start)) + 3;
        if (list[i].code == 1) {
            std::size_t at = i;
            while (at + 1 < list.size() && list[at + 1].start <= end) {
                at++;
            }
            Item off  = list[i];
            off.code  = 0;
            off.start = end;
            off.p4    = 15480.47265625F;
            list.insert(list.begin() + static_cast<std::ptrdiff_t>(at) + 1, off);
        }
        previous = list[i].start;
    }
    return {list, length};
}

std::vector<std::uint8_t> expected_track(const std::vector<Item> &list, std::uint64_t length)
{
    std::vector<std::uint8_t> bytes{'M', 'T', 'r', 'k'};
    for (int shift = 24; shift >= 0; shift -= 8) {
        bytes.push_back(static_cast<std::uint8_t>((length + 4) >> shift));
    }
    float previous = 0;
    for (const Item &item : list) {
        append_number(bytes, delta_ticks(previous, item.start));
        bytes.push_back(item.code == 1 ? 0x90 : 0x80);
        bytes.push_back(static_cast<std::uint8_t>(static_cast<int>(item.p5)));
        bytes.push_back(item.code == 1 ? static_cast<std::uint8_t>(static_cast<int>(item.p4)) : std::uint8_t{64});
        previous = item.start;
    }
    for (const int byte : {0x00, 0xFF, 0x2F, 0x00}) {
        bytes.push_back(static_cast<std::uint8_t>(byte));
    }
    return bytes;
}

class MidiConversion : public testing::Test {
  protected:
    void SetUp() override { reset_block(); }
    void TearDown() override { reset_block(); }

    // converts and writes a list and compares all that can be seen with the plain walk
    static void check(const std::vector<Item> &events)
    {
        const auto [expected, expected_length] = plain_walk(events);
        EVENTS = EVENT_NO    = events.size();
        Event        *list   = make_list(events);
        std::uint64_t length = 0;
        testing::internal::CaptureStderr();
        const int         result = List2MIDI(list, P_FIELDS, length);
        const std::string screen = testing::internal::GetCapturedStderr();
        ASSERT_EQ(result, expected.empty() ? 0 : 1);
        ASSERT_EQ(read_list(list), expected);
        ASSERT_EQ(EVENTS, expected.size() / 2);
        ASSERT_EQ(EVENT_NO, expected.size() / 2);
        if (!expected.empty()) {
            ASSERT_EQ(length, expected_length);
            ASSERT_EQ(screen, trace(expected));
            ASSERT_EQ(written([&](std::FILE *file) { WriteTrack(file, list, length); }), expected_track(expected, length));
        }
        FreeListNodes(list);
    }

    static std::string trace(const std::vector<Item> &list)
    {
        std::string text;
        for (const Item &item : list) {
            char line[256];
            std::snprintf(line, sizeof line, "\n%7.2f\t%7.2f\t%s\tN: %7.2f\tV: %7.2f\t", static_cast<double>(item.start),
                          static_cast<double>(item.dur), item.code == 1 ? "ON" : "OFF", static_cast<double>(item.p5),
                          static_cast<double>(item.p4));
            text += line;
        }
        return text;
    }

    int below(int n) { return std::uniform_int_distribution<int>{0, n - 1}(random_); }

    float between(float low, float high) { return std::uniform_real_distribution<float>{low, high}(random_); }

    // an event with values that tell it from all others; quarters of a second make equal times likely
    Item event(float start, float dur)
    {
        return {below(2),      start, dur, static_cast<float>(++made_), between(0, 32767), static_cast<float>(below(4) + 60),
                between(-9, 9)};
    }

    float quarters(int n) { return static_cast<float>(below(n)) * 0.25F; }

    std::mt19937 random_{4711};
    int          made_ = 0;
};

TEST_F(MidiConversion, EmptyList) { check({}); }

TEST_F(MidiConversion, OneNote) { check({event(0, 1)}); }

TEST_F(MidiConversion, OneRest)
{
    Event        *list   = make_list({event(0, 0)});
    std::uint64_t length = 0;
    EVENTS = EVENT_NO = 1;
    I_NO              = 5;
    testing::internal::CaptureStderr();
    EXPECT_EQ(List2MIDI(list, P_FIELDS, length), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "\n\nOops i-block 5 is all rests! ");
    EXPECT_EQ(list, nullptr);
    EXPECT_EQ(EVENTS, 0U);
    EXPECT_EQ(EVENT_NO, 0U);
}

TEST_F(MidiConversion, InOrderWithEqualTimes)
{
    for (int round = 0; round < 400; round++) {
        std::vector<Item> events;
        float             start = 0;
        const int         count = below(60);
        events.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; i++) {
            events.push_back(event(start, quarters(12) + 0.25F));
            start += quarters(3);
        }
        check(events);
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST_F(MidiConversion, RestsAmongNotes)
{
    for (int round = 0; round < 300; round++) {
        std::vector<Item> events;
        const int         count = below(40);
        events.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; i++) {
            events.push_back(event(static_cast<float>(i) * 0.25F, quarters(8) - 1));
        }
        check(events);
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST_F(MidiConversion, OutOfOrder)
{
    for (int round = 0; round < 400; round++) {
        std::vector<Item> events;
        const int         count = below(60);
        events.reserve(static_cast<std::size_t>(count));
        const int range = 1 + below(40);
        for (int i = 0; i < count; i++) {
            events.push_back(event(quarters(range), quarters(12) + 0.25F));
        }
        check(events);
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST_F(MidiConversion, HereAndThereOutOfOrder)
{
    for (int round = 0; round < 300; round++) {
        std::vector<Item> events;
        float             start = 0;
        const int         count = below(80);
        events.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; i++) {
            start = below(10) == 0 ? std::fmax(0.0F, start - quarters(20)) : start + quarters(3);
            events.push_back(event(start, below(8) == 0 ? 50.0F : quarters(6) + 0.25F));
        }
        check(events);
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST_F(MidiConversion, Backwards)
{
    std::vector<Item> events;
    events.reserve(500);
    for (int i = 100; i > 0; i--) {
        events.push_back(event(static_cast<float>(i) * 0.25F, quarters(20) + 0.25F));
    }
    check(events);
}

TEST_F(MidiConversion, AllLastToTheEnd)
{
    std::vector<Item> events;
    events.reserve(500);
    for (int i = 0; i < 500; i++) {
        events.push_back(event(static_cast<float>(i) * 0.25F, 125.0F - static_cast<float>(i) * 0.25F));
    }
    check(events);
}

TEST_F(MidiConversion, AllAtOnce)
{
    std::vector<Item> events;
    events.reserve(500);
    for (int i = 0; i < 500; i++) {
        events.push_back(event(1, quarters(4) + 0.25F));
    }
    check(events);
}

TEST_F(MidiConversion, OddTimesAndLateOnes)
{
    for (int round = 0; round < 200; round++) {
        std::vector<Item> events;
        float             start = between(0, 100000); // so late that short notes end where they start
        const int         count = below(60);
        events.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; i++) {
            events.push_back(event(start, below(3) == 0 ? between(0, 0.001F) : between(0, 3)));
            start += between(0, 0.5F);
        }
        check(events);
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST_F(MidiConversion, ValuesAreNotClamped)
{
    std::vector<Item> events;
    for (const float p4 : {0.0F, -1000.0F, 32767.0F, 40000.0F, 66100.0F}) {
        for (const float p5 : {-300.0F, -128.0F, -0.5F, 127.75F, 128.0F, 1000.5F}) {
            events.push_back(event(static_cast<float>(events.size()), 1));
            events.back().p4 = p4;
            events.back().p5 = p5;
        }
    }
    check(events);
}

TEST(MidiTrack1, EndsAtItsTime)
{
    const std::pair<float, std::vector<std::uint8_t>> ends[] = {
        {0.0F, {0x00}}, {0.25F, {0x78}}, {3.0F, {0x8B, 0x20}}, {34.134F, {0x81, 0x80, 0x00}}, {8192.0F, {0x81, 0xF0, 0x80, 0x00}}};
    for (const auto &[end, delta] : ends) {
        std::vector<std::uint8_t> expected{'M', 'T', 'r', 'k', 0, 0, 0};
        expected.push_back(static_cast<std::uint8_t>(18 + delta.size()));
        for (const int byte : {0x00, 0xFF, 0x58, 0x04, 0x04, 0x02, 0x18, 0x08, 0x00, 0xFF, 0x51, 0x03, 0x0F, 0x42, 0x40}) {
            expected.push_back(static_cast<std::uint8_t>(byte));
        }
        expected.insert(expected.end(), delta.begin(), delta.end());
        for (const int byte : {0xFF, 0x2F, 0x00}) {
            expected.push_back(static_cast<std::uint8_t>(byte));
        }
        EXPECT_EQ(written([end = end](std::FILE *file) { PutTrack1(file, end); }), expected) << end;
    }
}

TEST(MidiHeader, Bytes)
{
    const std::vector<std::uint8_t> expected{'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 1, 0, 2, 1, 0xE0};
    EXPECT_EQ(written([](std::FILE *file) { PutMidiHeader(file, 2); }), expected);
}

TEST(MidiTrackHeader, LengthIsBigEndian)
{
    const std::vector<std::uint8_t> expected{'M', 'T', 'r', 'k', 0x12, 0x34, 0x56, 0x78};
    EXPECT_EQ(written([](std::FILE *file) { PutTrkHeader(file, 0x12345678); }), expected);
}

TEST(MidiTrack2, EmptyListWritesNothing)
{
    EXPECT_TRUE(written([](std::FILE *file) { WriteTrack(file, nullptr, 0); }).empty());
}

TEST(MidiEvents, ChannelsAndBytes)
{
    EXPECT_EQ(written([](std::FILE *file) { NoteOn(file, 480, 60, 127, 0); }),
              (std::vector<std::uint8_t>{0x83, 0x60, 0x90, 60, 127}));
    EXPECT_EQ(written([](std::FILE *file) { NoteOn(file, 0, 61, 1, 15); }), (std::vector<std::uint8_t>{0x00, 0x9F, 61, 1}));
    EXPECT_EQ(written([](std::FILE *file) { NoteOn(file, 0, -1, 256, 0); }), (std::vector<std::uint8_t>{0x00, 0x90, 0xFF, 0x00}));
    EXPECT_EQ(written([](std::FILE *file) { NoteOff(file, 127, 60, 0); }), (std::vector<std::uint8_t>{0x7F, 0x80, 60, 64}));
    EXPECT_EQ(written([](std::FILE *file) { NoteOff(file, 128, 60, 9); }), (std::vector<std::uint8_t>{0x81, 0x00, 0x89, 60, 64}));
}

} // namespace
} // namespace orlo

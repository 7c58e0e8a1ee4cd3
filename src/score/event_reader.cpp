// A p-field that an event leaves out is that of the latest event of its group, within the section; one that is open there is open
// here, too.

#include "score/event_reader.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <utility>

namespace orlo::score {
namespace {

constexpr double MISSING = std::numeric_limits<double>::quiet_NaN();

void trouble(EventReader &reader, int line, std::string text) { add_trouble(reader.score, line, std::move(text)); }

// the event that is being read: its values are the last ones
struct Draft {
    std::size_t       first; // index into Score::values
    int               line;
    int               instrument = 0;
    Latest           *latest     = nullptr;
    std::vector<Open> open       = {};
    bool              stopped    = false; // by "!": nothing is carried after it
    bool              too_many   = false;
};

std::size_t field_count(const EventReader &reader, const Draft &draft) { return reader.score.values.size() - draft.first; }

const Event *previous_event(const EventReader &reader, const Draft &draft)
{
    const Latest &latest = *draft.latest;
    return latest.section == reader.section ? &reader.score.events[latest.event] : nullptr;
}

// p1 -> number | string | "."
// false, after a trouble, when it is no instrument
bool read_instrument(EventReader &reader, Draft &draft, const Field &field)
{
    double value = MISSING;
    if (field.mark == Mark::number && field.value > 0) {
        value            = field.value;
        draft.instrument = numbered_instrument(reader.instruments, reader.score, field.value);
    } else if (field.mark == Mark::text) {
        draft.instrument = named_instrument(reader.instruments, reader.score, field.word);
    } else if (field.mark == Mark::carry && reader.score.events.size() > reader.first) {
        const Event &last = reader.score.events.back();
        value             = reader.score.values[last.first];
        draft.instrument  = last.instrument;
    } else {
        trouble(reader, draft.line,
                field.mark == Mark::number ? "an event of instrument " + shortest(field.value) + " is left out: it plays nothing"
                                           : "p1 is no instrument: " + quoted(field.word));
        return false;
    }
    reader.latest.resize(reader.instruments.groups);
    draft.latest = &reader.latest[reader.instruments.group_of[static_cast<std::size_t>(draft.instrument)]];
    reader.score.values.push_back(value);
    return true;
}

void push_open(Draft &draft, int field, Mark mark, int source) { draft.open.push_back({0, field, mark, source}); }

// a p-field as the event before it has it
double carried(Draft &draft, const Score &score, const Event &last, int field)
{
    const std::vector<Open> &all = draft.latest->open;
    const auto open = std::lower_bound(all.begin(), all.end(), field, [](const Open &o, int f) { return o.field < f; });
    if (open != all.end() && open->field == field)
        push_open(draft, field, open->mark, open->source);
    return field_value(score, last, field);
}

double carry(EventReader &reader, Draft &draft, int field)
{
    const Event *last = previous_event(reader, draft);
    if (last != nullptr && last->fields >= field)
        return carried(draft, reader.score, *last, field);
    trouble(reader, draft.line, field_name(field) + " can't be carried: no event before it has one");
    return MISSING;
}

// p2 after the event before it
double after_last(EventReader &reader, Draft &draft, const Field &field)
{
    const Event *last = previous_event(reader, draft);
    if (last == nullptr) {
        trouble(reader, draft.line, "p2 can't be " + quoted(field.word) + ": no event is before it");
        return MISSING;
    }
    const double start = field_value(reader.score, *last, 2);
    return start + (field.mark == Mark::plus ? field_value(reader.score, *last, 3) : field.value);
}

double open_field(EventReader &reader, Draft &draft, const Field &field, int number)
{
    if (number > 3)
        push_open(draft, number, field.mark, static_cast<int>(std::min(field.value, MAX_FIELDS + 1.0)));
    else
        trouble(reader, draft.line, field_name(number) + " can't be " + quoted(field.word));
    return MISSING;
}

double unreadable(EventReader &reader, const Draft &draft, const Field &field, int number, const char *what)
{
    trouble(reader, draft.line, field_name(number) + what + quoted(field.word));
    return MISSING;
}

// the value of p2, p3 ...
double read_value(EventReader &reader, Draft &draft, const Field &field, int number)
{
    switch (field.mark) {
    case Mark::number:
        return field.value;
    case Mark::text:
    case Mark::stop:
        return MISSING;
    case Mark::carry:
        return carry(reader, draft, number);
    case Mark::plus:
    case Mark::shift:
        if (number == 2)
            return after_last(reader, draft, field);
        break;
    case Mark::ramp:
    case Mark::next:
    case Mark::previous:
        return open_field(reader, draft, field, number);
    case Mark::expression:
        return unreadable(reader, draft, field, number, " is an expression, which is not worked out: ");
    case Mark::no_end:
        return unreadable(reader, draft, field, number, " has no end: ");
    case Mark::not_finite:
        return unreadable(reader, draft, field, number, " is no finite number: ");
    case Mark::unknown:
        break;
    }
    return unreadable(reader, draft, field, number, " is no number: ");
}

// room for one more p-field?
bool has_room(EventReader &reader, const Draft &draft)
{
    const bool many_open = reader.open.size() + draft.open.size() >= reader.limits.open;
    if (!many_open && reader.score.values.size() < reader.limits.values)
        return true;
    if (!reader.full)
        trouble(reader, draft.line,
                "more than " +
                    (many_open ? std::to_string(reader.limits.open) + " ramps and references in one section"
                               : std::to_string(reader.limits.values) + " p-fields") +
                    ": the rest of the score is left out");
    reader.full = true;
    return false;
}

void add_field(EventReader &reader, Draft &draft, const Field &field)
{
    const std::size_t count = field_count(reader, draft);
    if (field.mark == Mark::stop || draft.stopped) {
        draft.stopped = true;
        return;
    }
    if (count == static_cast<std::size_t>(MAX_FIELDS)) {
        if (!draft.too_many)
            trouble(reader, draft.line, "more than " + std::to_string(MAX_FIELDS) + " p-fields: those beyond are left out");
        draft.too_many = true;
        return;
    }
    if (has_room(reader, draft))
        reader.score.values.push_back(read_value(reader, draft, field, static_cast<int>(count) + 1));
}

// p-fields that an event leaves out at its end are those of the event before it
void carry_rest(EventReader &reader, Draft &draft)
{
    const Event *last = draft.stopped ? nullptr : previous_event(reader, draft);
    if (last == nullptr)
        return;
    for (int field = static_cast<int>(field_count(reader, draft)) + 1; field <= last->fields && has_room(reader, draft); ++field)
        reader.score.values.push_back(carried(draft, reader.score, *last, field));
}

// why an event can't be shown; empty when it can
std::string fault_of(const EventReader &reader, const Draft &draft)
{
    const std::size_t count = field_count(reader, draft);
    const double     *field = &reader.score.values[draft.first];
    if (count < 3)
        return "an event without p2 and p3 is left out";
    if (std::isnan(field[1]) || std::isnan(field[2]))
        return "an event whose p2 or p3 is no number is left out";
    if (field[1] + reader.base < 0)
        return "an event before time 0 is left out";
    if (field[1] > LARGEST_TIME || std::abs(field[2]) > LARGEST_TIME)
        return beyond_time(true);
    return "";
}

void keep_event(EventReader &reader, Draft &draft)
{
    Score            &score = reader.score;
    const std::size_t index = score.events.size();
    const double     *field = &score.values[draft.first];
    score.events.push_back({draft.first, static_cast<int>(field_count(reader, draft)), draft.instrument, field[1] + reader.base,
                            std::abs(field[2]), draft.line});
    for (Open &open : draft.open)
        open.event = index;
    reader.open.insert(reader.open.end(), draft.open.begin(), draft.open.end());
    *draft.latest = {reader.section, index, std::move(draft.open)};
}

} // namespace

// event -> "i" p1 p2 p3 { p-field }
void read_event(EventReader &reader, Text &text)
{
    Draft draft{reader.score.values.size(), text.line};
    Field field{};
    if (!next_field(text, field)) {
        trouble(reader, draft.line, "an event without an instrument is left out");
        return;
    }
    const bool good = has_room(reader, draft) && read_instrument(reader, draft, field);
    while (next_field(text, field))
        if (good)
            add_field(reader, draft, field);
    if (good)
        carry_rest(reader, draft);
    if (!good || reader.full) {
        reader.score.values.resize(draft.first);
        return;
    }
    if (std::string fault = fault_of(reader, draft); !fault.empty()) {
        trouble(reader, draft.line, std::move(fault));
        reader.score.values.resize(draft.first);
        return;
    }
    keep_event(reader, draft);
}

void begin_section(EventReader &reader)
{
    ++reader.section;
    reader.first = reader.score.events.size();
    reader.base  = 0;
    reader.open.clear();
}

} // namespace orlo::score

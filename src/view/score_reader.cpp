// A section is read statement by statement; its events keep their beats until its end, since its tempo may be stated last. Then
// beats become seconds, and p-fields that refer to neighbours in time are filled in: ramps between the numbers around them, "np"
// and "pp" from the next and the previous event. Neighbours are events of one group: those whose instrument numbers have the same
// whole part, or one name.

#include "view/score_reader.h"

#include "view/score_text.h"
#include "view/tempo.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <unordered_map>
#include <unordered_set>

namespace orlo::view {
namespace {

constexpr double MISSING      = std::numeric_limits<double>::quiet_NaN();
constexpr double LARGEST_TIME = 1e12; // beats
constexpr double FASTEST      = 1e6;  // beats a minute
constexpr double SLOWEST      = 1e-3;
constexpr auto   NO_EVENT     = static_cast<std::size_t>(-1);

// A p-field that is filled in at the section's end.
struct Open {
    std::size_t event;  // index into Score::events
    int         field;  // 4 is p4
    Mark        mark;   // ramp, next, previous
    int         source; // the p-field that next and previous name
};

// Events whose p-fields are carried from one to the next.
struct Group {
    std::size_t       last = NO_EVENT; // of an earlier section perhaps
    std::vector<Open> open;            // of that event, by p-field
};

struct Section {
    double                  offset = 0; // seconds
    std::size_t             first  = 0; // its first event
    std::vector<TempoPoint> tempo;
    bool                    has_tempo = false;
    double                  base      = 0;     // beats that a statement b adds
    double                  least_end = 0;     // beats that it lasts at least
    bool                    skipped   = false; // the rest, by a statement x
    std::vector<Open>       open;
};

struct Reader {
    Text                                 text;
    Limits                               limits;
    Score                               &score;
    Section                              section         = {};
    std::vector<Group>                   groups          = {};
    std::vector<std::size_t>             group_of        = {}; // instrument: its group
    std::unordered_map<double, int>      numbers         = {}; // p1: instrument
    std::unordered_map<double, int>      wholes          = {}; // whole part of p1: group
    std::unordered_map<std::string, int> names           = {}; // name: instrument
    double                               last_number     = MISSING;
    int                                  last_instrument = 0;
    std::uint32_t                        named_letters   = 0; // statements that were named already, a is bit 0
    bool                                 full            = false;
};

void trouble(Reader &reader, int line, std::string text) { add_trouble(reader.score, line, std::move(text)); }

// the event that is being read: its values are the last ones
struct Draft {
    std::size_t       first; // index into Score::values
    int               line;
    int               instrument = 0;
    Group            *group      = nullptr;
    std::vector<Open> open       = {};
    bool              stopped    = false; // by "!": nothing is carried behind it
    bool              too_many   = false;
};

std::size_t field_count(const Reader &reader, const Draft &draft) { return reader.score.values.size() - draft.first; }

const Event *previous_event(const Reader &reader, const Draft &draft)
{
    const std::size_t last = draft.group->last;
    return last == NO_EVENT || last < reader.section.first ? nullptr : &reader.score.events[last];
}

std::string shortest(double number)
{
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, number).ptr};
}

int new_instrument(Reader &reader, std::string name, std::size_t group)
{
    if (group == reader.groups.size())
        reader.groups.emplace_back();
    reader.score.instruments.push_back(std::move(name));
    reader.group_of.push_back(group);
    return static_cast<int>(reader.score.instruments.size()) - 1;
}

int numbered_instrument(Reader &reader, double number)
{
    if (number == reader.last_number)
        return reader.last_instrument;
    auto known = reader.numbers.find(number);
    if (known == reader.numbers.end()) {
        const auto [whole, added] = reader.wholes.try_emplace(std::trunc(number), static_cast<int>(reader.groups.size()));
        static_cast<void>(added);
        known =
            reader.numbers.emplace(number, new_instrument(reader, shortest(number), static_cast<std::size_t>(whole->second))).first;
    }
    reader.last_number     = number;
    reader.last_instrument = known->second;
    return known->second;
}

int named_instrument(Reader &reader, std::string_view name)
{
    const auto known = reader.names.find(std::string{name});
    if (known != reader.names.end())
        return known->second;
    const int instrument = new_instrument(reader, std::string{name}, reader.groups.size());
    reader.names.emplace(name, instrument);
    return instrument;
}

// p1 -> number | string | "."
// false, after a trouble, when it is no instrument
bool read_instrument(Reader &reader, Draft &draft, const Field &field)
{
    double value = MISSING;
    if (field.mark == Mark::number && field.value > 0) {
        value            = field.value;
        draft.instrument = numbered_instrument(reader, field.value);
    } else if (field.mark == Mark::text) {
        draft.instrument = named_instrument(reader, field.word);
    } else if (field.mark == Mark::carry && reader.score.events.size() > reader.section.first) {
        const Event &last = reader.score.events.back();
        value             = reader.score.values[last.first];
        draft.instrument  = last.instrument;
    } else {
        trouble(reader, draft.line,
                field.mark == Mark::number ? "an event of instrument " + shortest(field.value) + " is left out: it plays nothing"
                                           : "p1 is no instrument: " + quoted(field.word));
        return false;
    }
    draft.group = &reader.groups[reader.group_of[static_cast<std::size_t>(draft.instrument)]];
    reader.score.values.push_back(value);
    return true;
}

void push_open(Draft &draft, int field, Mark mark, int source) { draft.open.push_back({0, field, mark, source}); }

// a p-field as the event before it has it
double carried(Draft &draft, const Score &score, const Event &last, int field)
{
    const std::vector<Open> &all = draft.group->open;
    const auto open = std::lower_bound(all.begin(), all.end(), field, [](const Open &o, int f) { return o.field < f; });
    if (open != all.end() && open->field == field)
        push_open(draft, field, open->mark, open->source);
    return field_value(score, last, field);
}

double carry(Reader &reader, Draft &draft, int field)
{
    const Event *last = previous_event(reader, draft);
    if (last != nullptr && last->fields >= field)
        return carried(draft, reader.score, *last, field);
    trouble(reader, draft.line, field_name(field) + " can't be carried: no event before it has one");
    return MISSING;
}

// p2 behind the event before it
double behind_last(Reader &reader, Draft &draft, const Field &field)
{
    const Event *last = previous_event(reader, draft);
    if (last == nullptr) {
        trouble(reader, draft.line, "p2 can't be " + quoted(field.word) + ": no event is before it");
        return MISSING;
    }
    const double start = field_value(reader.score, *last, 2);
    return start + (field.mark == Mark::plus ? field_value(reader.score, *last, 3) : field.value);
}

double open_field(Reader &reader, Draft &draft, const Field &field, int number)
{
    if (number > 3)
        push_open(draft, number, field.mark, static_cast<int>(std::min(field.value, MAX_FIELDS + 1.0)));
    else
        trouble(reader, draft.line, field_name(number) + " can't be " + quoted(field.word));
    return MISSING;
}

double unreadable(Reader &reader, const Draft &draft, const Field &field, int number, const char *what)
{
    trouble(reader, draft.line, field_name(number) + what + quoted(field.word));
    return MISSING;
}

// the value of p2, p3 ...
double read_value(Reader &reader, Draft &draft, const Field &field, int number)
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
            return behind_last(reader, draft, field);
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
bool has_room(Reader &reader, const Draft &draft)
{
    const bool many_open = reader.section.open.size() + draft.open.size() >= reader.limits.open;
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

void add_field(Reader &reader, Draft &draft, const Field &field)
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
void carry_rest(Reader &reader, Draft &draft)
{
    const Event *last = draft.stopped ? nullptr : previous_event(reader, draft);
    if (last == nullptr)
        return;
    for (int field = static_cast<int>(field_count(reader, draft)) + 1; field <= last->fields && has_room(reader, draft); ++field)
        reader.score.values.push_back(carried(draft, reader.score, *last, field));
}

// why an event can't be shown; null when it can
const char *fault_of(const Reader &reader, const Draft &draft)
{
    const std::size_t count = field_count(reader, draft);
    const double     *field = &reader.score.values[draft.first];
    if (count < 3)
        return "an event without p2 and p3 is left out";
    if (std::isnan(field[1]) || std::isnan(field[2]))
        return "an event whose p2 or p3 is no number is left out";
    if (field[1] + reader.section.base < 0)
        return "an event before time 0 is left out";
    if (field[1] > LARGEST_TIME || std::abs(field[2]) > LARGEST_TIME)
        return "an event beyond 1e12 beats is left out";
    return nullptr;
}

void keep_event(Reader &reader, Draft &draft)
{
    Score            &score = reader.score;
    const std::size_t index = score.events.size();
    const double     *field = &score.values[draft.first];
    score.events.push_back({draft.first, static_cast<int>(field_count(reader, draft)), draft.instrument,
                            field[1] + reader.section.base, std::abs(field[2]), draft.line});
    for (Open &open : draft.open)
        open.event = index;
    reader.section.open.insert(reader.section.open.end(), draft.open.begin(), draft.open.end());
    draft.group->last = index;
    draft.group->open = std::move(draft.open);
}

// event -> "i" p1 p2 p3 { p-field }
void read_event(Reader &reader)
{
    Draft draft{reader.score.values.size(), reader.text.line};
    Field field{};
    if (!next_field(reader.text, field)) {
        trouble(reader, draft.line, "an event without an instrument is left out");
        return;
    }
    const bool good = has_room(reader, draft) && read_instrument(reader, draft, field);
    while (next_field(reader.text, field))
        if (good)
            add_field(reader, draft, field);
    if (good)
        carry_rest(reader, draft);
    if (!good || reader.full) {
        reader.score.values.resize(draft.first);
        return;
    }
    if (const char *fault = fault_of(reader, draft); fault != nullptr) {
        trouble(reader, draft.line, fault);
        reader.score.values.resize(draft.first);
        return;
    }
    keep_event(reader, draft);
}

// numbers of a statement that is no event, to its end; false when something else stands among them
bool read_numbers(Reader &reader, std::vector<double> &numbers)
{
    bool  good = true;
    Field field{};
    while (next_field(reader.text, field)) {
        good = good && field.mark == Mark::number;
        numbers.push_back(field.value);
    }
    return good;
}

// points -> 0 tempo { beat tempo }
bool is_tempo(const std::vector<double> &numbers)
{
    if (numbers.size() < 2 || numbers.size() % 2 != 0 || numbers[0] != 0)
        return false;
    for (std::size_t i = 0; i < numbers.size(); i += 2) {
        const bool ordered = i == 0 || numbers[i] >= numbers[i - 2];
        if (!ordered || numbers[i] > LARGEST_TIME || numbers[i + 1] < SLOWEST || numbers[i + 1] > FASTEST)
            return false;
    }
    return true;
}

void read_tempo(Reader &reader)
{
    const int           line = reader.text.line;
    std::vector<double> numbers;
    const bool          good = read_numbers(reader, numbers) && is_tempo(numbers);
    if (!good) {
        trouble(reader, line, "the tempo can't be read: times are beats");
        reader.score.beats = true;
        return;
    }
    if (reader.section.has_tempo) {
        trouble(reader, line, "a second tempo statement in one section is left out");
        return;
    }
    reader.section.has_tempo = true;
    for (std::size_t i = 0; i < numbers.size(); i += 2)
        reader.section.tempo.push_back({numbers[i], 60 / numbers[i + 1], 0});
    place_points(reader.section.tempo, Between::moves);
}

// f 0 beat: the section lasts up to there; a table does not show
void read_table(Reader &reader)
{
    std::vector<double> numbers;
    if (read_numbers(reader, numbers) && numbers.size() == 2 && numbers[0] == 0 && numbers[1] <= LARGEST_TIME)
        reader.section.least_end = std::max(reader.section.least_end, numbers[1]);
}

void read_base(Reader &reader)
{
    const int           line = reader.text.line;
    std::vector<double> numbers;
    if (read_numbers(reader, numbers) && numbers.size() == 1 && std::abs(numbers[0]) <= LARGEST_TIME)
        reader.section.base = numbers[0];
    else
        trouble(reader, line, "a statement b that can't be read is left out");
}

// events that have open p-fields, with the others of their groups, by group and time
std::vector<std::size_t> in_time_order(const Reader &reader)
{
    const std::vector<Event> &events = reader.score.events;
    const auto group = [&](std::size_t i) { return reader.group_of[static_cast<std::size_t>(events[i].instrument)]; };
    std::unordered_set<std::size_t> wanted; // as large as the section: there may be more groups, and many sections
    for (const Open &open : reader.section.open)
        wanted.insert(group(open.event));
    std::vector<std::size_t> order;
    for (std::size_t i = reader.section.first; i < events.size(); ++i)
        if (wanted.contains(group(i)))
            order.push_back(i);
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return group(a) != group(b) ? group(a) < group(b) : events[a].start < events[b].start;
    });
    return order;
}

// Open p-fields and the events around them.
struct Neighbours {
    Reader                   &reader;
    std::vector<std::size_t>  order;    // events, by group and time
    std::vector<std::size_t>  place_of; // of an event of the section in that order
    std::vector<const Open *> open;     // by p-field, then by place
};

std::size_t place(const Neighbours &n, std::size_t event) { return n.place_of[event - n.reader.section.first]; }

// the event so many places further, or null when it is of another group
const Event *neighbour(const Neighbours &n, std::size_t from, bool next)
{
    if (next ? from + 1 == n.order.size() : from == 0)
        return nullptr;
    const Event &event = n.reader.score.events[n.order[from]];
    const Event &other = n.reader.score.events[n.order[next ? from + 1 : from - 1]];
    const auto   group = [&](const Event &e) { return n.reader.group_of[static_cast<std::size_t>(e.instrument)]; };
    return group(event) == group(other) ? &other : nullptr;
}

double &value_of(const Neighbours &n, const Open &open)
{
    Score &score = n.reader.score;
    return score.values[score.events[open.event].first + static_cast<std::size_t>(open.field) - 1];
}

// ramps first ... last of one p-field in neighbouring events
void fill_ramps(Neighbours &n, std::size_t first, std::size_t last)
{
    const Score &score  = n.reader.score;
    const int    field  = n.open[first]->field;
    const Event *before = neighbour(n, place(n, n.open[first]->event), false);
    const Event *behind = neighbour(n, place(n, n.open[last]->event), true);
    const double from   = before != nullptr ? field_value(score, *before, field) : MISSING;
    const double to     = behind != nullptr ? field_value(score, *behind, field) : MISSING;
    if (std::isnan(from) || std::isnan(to)) {
        trouble(n.reader, score.events[n.open[first]->event].line,
                field_name(field) + " is a ramp without a number before it and behind it");
        return;
    }
    for (std::size_t i = first; i <= last; ++i) {
        const double span       = behind->start - before->start;
        const double way        = score.events[n.open[i]->event].start - before->start;
        value_of(n, *n.open[i]) = span > 0 ? from + (to - from) * (way / span) : from;
    }
}

void fill_all_ramps(Neighbours &n)
{
    const auto is_ramp = [&](std::size_t i) { return i < n.open.size() && n.open[i]->mark == Mark::ramp; };
    for (std::size_t i = 0; i < n.open.size(); ++i) {
        if (!is_ramp(i))
            continue;
        const std::size_t first = i;
        while (is_ramp(i + 1) && n.open[i + 1]->field == n.open[first]->field &&
               neighbour(n, place(n, n.open[i]->event), true) == &n.reader.score.events[n.open[i + 1]->event])
            ++i;
        fill_ramps(n, first, i);
    }
}

void fill_reference(Neighbours &n, const Open &open)
{
    const Score &score = n.reader.score;
    const Event *other = neighbour(n, place(n, open.event), open.mark == Mark::next);
    const double value = other != nullptr ? field_value(score, *other, open.source) : MISSING;
    if (std::isnan(value))
        trouble(n.reader, score.events[open.event].line,
                field_name(open.field) + " refers to a p-field that is no number or not there");
    value_of(n, open) = value;
}

// those that refer to the previous event in time order, those that refer to the next one backwards: they may refer to each other
void fill_references(Neighbours &n)
{
    std::stable_sort(n.open.begin(), n.open.end(),
                     [&](const Open *a, const Open *b) { return place(n, a->event) < place(n, b->event); });
    for (const Open *open : n.open)
        if (open->mark == Mark::previous)
            fill_reference(n, *open);
    for (auto open = n.open.rbegin(); open != n.open.rend(); ++open)
        if ((*open)->mark == Mark::next)
            fill_reference(n, **open);
}

void fill_open_fields(Reader &reader)
{
    if (reader.section.open.empty())
        return;
    Neighbours n{reader, in_time_order(reader), {}, {}};
    n.place_of.resize(reader.score.events.size() - reader.section.first);
    for (std::size_t i = 0; i < n.order.size(); ++i)
        n.place_of[n.order[i] - reader.section.first] = i;
    for (const Open &open : reader.section.open)
        n.open.push_back(&open);
    std::stable_sort(n.open.begin(), n.open.end(), [&](const Open *a, const Open *b) {
        return a->field != b->field ? a->field < b->field : place(n, a->event) < place(n, b->event);
    });
    fill_all_ramps(n);
    fill_references(n);
}

void finish_section(Reader &reader)
{
    const Section &section = reader.section;
    const auto     seconds = [&](double beat) { return seconds_at(section.tempo, Between::moves, beat); };
    double         end     = seconds(section.least_end);
    for (std::size_t i = section.first; i < reader.score.events.size(); ++i) {
        Event       &event = reader.score.events[i];
        const double start = seconds(event.start);
        const bool   held  = field_value(reader.score, event, 3) < 0; // does not make a section longer
        if (section.has_tempo)
            event.duration = seconds(event.start + event.duration) - start;
        event.start = section.offset + start;
        end         = std::max(end, held ? start : start + event.duration);
    }
    fill_open_fields(reader);
    const double offset   = section.offset + end;
    reader.section        = Section{};
    reader.section.offset = offset;
    reader.section.first  = reader.score.events.size();
}

// end -> ( "s" | "e" ) [ beat ]
void read_end(Reader &reader)
{
    std::vector<double> numbers;
    if (read_numbers(reader, numbers) && numbers.size() == 1 && numbers[0] <= LARGEST_TIME)
        reader.section.least_end = std::max(reader.section.least_end, numbers[0]);
    finish_section(reader);
}

void skip_statement(Reader &reader)
{
    Field field{};
    while (next_field(reader.text, field)) {
    }
}

// a statement of the language that is not followed is named once
void name_letter(Reader &reader, int line, char letter, const char *what)
{
    const std::uint32_t bit = 1U << static_cast<unsigned>(letter & 31);
    if ((reader.named_letters & bit) == 0)
        trouble(reader, line, std::string{"statements '"} + letter + "' are left out: " + what);
    reader.named_letters |= bit;
}

// what a statement that is not followed would do; null for one that is followed or that there is not
const char *not_followed(char letter)
{
    switch (letter) {
    case 'a':
        return "time does not advance";
    case 'd':
        return "no note is ended by them";
    case 'm':
    case 'n':
    case 'r':
        return "sections are not repeated";
    case 'q':
        return "no instrument is silenced";
    case 'v':
        return "times are not stretched";
    case '{':
    case '}':
        return "loops are shown once";
    case '#':
        return "files are not included, macros not defined";
    default:
        return nullptr;
    }
}

void read_other(Reader &reader, char letter)
{
    const int line = reader.text.line;
    if (const char *what = not_followed(letter); what != nullptr) {
        name_letter(reader, line, letter == '}' ? '{' : letter, what);
    } else {
        const char *start = reader.text.at - 1;
        skip_line(reader.text);
        trouble(reader, line, "no statement of a score: " + quoted({start, static_cast<std::size_t>(reader.text.at - start)}));
    }
    skip_line(reader.text);
}

// statement -> letter { p-field }
// false behind the end of the score
bool read_statement(Reader &reader)
{
    const char letter = *reader.text.at++;
    if (reader.section.skipped && letter != 's' && letter != 'e') {
        skip_statement(reader);
        return true;
    }
    switch (letter) {
    case 'i':
        read_event(reader);
        break;
    case 'c':
        skip_line(reader.text);
        break;
    case 'f':
        read_table(reader);
        break;
    case 't':
        read_tempo(reader);
        break;
    case 'b':
        read_base(reader);
        break;
    case 's':
    case 'e':
        read_end(reader);
        break;
    case 'x':
        reader.section.skipped = true;
        skip_statement(reader);
        break;
    case 'y': // seeds a random number generator
        skip_statement(reader);
        break;
    default:
        read_other(reader, letter);
        break;
    }
    return letter != 'e';
}

void name_fields(Score &score)
{
    int widest = 0;
    for (const Event &event : score.events)
        widest = std::max(widest, event.fields);
    for (int field = 1; field <= widest; ++field)
        score.field_names.push_back(field_name(field));
}

} // namespace

void read_score(std::string_view text, const Limits &limits, Score &score)
{
    Reader reader{{text.data(), text.data() + text.size()}, limits, score};
    bool   more = true;
    while (more && !reader.full) {
        skip_to_statement(reader.text);
        more = reader.text.at != reader.text.end && read_statement(reader);
    }
    finish_section(reader);
    name_fields(score);
    finish_score(score);
}

} // namespace orlo::view

// A section is read statement by statement; its events keep their beats until its end, since its tempo may be stated last. Then
// beats become seconds, p-fields that refer to neighbours in time are filled in, and the events enter the score. Beats and tempos
// are bounded where they are read, so that no seconds are too large to be reckoned with; what may enter is decided at the score's
// door.

#include "score/score_reader.h"

#include "score/event_reader.h"
#include "score/score_text.h"
#include "score/tempo.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

namespace orlo::score {
namespace {

constexpr double FASTEST = 1e6; // beats a minute
constexpr double SLOWEST = 1e-3;

struct Section {
    double                  offset = 0; // seconds
    std::vector<TempoPoint> tempo;
    bool                    has_tempo = false;
    double                  least_end = 0;     // beats that it lasts at least
    bool                    skipped   = false; // the rest, by a statement x
};

struct Reader {
    Text          text;
    EventReader   events;
    Section       section       = {};
    std::uint32_t named_letters = 0; // statements that were named already, a is bit 0
};

void trouble(Reader &reader, int line, std::string text) { add_trouble(reader.events.score, line, std::move(text)); }

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
        reader.events.score.beats = true;
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
        reader.events.base = numbers[0];
    else
        trouble(reader, line, "a statement b that can't be read is left out");
}

// beats of the section's events become seconds; returns the seconds that the section lasts
double place_events(Reader &reader)
{
    const Section &section = reader.section;
    Score         &score   = reader.events.score;
    const auto     seconds = [&](double beat) { return seconds_at(section.tempo, Between::moves, beat); };
    double         length  = seconds(section.least_end);
    for (std::size_t i = reader.events.first; i < score.events.size(); ++i) {
        Event       &event = score.events[i];
        const double start = seconds(event.start);
        const bool   held  = field_value(score, event, 3) < 0; // does not make a section longer
        if (section.has_tempo)                                 // an end may be rounded to before its start
            event.duration = std::max(seconds(event.start + event.duration) - start, 0.0);
        event.start = section.offset + start;
        length      = std::max(length, held ? start : start + event.duration);
    }
    return length;
}

void enter_events(EventReader &events)
{
    Score      &score = events.score;
    std::size_t kept  = events.first;
    for (std::size_t i = events.first; i < score.events.size(); ++i)
        if (enters(score, score.events[i], ""))
            score.events[kept++] = score.events[i];
    score.events.resize(kept, {});
}

void finish_section(Reader &reader)
{
    EventReader &events = reader.events;
    const double offset = reader.section.offset + place_events(reader);
    fill_open_fields(events.score, events.instruments, events.first, events.open);
    enter_events(events);
    begin_section(events);
    reader.section        = Section{};
    reader.section.offset = offset;
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
// false after the end of the score
bool read_statement(Reader &reader)
{
    const char letter = *reader.text.at++;
    if (reader.section.skipped && letter != 's' && letter != 'e') {
        skip_statement(reader);
        return true;
    }
    switch (letter) {
    case 'i':
        read_event(reader.events, reader.text);
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
    Reader reader{{text.data(), text.data() + text.size()}, {score, limits}};
    bool   more = true;
    while (more && !reader.events.full) {
        skip_to_statement(reader.text);
        more = reader.text.at != reader.text.end && read_statement(reader);
    }
    finish_section(reader);
    name_fields(score);
    finish_score(score);
}

} // namespace orlo::score

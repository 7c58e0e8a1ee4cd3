// What a p-field holds is not written in a score, so its numbers are judged. Pitches keep to a grid that other numbers rarely meet:
// in octave and pitch class the fraction is below .12, in octave and fraction it is near a twelfth, frequencies lie on semitones. A
// number between lies on such a grid by chance one time in eight or ten, so that many numbers on it are a strong sign. The more a
// sign can happen by chance, the less it counts; what counts the same is decided for the first p-field. Each instrument is
// also judged by itself, and that holds where it finds a pitch in more events.

#include "score/pitch.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace orlo::score {
namespace {

constexpr double      MOST        = 0.95;    // of the numbers that have to look like a pitch
constexpr int         FIRST_FIELD = 4;       // that may hold pitches
constexpr int         LEAST_ALONE = 4;       // what a guess for one instrument must be worth
constexpr std::size_t MOST_CELLS  = 100'000; // instruments times p-fields that are counted by instrument

struct Named {
    Pitch       pitch;
    const char *name;
};
constexpr Named names[] = {
    {Pitch::none, "none"}, {Pitch::pch, "pch"}, {Pitch::oct, "oct"}, {Pitch::hertz, "hz"}, {Pitch::key, "key"},
};

// What was counted over the numbers of a p-field.
struct Counts {
    std::size_t numbers   = 0;
    std::size_t whole     = 0;
    std::size_t pch       = 0;
    std::size_t oct       = 0; // anywhere between the octaves
    std::size_t twelfths  = 0;
    std::size_t hertz     = 0; // anywhere that can be heard
    std::size_t semitones = 0;
    std::size_t keys      = 0;
    double      least     = std::numeric_limits<double>::infinity();
    double      most      = -std::numeric_limits<double>::infinity();
};

struct Guess {
    int   worth = 0; // 0: it is no pitch
    Pitch pitch = Pitch::none;
};

double off_grid(double value) { return std::abs(value - std::round(value)); }

void count(Counts &counts, double value)
{
    const double fraction   = value - std::floor(value);
    const bool   whole      = fraction == 0;
    const bool   in_octaves = value >= 3 && value < 16;
    const bool   audible    = value >= 16 && value <= 20000;
    ++counts.numbers;
    counts.whole += whole ? 1U : 0U;
    counts.pch += in_octaves && fraction < 0.1195 ? 1U : 0U;
    counts.oct += in_octaves ? 1U : 0U;
    counts.twelfths += in_octaves && off_grid(12 * fraction) < 0.07 ? 1U : 0U; // two decimals are enough
    counts.hertz += audible ? 1U : 0U;
    counts.semitones += audible && off_grid(12 * std::log2(value / 440)) < 0.05 ? 1U : 0U;
    counts.keys += whole && value >= 0 && value <= 127 ? 1U : 0U;
    counts.least = std::min(counts.least, value);
    counts.most  = std::max(counts.most, value);
}

Guess judge(const Counts &counts)
{
    const auto most   = [&](std::size_t n) { return static_cast<double>(n) >= MOST * static_cast<double>(counts.numbers); };
    const bool varied = counts.least < counts.most;
    const bool whole  = counts.whole == counts.numbers;
    if (counts.numbers == 0)
        return {};
    if (!whole && most(counts.pch))
        return {varied ? 7 : 4, Pitch::pch};
    if (varied && !whole && most(counts.twelfths))
        return {6, Pitch::oct};
    if (varied && most(counts.semitones))
        return {5, Pitch::hertz};
    if (varied && most(counts.keys) && counts.most >= 24)
        return {3, Pitch::key};
    if (!whole && most(counts.hertz) && counts.most > 127)
        return {2, Pitch::hertz};
    if (varied && !whole && most(counts.oct) && counts.least >= 5 && counts.most <= 12)
        return {1, Pitch::oct};
    return {};
}

// counts of p1, p2 ... of the events that share a row
using Row = std::vector<Counts>;

// the best guess of a row's p-fields from FIRST_FIELD up; of guesses worth the same the first
Guess judge_row(const Row &row, PitchField &at)
{
    Guess best;
    for (std::size_t i = FIRST_FIELD - 1; i < row.size(); ++i)
        if (const Guess guess = judge(row[i]); guess.worth > best.worth) {
            best = guess;
            at   = {static_cast<int>(i) + 1, guess.pitch};
        }
    return best;
}

void count_event(const Score &score, const Event &event, Row &row)
{
    for (int field = FIRST_FIELD; field <= event.fields; ++field)
        if (const double value = field_value(score, event, field); !std::isnan(value))
            count(row[static_cast<std::size_t>(field) - 1], value);
}

// What a way of looking at a score has found.
struct Finding {
    std::size_t             events = 0; // that have a pitch
    PitchField              most;       // where most of them have it
    std::vector<PitchField> pitches;    // of each instrument, where they differ
};

// all events together
Finding look_at_all(const Score &score, int &worth)
{
    Row row(score.field_names.size());
    for (const Event &event : score.events)
        count_event(score, event, row);
    Finding finding;
    worth = judge_row(row, finding.most).worth;
    if (worth > 0)
        finding.events = row[static_cast<std::size_t>(finding.most.field) - 1].numbers;
    return finding;
}

// each instrument by itself; few events say little, so that only what keeps to a grid counts
Finding look_at_each(const Score &score)
{
    const std::size_t count_of_instruments = score.instruments.size();
    Finding           finding;
    if (count_of_instruments < 2 || count_of_instruments * score.field_names.size() > MOST_CELLS)
        return finding;
    std::vector<Row> rows(count_of_instruments, Row(score.field_names.size()));
    for (const Event &event : score.events)
        count_event(score, event, rows[static_cast<std::size_t>(event.instrument)]);
    finding.pitches.resize(count_of_instruments);
    std::size_t most = 0; // events of an instrument
    for (std::size_t i = 0; i < count_of_instruments; ++i) {
        PitchField at;
        if (judge_row(rows[i], at).worth < LEAST_ALONE)
            continue;
        const std::size_t events = rows[i][static_cast<std::size_t>(at.field) - 1].numbers;
        finding.pitches[i]       = at;
        finding.events += events;
        if (events > most) {
            most         = events;
            finding.most = at;
        }
    }
    return finding;
}

} // namespace

void recognise_pitch(Score &score)
{
    int           worth = 0;
    const Finding all   = look_at_all(score, worth);
    Finding       each  = look_at_each(score);
    const bool    apart = each.events > (worth < LEAST_ALONE ? 0 : all.events);
    score.pitch_field   = apart ? each.most.field : all.most.field;
    score.pitch         = apart ? each.most.pitch : all.most.pitch;
    if (apart)
        score.pitches = std::move(each.pitches);
}

const char *pitch_name(Pitch pitch)
{
    const auto *named = std::find_if(std::begin(names), std::end(names), [pitch](const Named &n) { return n.pitch == pitch; });
    return named->name;
}

bool find_pitch(std::string_view name, Pitch &pitch)
{
    for (const Named &named : names)
        if (name == named.name) {
            pitch = named.pitch;
            return true;
        }
    return false;
}

} // namespace orlo::score

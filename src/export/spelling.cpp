// On the line of fifths (f c g d a e b, with flats below and sharps above) names that belong to one key are neighbours: the middle
// of the last names decides about the next one.

#include "export/spelling.h"

#include "base/markup.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <limits>

namespace orlo::exporting {
namespace {

constexpr double TUNED        = 0.005; // semitones: what lies so near is meant
constexpr double MIDDLE       = 2.0;   // d on the line of fifths, where a piece begins
constexpr double REMEMBERED   = 0.85;  // of the middle, when a name comes
constexpr int    LOWEST_NAME  = -6;    // g flat
constexpr int    HIGHEST_NAME = 10;    // a sharp
constexpr double MOST_ALTER   = 2.0;   // semitones that have a sign of their own
constexpr double DIGITS       = 1e4;   // of a semitone, that are written
constexpr double LOWEST       = 0.0;   // c0
constexpr double HIGHEST      = 115.0; // the highest key of a MIDI file
constexpr int    OCTAVE       = 12;

constexpr char               FIFTHS[]     = "FCGDAEB"; // from -1 on
constexpr char               STEPS[]      = "CDEFGAB";
constexpr std::array<int, 7> SEMITONES_OF = {0, 2, 4, 5, 7, 9, 11};

int index_of(char step) { return static_cast<int>(std::find(std::begin(STEPS), std::end(STEPS), step) - std::begin(STEPS)); }

int semitones_of(char step) { return SEMITONES_OF[static_cast<std::size_t>(index_of(step))]; }

// place of a name on the line of fifths
double fifths_of(const Spelling &name)
{
    return static_cast<double>(std::find(std::begin(FIFTHS), std::end(FIFTHS), name.step) - std::begin(FIFTHS)) - 1.0 +
           7.0 * std::round(name.alter);
}

bool set_octave(Spelling &name, double pitch)
{
    const double octave = (pitch - semitones_of(name.step) - name.alter) / OCTAVE;
    name.octave         = static_cast<int>(std::lround(octave));
    return std::fabs(octave - name.octave) * OCTAVE < TUNED && name.octave >= 0 && name.octave <= 9;
}

// as it was written, if that is what sounds
bool is_written(Spelling &name, const NoteName &written, double pitch)
{
    if (written.step == 0 || std::fabs(static_cast<double>(written.alter)) > MOST_ALTER)
        return false;
    name.step  = static_cast<char>(written.step - 'a' + 'A');
    name.alter = static_cast<double>(written.alter);
    return set_octave(name, pitch);
}

// the name of a key that is nearest to the middle
Spelling nearest_name(int key, double middle)
{
    Spelling best;
    double   least = std::numeric_limits<double>::infinity();
    for (int fifths = LOWEST_NAME; fifths <= HIGHEST_NAME; ++fifths) {
        if ((fifths * 7 - key) % OCTAVE != 0 || std::fabs(fifths - middle) >= least)
            continue;
        least      = std::fabs(fifths - middle);
        best.step  = FIFTHS[(fifths + 8) % 7];
        best.alter = std::floor((fifths + 1) / 7.0);
        set_octave(best, key);
    }
    return best;
}

// a quarter tone is written beside a key without a sign
Spelling quarter_tone(double pitch)
{
    const auto below = static_cast<int>(std::floor(pitch));
    Spelling   name  = nearest_name(below, MIDDLE);
    if (name.alter != 0.0)
        name = nearest_name(below + 1, MIDDLE);
    name.alter = pitch - name.octave * OCTAVE - semitones_of(name.step);
    return name;
}

struct Speller {
    double      middle    = MIDDLE;
    std::size_t pitchless = 0;
    std::size_t moved     = 0;
    std::size_t micro     = 0; // neither keys nor quarter tones
};

double within_range(double pitch, std::size_t &moved)
{
    if (pitch >= LOWEST - 0.5 && pitch < HIGHEST + 0.5)
        return std::clamp(pitch, LOWEST, HIGHEST);
    ++moved;
    const double octave = std::fmod(pitch, static_cast<double>(OCTAVE));
    if (pitch < LOWEST)
        return octave < 0.0 ? octave + OCTAVE : octave;
    const double top = HIGHEST - OCTAVE + 0.5;
    const double low = std::fmod(top, static_cast<double>(OCTAVE));
    return std::min(top - low + octave + (octave < low ? OCTAVE : 0.0), HIGHEST);
}

Spelling spelled(Speller &speller, const Note &note, double pitch)
{
    Spelling name;
    if (!std::isfinite(pitch)) {
        ++speller.pitchless;
        return name;
    }
    pitch             = within_range(pitch, speller.moved);
    const double key  = std::round(pitch);
    const double rest = pitch - key;
    if (is_written(name, note.name, pitch)) {
        speller.middle += (fifths_of(name) - speller.middle) * (1.0 - REMEMBERED);
    } else if (std::fabs(std::fabs(rest) - 0.5) < TUNED) {
        name = quarter_tone(std::round(pitch * 2.0) / 2.0);
    } else {
        name = nearest_name(static_cast<int>(key), speller.middle);
        speller.middle += (fifths_of(name) - speller.middle) * (1.0 - REMEMBERED);
        if (std::fabs(rest) >= TUNED) {
            name.alter += std::round(rest * DIGITS) / DIGITS;
            ++speller.micro;
        }
    }
    name.pitch = true;
    return name;
}

void say(std::vector<std::string> &said, std::size_t count, std::string_view rest)
{
    if (count > 0)
        said.push_back(joined({counted(count, "note"), " ", rest}));
}

constexpr int STEPS_OF_STAFF = 8;

// the lowest line of a clef
struct ClefRow {
    Clef   clef;
    int    lowest;
    double burden; // steps of a note that a usual clef may have more
};
constexpr ClefRow CLEFS[] = {
    {{"G", 2, 0}, 30, 0.0},  {{"F", 4, 0}, 18, 0.0}, {{"G", 2, 1}, 37, 1.0},
    {{"F", 4, -1}, 11, 1.0}, {{"G", 2, 2}, 44, 1.5}, {{"F", 4, -2}, 4, 1.5},
};

} // namespace

Spellings spellings_of(const Music &music)
{
    Spellings                spellings{std::vector<Spelling>(music.notes.size()), {}};
    std::vector<Speller>     spellers(music.parts.size());
    std::vector<std::size_t> order(music.notes.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    std::stable_sort(order.begin(), order.end(),
                     [&music](std::size_t a, std::size_t b) { return music.notes[a].start < music.notes[b].start; });
    Speller all;
    for (const std::size_t i : order) {
        Speller &speller   = spellers[static_cast<std::size_t>(music.notes[i].part)];
        spellings.notes[i] = spelled(speller, music.notes[i], pitch_of(music, music.notes[i]));
    }
    for (const Speller &speller : spellers) {
        all.pitchless += speller.pitchless;
        all.moved += speller.moved;
        all.micro += speller.micro;
    }
    say(spellings.said, all.pitchless, "without a pitch, on the middle line");
    say(spellings.said, all.moved, "moved by octaves into the range of keys");
    say(spellings.said, all.micro, "between the quarter tones: the sign is an arrow, how far it goes only the file tells");
    return spellings;
}

int height_of(const Spelling &spelling) { return spelling.octave * 7 + index_of(spelling.step); }

Clef clef_of(const Spellings &spellings, const std::vector<std::size_t> &notes)
{
    double pitches = 0.0;
    double costs[std::size(CLEFS)]{};
    for (const std::size_t note : notes) {
        const Spelling &spelling = spellings.notes[note];
        if (!spelling.pitch)
            continue;
        ++pitches;
        const int height = height_of(spelling);
        for (std::size_t i = 0; i < std::size(CLEFS); ++i)
            costs[i] += std::max({0, CLEFS[i].lowest - height, height - CLEFS[i].lowest - STEPS_OF_STAFF});
    }
    if (pitches == 0.0)
        return {"percussion", 2, 0};
    std::size_t best = 0;
    for (std::size_t i = 1; i < std::size(CLEFS); ++i)
        if (costs[i] + pitches * CLEFS[i].burden < costs[best] + pitches * CLEFS[best].burden)
            best = i;
    return CLEFS[best].clef;
}

} // namespace orlo::exporting

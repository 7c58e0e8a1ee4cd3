// A measure holds the voices of its staff one after the other, with a step back before each but the first. Signs of accidentals are
// told by all voices of a staff together, in the order of time.

#include "export/musicxml.h"

#include "base/markup.h"
#include "export/midi.h"
#include "export/notation.h"
#include "export/spelling.h"
#include "export/tempo_marks.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <utility>

namespace orlo::exporting {
namespace {

constexpr std::size_t FLUSHED = 65536; // bytes that are gathered before they are written
constexpr double      SAME    = 1e-6;  // semitones

constexpr const char *VALUES[] = {"128th", "64th", "32nd", "16th", "eighth", "quarter", "half", "whole", "breve"};

struct AccidentalName {
    double      alter;
    const char *name;
};
constexpr AccidentalName ACCIDENTALS[] = {
    {-2.0, "flat-flat"},   {-1.5, "three-quarters-flat"}, {-1.0, "flat"}, {-0.5, "quarter-flat"},
    {0.0, "natural"},      {0.5, "quarter-sharp"},        {1.0, "sharp"}, {1.5, "three-quarters-sharp"},
    {2.0, "double-sharp"},
};

// a note of a sign, with the accidental that stands before it
struct Head {
    const Spelling *spelling;
    std::string     accidental; // none: it needs no sign
};

struct Page {
    const Music     &music;
    const Notation  &notation;
    const Spellings &spellings;
    const TempoMarks tempo;
    Units            divisor; // of units; what is left of a quarter are its divisions
    std::FILE       *file;
    std::string      out  = {};
    bool             lost = false;

    void flush(std::size_t most)
    {
        if (out.size() <= most)
            return;
        lost = lost || std::fwrite(out.data(), 1, out.size(), file) != out.size();
        out.clear();
    }
    void line(int depth, std::initializer_list<std::string_view> texts)
    {
        out.append(static_cast<std::size_t>(depth), ' ');
        for (const std::string_view text : texts)
            out += text;
        out += '\n';
    }
    std::string units(Units length) const { return std::to_string(length / divisor); }
};

// ---- accidentals

std::string accidental_of(double alter)
{
    for (const AccidentalName &each : ACCIDENTALS)
        if (std::fabs(alter - each.alter) < SAME)
            return each.name;
    const double key = std::round(alter);
    const char  *way = alter > key ? "-up" : "-down";
    return joined({key < 0.0 ? "flat" : key > 0.0 ? "sharp" : "natural", way});
}

using Signs = std::vector<std::vector<Sign>>;                                   // of a measure, by voice
using Heads = std::map<std::pair<std::size_t, std::size_t>, std::vector<Head>>; // by voice and sign

// the notes of a chord from below, each once
std::vector<const Spelling *> names_of(const Spellings &spellings, const WrittenChord &chord)
{
    std::vector<const Spelling *> names;
    for (const std::size_t note : chord.notes)
        names.push_back(&spellings.notes[note]);
    const auto place = [](const Spelling *name) { return std::pair{height_of(*name), name->alter}; };
    std::stable_sort(names.begin(), names.end(), [&](const Spelling *a, const Spelling *b) { return place(a) < place(b); });
    names.erase(std::unique(names.begin(), names.end(), [&](const Spelling *a, const Spelling *b) { return place(a) == place(b); }),
                names.end());
    return names;
}

Heads heads_of(const Page &page, const Signs &signs)
{
    std::vector<std::pair<std::size_t, std::size_t>> order;
    for (std::size_t v = 0; v < signs.size(); ++v)
        for (std::size_t i = 0; i < signs[v].size(); ++i)
            if (signs[v][i].chord != nullptr)
                order.emplace_back(v, i);
    std::stable_sort(order.begin(), order.end(), [&signs](const auto &a, const auto &b) {
        return signs[a.first][a.second].start < signs[b.first][b.second].start;
    });
    std::map<int, double> in_force; // by height
    Heads                 heads;
    for (const auto &at : order) {
        const Sign        &sign = signs[at.first][at.second];
        std::vector<Head> &here = heads[at];
        for (const Spelling *name : names_of(page.spellings, *sign.chord)) {
            Head &head = here.emplace_back(Head{name, {}});
            if (!name->pitch || sign.from_tie)
                continue;
            double &alter = in_force[height_of(*name)];
            if (std::fabs(alter - name->alter) >= SAME)
                head.accidental = accidental_of(name->alter);
            alter = name->alter;
        }
    }
    return heads;
}

// ---- notes

const char *beam_name(Beam beam)
{
    switch (beam) {
    case Beam::begin:
        return "begin";
    case Beam::on:
        return "continue";
    case Beam::end:
        return "end";
    case Beam::forward:
        return "forward hook";
    case Beam::backward:
        return "backward hook";
    case Beam::none:
        break;
    }
    return "";
}

void put_pitch(Page &page, const Head &head)
{
    const Spelling &name = *head.spelling;
    if (!name.pitch) {
        page.line(4, {"<unpitched><display-step>B</display-step><display-octave>4</display-octave></unpitched>"});
        return;
    }
    const std::string alter = std::fabs(name.alter) < SAME
                                  ? std::string{}
                                  : joined({"<alter>", number_text(std::round(name.alter * 1e4) / 1e4), "</alter>"});
    page.line(4, {"<pitch><step>", std::string_view{&name.step, 1}, "</step>", alter, "<octave>", std::to_string(name.octave),
                  "</octave></pitch>"});
}

void put_notations(Page &page, const Sign &sign, bool first)
{
    std::string inner;
    if (sign.from_tie)
        inner += "<tied type=\"stop\"/>";
    if (sign.to_tie)
        inner += "<tied type=\"start\"/>";
    if (first && sign.first_of_tuplet)
        inner += "<tuplet type=\"start\" bracket=\"yes\"/>";
    if (first && sign.last_of_tuplet)
        inner += "<tuplet type=\"stop\"/>";
    if (first && sign.chord != nullptr && !sign.from_tie && sign.chord->articulation != Articulation::none)
        inner += joined(
            {"<articulations><", sign.chord->articulation == Articulation::staccato ? "staccato" : "tenuto", "/></articulations>"});
    if (!inner.empty())
        page.line(4, {"<notations>", inner, "</notations>"});
}

// what a note and a rest have in common, in the order of the standard
void put_value(Page &page, const Sign &sign, std::size_t voice, const std::string &accidental, bool first)
{
    page.line(4, {"<voice>", std::to_string(voice + 1), "</voice>"});
    if (!sign.whole_measure) {
        page.line(4, {"<type>", VALUES[sign.value], "</type>"});
        for (int i = 0; i < sign.dots; ++i)
            page.line(4, {"<dot/>"});
    }
    if (!accidental.empty())
        page.line(4, {"<accidental>", accidental, "</accidental>"});
    if (sign.actual != 1)
        page.line(4, {"<time-modification><actual-notes>", std::to_string(sign.actual), "</actual-notes><normal-notes>",
                      std::to_string(sign.normal), "</normal-notes></time-modification>"});
    for (std::size_t level = 0; first && level < sign.beams.size(); ++level)
        if (sign.beams[level] != Beam::none)
            page.line(4, {"<beam number=\"", std::to_string(level + 1), "\">", beam_name(sign.beams[level]), "</beam>"});
    put_notations(page, sign, first);
}

void put_rest(Page &page, const Sign &sign, std::size_t voice)
{
    page.line(3, {"<note>"});
    page.line(4, {sign.whole_measure ? "<rest measure=\"yes\"/>" : "<rest/>"});
    page.line(4, {"<duration>", page.units(sign.length), "</duration>"});
    put_value(page, sign, voice, {}, true);
    page.line(3, {"</note>"});
}

void put_chord(Page &page, const Sign &sign, std::size_t voice, const std::vector<Head> &heads)
{
    for (const Head &head : heads) {
        const bool first = &head == &heads.front();
        page.line(3, {"<note>"});
        if (!first)
            page.line(4, {"<chord/>"});
        put_pitch(page, head);
        page.line(4, {"<duration>", page.units(sign.length), "</duration>"});
        if (sign.from_tie)
            page.line(4, {"<tie type=\"stop\"/>"});
        if (sign.to_tie)
            page.line(4, {"<tie type=\"start\"/>"});
        put_value(page, sign, voice, head.accidental, first);
        page.line(3, {"</note>"});
    }
}

// ---- measures

void put_clef(Page &page, const Clef &clef)
{
    page.line(4, {"<clef>"});
    page.line(5, {"<sign>", clef.sign, "</sign>"});
    page.line(5, {"<line>", std::to_string(clef.line), "</line>"});
    if (clef.octaves != 0)
        page.line(5, {"<clef-octave-change>", std::to_string(clef.octaves), "</clef-octave-change>"});
    page.line(4, {"</clef>"});
}

void put_attributes(Page &page, const Clef &clef)
{
    const Meter meter = page.notation.meter;
    page.line(3, {"<attributes>"});
    page.line(4, {"<divisions>", page.units(QUARTER), "</divisions>"});
    page.line(4, {"<key><fifths>0</fifths></key>"});
    page.line(4, {"<time><beats>", std::to_string(meter.beats), "</beats><beat-type>", std::to_string(meter.unit),
                  "</beat-type></time>"});
    put_clef(page, clef);
    page.line(3, {"</attributes>"});
}

void put_direction(Page &page, std::string_view placement, std::string_view type, Units offset, double tempo)
{
    page.line(3, {"<direction placement=\"", placement, "\">"});
    page.line(4, {"<direction-type>", type, "</direction-type>"});
    if (offset != 0)
        page.line(4, {"<offset sound=\"yes\">", page.units(offset), "</offset>"});
    if (tempo > 0.0)
        page.line(4, {"<sound tempo=\"", number_text(tempo), "\"/>"});
    page.line(3, {"</direction>"});
}

void put_tempo(Page &page, const TempoMark &mark, Units offset)
{
    const bool compound = is_compound(page.notation.meter);
    if (!mark.words.empty())
        put_direction(page, "above", joined({"<words>", mark.words, "</words>"}), offset, mark.shown ? 0.0 : mark.tempo);
    if (mark.shown) {
        const double beats = compound ? mark.tempo * 2.0 / 3.0 : mark.tempo;
        put_direction(page, "above",
                      joined({"<metronome><beat-unit>quarter</beat-unit>", compound ? "<beat-unit-dot/>" : "", "<per-minute>",
                              number_text(std::round(beats * 10.0) / 10.0), "</per-minute></metronome>"}),
                      offset, mark.tempo);
    } else if (mark.words.empty()) {
        put_direction(page, "above", "<words> </words>", offset, mark.tempo); // a tempo without words would be shown as a number
    }
}

struct StaffReading {
    const WrittenStaff  &staff;
    std::vector<Reading> voices;
    std::size_t          mark = 0; // next of the tempo
};

// what of the tempo begins with a sign; the first staff has it for all
void put_tempos(Page &page, StaffReading &reading, std::int64_t measure, const Sign &sign)
{
    const Units begin = measure * measure_of(page.notation.meter) + sign.start;
    for (; reading.mark < page.tempo.marks.size(); ++reading.mark) {
        const TempoMark &mark = page.tempo.marks[reading.mark];
        if (mark.quarter * QUARTER >= begin + sign.length)
            return;
        put_tempo(page, mark, mark.quarter * QUARTER - begin);
    }
}

// a voice of a measure, by the index that it is read by and the number that it gets
struct VoiceOfMeasure {
    std::int64_t measure;
    std::size_t  index;
    std::size_t  number;
    bool         has_tempo;
};

void put_signs(Page &page, StaffReading &reading, const Signs &signs, const Heads &heads, VoiceOfMeasure voice)
{
    for (std::size_t i = 0; i < signs[voice.index].size(); ++i) {
        const Sign &sign = signs[voice.index][i];
        if (voice.has_tempo)
            put_tempos(page, reading, voice.measure, sign);
        if (sign.chord == nullptr)
            put_rest(page, sign, voice.number);
        else
            put_chord(page, sign, voice.number, heads.at({voice.index, i}));
    }
}

// The signs of all voices that have notes; those of the first one always, unless the others can take its place: where no tie comes
// from another measure or goes to one.
Signs signs_of_measure(const Page &page, StaffReading &reading, std::int64_t measure)
{
    const Meter meter = page.notation.meter;
    Signs       signs(reading.staff.voices.size());
    bool        alone = true; // it has nothing to do with other measures
    bool        empty = true;
    for (std::size_t v = 0; v < signs.size(); ++v) {
        if (!has_notes(reading.staff.voices[v], meter, measure, reading.voices[v]))
            continue;
        signs[v] = signs_of(reading.staff.voices[v], meter, measure, reading.voices[v]);
        alone    = alone && !signs[v].front().from_tie && !signs[v].back().to_tie;
        empty    = false;
    }
    if (signs.front().empty() && (empty || !alone))
        signs.front() = signs_of(reading.staff.voices.front(), meter, measure, reading.voices.front());
    return signs;
}

void put_measure(Page &page, StaffReading &reading, std::int64_t measure, const Clef &clef, bool first_staff)
{
    const Meter meter = page.notation.meter;
    page.line(2, {"<measure number=\"", std::to_string(measure + 1), "\">"});
    if (measure == 0)
        put_attributes(page, clef);
    if (measure == 0 && reading.staff.usual == Articulation::staccato)
        put_direction(page, "below", "<words font-style=\"italic\">sempre stacc.</words>", 0, 0.0);
    const Signs signs   = signs_of_measure(page, reading, measure);
    const Heads heads   = heads_of(page, signs);
    const bool  shifted = signs.front().empty();
    bool        first   = true;
    for (std::size_t v = 0; v < signs.size(); ++v) {
        if (signs[v].empty())
            continue;
        if (!first)
            page.line(3, {"<backup><duration>", page.units(measure_of(meter)), "</duration></backup>"});
        put_signs(page, reading, signs, heads, {measure, v, shifted && first ? 0 : v, first && first_staff});
        first = false;
    }
    if (measure + 1 == page.notation.measures)
        page.line(3, {"<barline location=\"right\"><bar-style>light-heavy</bar-style></barline>"});
    page.line(2, {"</measure>"});
    page.flush(FLUSHED);
}

Clef clef_of_staff(const Page &page, const WrittenStaff &staff)
{
    std::vector<std::size_t> notes;
    for (const WrittenVoice &voice : staff.voices)
        for (const WrittenChord &chord : voice.chords)
            notes.insert(notes.end(), chord.notes.begin(), chord.notes.end());
    return clef_of(page.spellings, notes);
}

std::string id_of(std::size_t staff) { return joined({"P", std::to_string(staff + 1)}); }

void put_parts_list(Page &page)
{
    page.line(1, {"<part-list>"});
    for (std::size_t i = 0; i < page.notation.staves.size(); ++i) {
        const WrittenStaff &staff = page.notation.staves[i];
        std::string         name  = escaped(name_of(page.music.parts[staff.part]));
        if (staff.number > 0)
            name += joined({" (", std::to_string(staff.number + 1), ")"});
        page.line(2, {"<score-part id=\"", id_of(i), "\">"});
        page.line(3, {"<part-name>", name, "</part-name>"});
        page.line(3,
                  {"<score-instrument id=\"", id_of(i), "-I1\"><instrument-name>", name, "</instrument-name></score-instrument>"});
        page.line(2, {"</score-part>"});
    }
    page.line(1, {"</part-list>"});
}

void put_head(Page &page)
{
    page.line(0, {"<?xml version=\"1.0\" encoding=\"UTF-8\"?>"});
    page.line(0, {"<!DOCTYPE score-partwise PUBLIC \"-//Recordare//DTD MusicXML 4.0 Partwise//EN\" "
                  "\"http://www.musicxml.org/dtds/partwise.dtd\">"});
    page.line(0, {"<score-partwise version=\"4.0\">"});
    page.line(1, {"<work><work-title>", escaped(page.music.title), "</work-title></work>"});
    page.line(1, {"<identification><encoding><software>orlo-export ", ORLO_VERSION, "</software></encoding></identification>"});
    put_parts_list(page);
}

// the largest number of units that all lengths have whole numbers of
Units divisor_of(const Notation &notation, const TempoMarks &tempo)
{
    Units divisor = std::gcd(QUARTER, measure_of(notation.meter));
    for (const TempoMark &mark : tempo.marks)
        divisor = std::gcd(divisor, mark.quarter * QUARTER);
    for (const WrittenStaff &staff : notation.staves)
        for (const WrittenVoice &voice : staff.voices) {
            std::vector<Reading> at(1);
            for (std::int64_t measure = 0; measure < notation.measures; ++measure)
                for (const Sign &sign : signs_of(voice, notation.meter, measure, at.front()))
                    divisor = std::gcd(divisor, sign.length);
        }
    return divisor;
}

// notes that stand twice in a chord
std::size_t count_doubled(const Notation &notation, const Spellings &spellings)
{
    std::size_t doubled = 0;
    for (const WrittenStaff &staff : notation.staves)
        for (const WrittenVoice &voice : staff.voices)
            for (const WrittenChord &chord : voice.chords)
                doubled += chord.notes.size() - names_of(spellings, chord).size();
    return doubled;
}

void say_grid(const Music &music, const Grid &grid, const NotationOptions &options, std::vector<std::string> &said)
{
    if (options.own_beats)
        said.emplace_back("each block has its own beats");
    else if (grid.block == NONE)
        said.emplace_back("a quarter note is a second");
    else
        said.push_back(
            joined({"the beats are those of block ", std::to_string(music.blocks[static_cast<std::size_t>(grid.block)].number)}));
}

void put_staves(Page &page)
{
    for (std::size_t i = 0; i < page.notation.staves.size(); ++i) {
        const WrittenStaff &staff = page.notation.staves[i];
        StaffReading        reading{staff, std::vector<Reading>(staff.voices.size())};
        const Clef          clef = clef_of_staff(page, staff);
        page.line(1, {"<part id=\"", id_of(i), "\">"});
        for (std::int64_t measure = 0; measure < page.notation.measures; ++measure)
            put_measure(page, reading, measure, clef, i == 0);
        page.line(1, {"</part>"});
    }
}

} // namespace

std::string write_musicxml(const Music &music, const NotationOptions &options, std::vector<std::string> &said, std::FILE *file)
{
    const Grid     grid     = chosen_grid(music, options.map);
    const Notation notation = notation_of(music, grid, options);
    if (!notation.fault.empty())
        return notation.fault;
    const Spellings  spellings = spellings_of(music);
    const TempoMarks tempo     = tempo_marks(grid, notation.measures * measure_of(notation.meter) / QUARTER);
    Page             page{music, notation, spellings, tempo, divisor_of(notation, tempo), file};
    put_head(page);
    put_staves(page);
    page.line(0, {"</score-partwise>"});
    page.flush(0);
    say_grid(music, grid, options, said);
    for (const std::vector<std::string> &lines : {notation.said, spellings.said, tempo.said})
        said.insert(said.end(), lines.begin(), lines.end());
    if (const std::size_t doubled = count_doubled(notation, spellings); doubled > 0)
        said.push_back(joined({counted(doubled, "note"), " written once with another of the same pitch"}));
    return page.lost ? NOT_WRITTEN : "";
}

} // namespace orlo::exporting

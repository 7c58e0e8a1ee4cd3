#include "export/read_music.h"

#include "base/json.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace orlo::exporting {
namespace {

constexpr double KEY_OF_ZERO = 12.0; // MIDI key of semitone 0, four octaves below middle C

std::int32_t number_of(const std::string &name)
{
    std::int32_t number     = NONE;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    return error == std::errc{} && end == name.data() + name.size() ? number : NONE;
}

score::PitchField pitch_of(const score::Score &score, const score::Event &event)
{
    if (!score.pitches.empty())
        return score.pitches[static_cast<std::size_t>(event.instrument)];
    return {score.pitch_field, score.pitch};
}

} // namespace

Music music_of(const score::Score &score)
{
    Music music;
    music.title = score.title;
    music.files.push_back(score.title);
    for (const score::Trouble &trouble : score.troubles)
        music.troubles.push_back((trouble.line > 0 ? "line " + std::to_string(trouble.line) + ": " : "") + trouble.text);
    for (const std::string &name : score.instruments)
        music.parts.push_back({name, number_of(name)});
    for (std::size_t p = 4; p <= score.field_names.size(); ++p)
        music.fields.push_back({static_cast<int>(p), Meaning::number, ""});
    for (const score::Event &event : score.events) {
        Note note{};
        note.start                    = event.start;
        note.duration                 = event.duration;
        note.part                     = event.instrument;
        note.file                     = event.line > 0 ? 0 : NONE;
        note.line                     = event.line;
        note.first                    = music.values.size();
        note.count                    = std::max(event.fields - 3, 0);
        const score::PitchField pitch = pitch_of(score, event);
        for (int p = 4; p <= event.fields; ++p) {
            const double value   = score::field_value(score, event, p);
            std::string &printed = music.printed.emplace_back();
            if (!std::isnan(value))
                put_json_number(printed, value);
            if (p == pitch.field)
                music.fields[static_cast<std::size_t>(p) - 4].meaning = Meaning::semitones;
            music.values.push_back(p == pitch.field ? score::key_of(score, event) - KEY_OF_ZERO : value);
        }
        music.notes.push_back(note);
    }
    return music;
}

} // namespace orlo::exporting

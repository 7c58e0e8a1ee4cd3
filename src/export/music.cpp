#include "export/music.h"

#include "base/markup.h"

#include <algorithm>

namespace orlo::exporting {

const std::vector<Field> &fields_of(const Music &music, const Note &note)
{
    return note.block == NONE ? music.fields : music.blocks[static_cast<std::size_t>(note.block)].fields;
}

int field_with(const std::vector<Field> &fields, Meaning meaning)
{
    const auto found =
        std::find_if(fields.begin(), fields.end(), [meaning](const Field &field) { return field.meaning == meaning; });
    return found == fields.end() ? NONE : static_cast<int>(found - fields.begin());
}

double value_at(const Music &music, const Note &note, int field)
{
    return field < 0 || field >= note.count ? NOTHING : music.values[note.first + static_cast<std::size_t>(field)];
}

double pitch_of(const Music &music, const Note &note)
{
    return value_at(music, note, field_with(fields_of(music, note), Meaning::semitones));
}

std::string name_of(const Part &part) { return part.number == NONE ? part.name : joined({"i", part.name}); }

} // namespace orlo::exporting

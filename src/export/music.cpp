#include "export/music.h"

namespace orlo::exporting {

const std::vector<Field> &fields_of(const Music &music, const Note &note)
{
    return note.block == NONE ? music.fields : music.blocks[static_cast<std::size_t>(note.block)].fields;
}

} // namespace orlo::exporting

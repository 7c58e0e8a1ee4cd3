// out_blocks.h: blocks with their sections, commands, values and events as parts of a document.
#pragma once

#include "explain/out.h"

namespace orlo::explain {

/// The commands of a block, of a section, or between blocks, under the name "commands".
void put_commands(Out &out, const std::vector<Command> &commands);

/// The members of a block.
void put_block(Out &out, const Block &block);

} // namespace orlo::explain

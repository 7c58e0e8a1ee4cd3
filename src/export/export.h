// export.h: a run of orlo-export.
#pragma once

namespace orlo::exporting {

/// Reads a piece and writes it for other programs.
/// @return the exit status: 0 when it was written, 1 when it was not, 2 for a command line that is wrong
int run(int argc, const char *const *argv);

} // namespace orlo::exporting

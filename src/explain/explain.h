// explain.h: a run of orlo-explain.
#pragma once

namespace orlo::explain {

/// The whole program. @return exit status: 0 when what was asked for has been written, whatever the piece is worth; 1 when it could
/// not be; 2 for a command line that makes no sense
[[nodiscard]] int run(int argc, const char *const *argv);

} // namespace orlo::explain

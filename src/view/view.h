// view.h: a run of orlo-view, from the command line to the picture.
#pragma once

namespace orlo::view {

/// @return exit status: 0 the picture is written, 1 nothing could be read or written, 2 the command line is wrong
int run(int argc, const char *const *argv);

} // namespace orlo::view

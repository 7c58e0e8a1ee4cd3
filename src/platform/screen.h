// screen.h: the screen, which is the standard error stream, and what is on its way to it. Decides nothing of what is shown.
#pragma once

#include <cstddef>

namespace orlo {

/// Shows text. What can't be written is lost.
void put_on_screen(const char *text, std::size_t length);

/// Whether the screen, and what is said on the standard output, is shown or lost; shown at start.
void               show_screen(bool shown);
[[nodiscard]] bool screen_is_shown();

/// From here on text is gathered and goes out in larger pieces; where somebody could see the difference it is shown at once all the
/// same: on a terminal, and where an output of the run goes to the same file. Nothing that is gathered is lost when a signal ends
/// the process, as long as there is a reader, but by SIGKILL.
void gather_screen();

/// From here on text is shown at once, as before gather_screen.
void end_gathering();

/// Shows what is gathered. To be called before anything is written to another stream that may lead to the same file.
void flush_screen();

/// As flush_screen, but waits for nobody: to be called when a signal ends the process.
void flush_screen_in_signal();

} // namespace orlo

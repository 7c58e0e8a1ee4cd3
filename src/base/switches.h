// What the command line switches on for a whole run. Written by the options, read everywhere.
#pragma once

namespace orlo {

extern bool MKMIDI;      // a MIDI file is made instead of a score, false at start
extern bool MKLOG;       // a log receives a copy of the screen, false at start; false again once the driver has closed the log
extern bool SUPRESS;     // warnings and optional notices stay silent, false at start
extern bool MKEXP;       // every line is traced after its expansion, false at start
extern bool SHOW_TEMPOS; // the tempo map and every conversion are shown, false at start

/// Switches everything off.
void reset_switches();

} // namespace orlo

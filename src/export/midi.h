// midi.h: music as a Standard MIDI File of format 1, after "Standard MIDI Files 1.0" (MIDI Manufacturers Association, 1996).
#pragma once

#include "export/grid.h"
#include "export/music.h"

#include <cstdio>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orlo::exporting {

/// How loudness becomes velocity.
struct VelocityRule {
    int  field    = 0;     ///< 4 is p4; 0: the first with amplitudes
    bool decibels = false; ///< its values are decibels already
    int  least    = 40;    ///< velocity of the softest note
    int  greatest = 110;   ///< of the loudest
};

struct MidiOptions {
    MapChoice                   map       = MapChoice::fitting;
    std::uint32_t               map_block = 0;     ///< number of the block, for MapChoice::block
    bool                        by_block  = false; ///< a track for each block, else for each instrument
    bool                        mpe       = false;
    int                         beats     = 4; ///< of a bar
    int                         unit      = 4; ///< of the beats of a bar
    std::optional<VelocityRule> velocity;
    std::map<int, int>          controllers; ///< number of a controller by its p-field
    std::map<std::string, int>  programs;    ///< of instruments, from 1
    std::map<std::string, int>  channels;    ///< of instruments, from 1
};

inline constexpr char NOT_WRITTEN[] = "it could not be written"; // a fault of the stream

/// Writes the file.
/// @param said gets what was decided: sentences without a full stop
/// @return what can't be written, as the end of a sentence; empty when all was
[[nodiscard]] std::string write_midi(const Music &music, const MidiOptions &options, std::vector<std::string> &said,
                                     std::FILE *file);

} // namespace orlo::exporting

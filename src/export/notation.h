// notation.h: music as signs on staves: chords and rests with their written values, tied over bars and beats. Writes nothing.
#pragma once

#include "export/rhythm.h"
#include "export/voices.h"

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace orlo::exporting {

inline constexpr std::int64_t MOST_MEASURES = 10'000;    // of a piece
inline constexpr std::int64_t MOST_BARS     = 200'000;   // measures of all staves
inline constexpr std::int64_t MOST_SIGNS    = 2'000'000; // notes as they are written, tied ones one by one

/// How the notes of a chord are to be played.
enum class Articulation { none, staccato, tenuto };

/// A chord in whole units from the start of the piece.
struct WrittenChord {
    Units                    start;
    Units                    end;
    Articulation             articulation = Articulation::none;
    std::vector<std::size_t> notes; ///< indices into Music::notes
};

struct WrittenVoice {
    std::vector<WrittenChord> chords;  ///< one after the other
    std::vector<Tuplet>       tuplets; ///< from the start of the piece, one after the other
};

struct WrittenStaff {
    std::size_t               part;
    std::size_t               number; ///< among those of its part, from 0
    std::vector<WrittenVoice> voices;
    Articulation              usual = Articulation::none; ///< of chords that are not marked
};

struct Notation {
    Meter                     meter;
    std::int64_t              measures = 0;
    std::vector<WrittenStaff> staves;
    std::string               fault; ///< what can't be written, as the end of a sentence; empty when all can
    std::vector<std::string>  said;
};

[[nodiscard]] Notation notation_of(const Music &music, const Grid &grid, const NotationOptions &options);

// ---- signs

inline constexpr std::size_t MOST_BEAMS = 5; // of a 128th note

/// What a note has to do with its beam.
enum class Beam { none, begin, on, end, forward, backward };

/// A chord or a rest as it is written.
struct Sign {
    Units                        start; ///< from that of the measure
    Units                        length;
    int                          value           = 0; ///< 0 is a 128th note, 5 a quarter, 8 a breve
    int                          dots            = 0;
    int                          actual          = 1; ///< of the tuplet that it is in
    int                          normal          = 1;
    bool                         first_of_tuplet = false;
    bool                         last_of_tuplet  = false;
    bool                         whole_measure   = false;   ///< a rest that fills it
    const WrittenChord          *chord           = nullptr; ///< none: a rest
    bool                         from_tie        = false;   ///< it goes on with the sign before it
    bool                         to_tie          = false;   ///< it goes on with the sign behind it
    std::array<Beam, MOST_BEAMS> beams{};
};

inline constexpr int QUARTER_VALUE = 5;

/// The places of a voice where a measure begins; to be asked for measure after measure.
struct Reading {
    std::size_t chord  = 0;
    std::size_t tuplet = 0;
};

/// The signs of a voice in a measure; they fill it.
[[nodiscard]] std::vector<Sign> signs_of(const WrittenVoice &voice, Meter meter, std::int64_t measure, Reading &at);

/// Whether a voice has a note in the measure that is read next.
[[nodiscard]] bool has_notes(const WrittenVoice &voice, Meter meter, std::int64_t measure, const Reading &at);

} // namespace orlo::exporting

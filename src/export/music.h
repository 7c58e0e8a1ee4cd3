// music.h: a whole piece as notes, whatever it was read from. Plain records; the writers look at it and at nothing else.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace orlo::exporting {

inline constexpr std::int32_t NONE    = -1; // no part, no block, no file
inline constexpr double       NOTHING = std::numeric_limits<double>::quiet_NaN();

/// What a p-field's number is.
enum class Meaning {
    number,
    semitones, ///< pitch, 48 is middle C
    amplitude, ///< linear
};

/// A p-field of a block, from p4 up.
struct Field {
    int         number; ///< 5 is p5
    Meaning     meaning = Meaning::number;
    std::string type; ///< output type by which it is printed: "op"; "re" for one without; empty for a score
};

/// The name that a pitch was written with: "ef4" is e, -1.
struct NoteName {
    char  step  = 0;    ///< a letter from a to g; 0: none is known
    float alter = 0.0F; ///< semitones
};

struct Note {
    double       start;              ///< seconds
    double       duration;           ///< seconds, above 0
    double       beat     = NOTHING; ///< of its block, from beat 0 of the piece; none for a score
    double       beats    = NOTHING; ///< its duration at the tempo there
    double       interval = NOTHING; ///< beats to the next start of its block, as they are written; none for a score
    NoteName     name;
    std::int32_t part  = NONE; ///< index into Music::parts
    std::int32_t block = NONE; ///< index into Music::blocks; none for a score
    std::int32_t file  = NONE; ///< index into Music::files, where it is written
    std::int32_t line  = 0;    ///< in that file, from 1; 0 where it is not known
    std::size_t  first = 0;    ///< of its p-fields from p4 up, in Music::values and Music::printed
    std::int32_t count = 0;    ///< of them
};

/// An instrument.
struct Part {
    std::string  name;   ///< as p1 has it: "1", "flute"
    std::int32_t number; ///< of the instrument; NONE for one with a name
};

struct Block {
    std::uint32_t      number;  ///< among those that were written, from 1
    std::int32_t       part;    ///< index into Music::parts
    double             seconds; ///< of its start
    double             beat;    ///< of its start
    std::size_t        first;   ///< its first note, index into Music::notes
    std::size_t        count;   ///< its notes, in the order of their starts
    std::vector<Field> fields;  ///< by p-field, from p4 up
    std::string        comment; ///< what stands in the piece before it or behind its "{"; empty for nothing
};

struct Music {
    std::string              title;    ///< name of the file, without folders and ending
    std::vector<std::string> files;    ///< that the piece was read from
    std::vector<Part>        parts;    ///< in the order of their first notes
    std::vector<Block>       blocks;   ///< of a piece
    std::vector<Field>       fields;   ///< of a score, by p-field, from p4 up
    std::vector<Note>        notes;    ///< block after block; those of a score in the order of the file
    std::vector<double>      values;   ///< of all notes: numbers before they are printed; NOTHING for none
    std::vector<std::string> printed;  ///< the same as the score has them; empty for one that it leaves out
    std::vector<std::string> troubles; ///< what could not be read: sentences without a full stop
};

/// The p-fields of a note, from p4 up.
[[nodiscard]] const std::vector<Field> &fields_of(const Music &music, const Note &note);

/// The first of some p-fields that means this, by its place among them; NONE where there is none.
[[nodiscard]] int field_with(const std::vector<Field> &fields, Meaning meaning);

/// A p-field of a note by its place among them; NOTHING where it has none.
[[nodiscard]] double value_at(const Music &music, const Note &note, int field);

/// The pitch of a note in semitones, 48 is middle C; NOTHING where it has none.
[[nodiscard]] double pitch_of(const Music &music, const Note &note);

/// The name of a part as people have it: "i1".
[[nodiscard]] std::string name_of(const Part &part);

} // namespace orlo::exporting

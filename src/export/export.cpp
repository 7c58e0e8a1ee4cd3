// The piece is run or read first and written then: nothing is known to be complete before its end, and a file that is read must not
// be written over.

#include "export/export.h"

#include "export/musicxml.h"
#include "export/options.h"
#include "export/read_music.h"
#include "export/tables.h"
#include "gather/run_piece.h"
#include "platform/companion.h"
#include "platform/file_names.h"
#include "platform/say.h"
#include "platform/whole_file.h"
#include "score/files.h"
#include "score/pitch.h"
#include "score/score_reader.h"

#include <cstdio>

namespace orlo::exporting {
namespace {

// name of a file without its folders and its ending
std::string title_of(const std::string &name)
{
    const std::string title = score::title_of(name);
    const std::size_t dot   = title.rfind('.');
    return dot == 0 || dot == std::string::npos ? title : title.substr(0, dot);
}

// the first error of a piece, with its place
std::string first_error(gather::Piece &piece)
{
    for (const gather::Diagnostic &diagnostic : piece.diagnostics) {
        if (diagnostic.severity != Severity::error)
            continue;
        if (diagnostic.place.file == gather::NONE)
            return diagnostic.text;
        const gather::Position at = piece.source.position(diagnostic.place.file, diagnostic.place.begin);
        return piece.source.files()[static_cast<std::size_t>(diagnostic.place.file)].name + ":" + std::to_string(at.line + 1) +
               ":" + std::to_string(at.byte + 1) + ": " + diagnostic.text;
    }
    return "it can't be run";
}

bool would_be_overwritten(const std::string &name) { return complain(name + " would be overwritten: name another file with -o"); }

bool run_piece(const Options &options, const gather::PieceFile &file, Music &music)
{
    gather::Piece piece;
    int           status = 0;
    if (!gather::run_piece(file, false, gather::Detail::events, piece, status))
        return complain_of_memory();
    if (gather::is_input(piece, options.out))
        return would_be_overwritten(options.out);
    if (status != 0)
        return complain("the piece has an error: " + first_error(piece));
    music = music_of(piece);
    return true;
}

bool read_score(const Options &options, const std::string &bytes, const score::Limits &limits, Music &music)
{
    score::Score score;
    score.title = score::title_of(options.in);
    score::read_score(bytes, limits, score);
    if (score::same_file(options.in, options.out))
        return would_be_overwritten(options.out);
    score::recognise_pitch(score);
    music = music_of(score);
    for (const std::string &trouble : music.troubles)
        say(options.in + ": " + trouble);
    return true;
}

// a score is read, all else is run
bool get_music(const Options &options, Music &music)
{
    gather::PieceFile file{options.in};
    const std::string csd = gather::find_piece(file);
    if (!csd.empty())
        return complain(options.in + ": " + csd);
    if (file.score || options.in.ends_with(".orlo"))
        return run_piece(options, file, music);
    const score::Limits limits;
    std::string         bytes;
    const std::string   fault = score::read_file(options.in, limits.bytes, bytes);
    if (!fault.empty())
        return complain("can't read " + options.in + ": " + fault);
    switch (score::kind_of(options.in, bytes)) {
    case score::Kind::orlo:
        if (is_special(options.in))
            return complain(options.in + " is an input of orlo, and can't be read twice");
        return run_piece(options, file, music);
    case score::Kind::score:
        return read_score(options, bytes, limits, music);
    case score::Kind::midi:
        break;
    }
    return complain(options.in + " is a MIDI file already");
}

// what can't be written of it; empty when all was
std::string write(const Music &music, const Options &options, std::vector<std::string> &said, std::FILE *file)
{
    const auto fault = [](bool written) { return written ? "" : NOT_WRITTEN; };
    switch (options.format) {
    case Format::csv:
        return fault(write_csv(music, options.names, file));
    case Format::json:
        return fault(write_json(music, options.names, file));
    case Format::musicxml:
        return write_musicxml(music, options.notation, said, file);
    case Format::midi:
        return write_midi(music, options.midi, said, file);
    case Format::guess:
        break;
    }
    return NOT_WRITTEN;
}

bool do_export(const Options &options)
{
    if (!can_be_written(options.out))
        return false;
    Music music;
    if (!get_music(options, music))
        return false;
    music.title = title_of(options.in);
    if (music.notes.empty())
        return complain(options.in + " has no events");
    WholeOutput out{options.out};
    if (!out.fault.empty())
        return cant_write(options.out, out.fault);
    std::vector<std::string> said;
    const std::string        fault = write(music, options, said, out.file.stream);
    const std::string        lost  = close_whole(out.file, fault.empty());
    if (!fault.empty() && fault != NOT_WRITTEN)
        return complain(options.in + ": " + fault);
    if (!fault.empty() || !lost.empty())
        return cant_write(options.out, lost);
    for (const std::string &sentence : said)
        say(options.out + ": " + sentence);
    return true;
}

int do_task(int argc, const char *const *argv)
{
    Options options;
    switch (read_options(argc, argv, options)) {
    case Task::write:
        return do_export(options) ? SUCCESS : FAILURE;
    case Task::help:
        return print(help_text()) ? SUCCESS : FAILURE;
    case Task::version:
        return print("orlo-export " ORLO_VERSION "\n") ? SUCCESS : FAILURE;
    case Task::refuse:
        break;
    }
    return USAGE;
}

} // namespace

int run(int argc, const char *const *argv) { return run_companion("orlo-export", do_task, argc, argv); }

} // namespace orlo::exporting

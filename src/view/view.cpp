// What can't be read of a score is told, and the rest is drawn: a run fails only when there is nothing to draw.

#include "view/view.h"

#include "base/markup.h"
#include "base/visible_text.h"
#include "platform/companion.h"
#include "platform/run_orlo.h"
#include "platform/terminal.h"
#include "score/build_score.h"
#include "score/files.h"
#include "score/midi_reader.h"
#include "score/pitch.h"
#include "score/score_reader.h"
#include "view/messages.h"
#include "view/options.h"
#include "view/pictures.h"

#include <cstdio>
#include <sys/stat.h>

namespace orlo::view {
namespace {

// name of the file as messages have it
std::string shown_name(const Options &options) { return options.in == "-" ? title_of(options.in) : options.in; }

bool is_regular(const std::string &name)
{
    struct stat about {};
    return stat(name.c_str(), &about) == 0 && S_ISREG(about.st_mode);
}

// a name that orlo takes for no option
std::string name_for_orlo(const std::string &name)
{
    if (name == "-")
        return "/dev/stdin";
    return name.starts_with('-') ? "./" + name : name;
}

// text of the score that orlo makes of the file
bool get_from_orlo(const Options &options, const Limits &limits, std::string &bytes)
{
    std::string       messages;
    const auto        read  = [&](const std::string &file) { return read_file(file, limits.bytes, bytes); };
    const std::string fault = make_score(name_for_orlo(options.in), read, messages);
    if (fault.empty())
        return true;
    pass_on(messages);
    return complain(shown_name(options) + ": " + fault);
}

Input input_of(Kind kind)
{
    switch (kind) {
    case Kind::midi:
        return Input::midi;
    case Kind::orlo:
        return Input::orlo;
    case Kind::score:
        break;
    }
    return Input::score;
}

// the file's bytes and what kind of file they are; an input of orlo becomes a score
bool get_bytes(const Options &options, const Limits &limits, std::string &bytes, Input &kind)
{
    kind = options.input;
    if (kind == Input::orlo)
        return get_from_orlo(options, limits, bytes);
    const std::string fault = read_file(options.in, limits.bytes, bytes);
    if (!fault.empty())
        return complain("can't read " + shown_name(options) + ": " + fault);
    if (kind == Input::guess)
        kind = input_of(kind_of(options.in, bytes));
    if (kind == Input::midi && !is_midi(bytes))
        return complain(shown_name(options) + " is no MIDI file");
    if (kind != Input::orlo)
        return true;
    if (!is_regular(options.in))
        return complain(shown_name(options) + " is an input of orlo, and can't be read twice: use -i orlo");
    bytes.clear();
    return get_from_orlo(options, limits, bytes);
}

void set_pitch(const Options &options, Score &score)
{
    if (options.pitch_given) {
        score.pitch_field = options.pitch_field;
        score.pitch       = options.pitch;
    } else if (score.pitch == Pitch::none) {
        recognise_pitch(score);
    }
    if (static_cast<std::size_t>(score.pitch_field) <= score.field_names.size() || score.events.empty())
        return;
    add_trouble(score, 0, "no event has " + field_name(score.pitch_field) + ": there is no pitch");
    score.pitch_field = 0;
    score.pitch       = Pitch::none;
}

void report(const Options &options, bool from_orlo, const Score &score)
{
    const std::string name = shown_name(options) + (from_orlo ? " (its score)" : "");
    for (const Trouble &trouble : score.troubles) {
        std::string place = name;
        if (trouble.line > 0)
            place += joined({":", std::to_string(trouble.line)});
        tell(joined({place, ": ", trouble.text}));
    }
}

bool get_score(const Options &options, Score &score)
{
    const Limits limits;
    std::string  bytes;
    Input        kind = Input::guess;
    if (!get_bytes(options, limits, bytes, kind))
        return false;
    score.title = title_of(options.in);
    bool good   = true;
    if (kind == Input::midi)
        good = read_midi(bytes, limits, score);
    else
        read_score(bytes, limits, score);
    set_pitch(options, score);
    report(options, kind == Input::orlo, score);
    if (good && (!score.events.empty() || score.troubles.empty()))
        return true;
    return complain("nothing can be drawn of " + shown_name(options));
}

Picture picture_of(const Options &options)
{
    if (options.picture != Picture::guess)
        return options.picture;
    if (options.out.ends_with(".svg"))
        return Picture::svg;
    return options.out.ends_with(".txt") ? Picture::txt : Picture::html;
}

// where the picture goes: a page has a file of its own even where none is named
std::string target_of(const Options &options, Picture picture)
{
    if (!options.out.empty())
        return options.out;
    if (options.in == "-" || picture != Picture::html)
        return "-";
    const std::string title = title_of(options.in);
    const std::size_t dot   = title.find_last_of('.');
    return (dot == std::string::npos || dot == 0 ? title : title.substr(0, dot)) + ".html";
}

std::string draw(const Score &score, const Options &options, Picture picture)
{
    if (picture == Picture::svg)
        return svg_picture(score);
    return picture == Picture::txt ? text_roll(score, columns_of(options), options.rows) : html_page(score);
}

bool view(const Options &options)
{
    const Picture     picture = picture_of(options);
    const std::string target  = target_of(options, picture);
    if (same_file(options.in, target))
        return complain((target == "-" ? shown_name(options) : target) + " would be overwritten: name another file with -o");
    Score score;
    if (!get_score(options, score))
        return false;
    std::string text = draw(score, options, picture);
    if (target == "-" && is_terminal(stdout))
        text = visible_text(text, "\n\t");
    const std::string fault = write_file(target, text);
    if (!fault.empty())
        return complain("can't write " + (target == "-" ? "the standard output" : target) + ": " + fault);
    if (options.out.empty() && target != "-")
        tell("orlo-view: written to " + target);
    return true;
}

int do_task(int argc, const char *const *argv)
{
    Options options;
    switch (read_options(argc, argv, options)) {
    case Command::view:
        return view(options) ? SUCCESS : FAILURE;
    case Command::help:
        return print(help_text()) ? SUCCESS : FAILURE;
    case Command::version:
        return print("orlo-view " ORLO_VERSION "\n") ? SUCCESS : FAILURE;
    case Command::refuse:
        break;
    }
    return USAGE;
}

} // namespace

int run(int argc, const char *const *argv) { return run_companion("orlo-view", do_task, argc, argv); }

} // namespace orlo::view

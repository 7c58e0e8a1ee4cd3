// An option's value follows it in the same argument or is the next argument, as POSIX has it; after "--" are no options.

#include "explain/options.h"

#include "platform/say.h"

#include <string_view>

namespace orlo::explain {
namespace {

constexpr char help[] = "Usage: orlo-explain [options] PIECE\n"
                        "Runs a piece as orlo does and says where every note of it comes from. PIECE is\n"
                        "an input of orlo, or a Csound document whose score is one.\n"
                        "\n"
                        "  --format=json a document with all there is to know (without an option, too)\n"
                        "  --format=gcc  what is wrong, a line each: FILE:LINE:COLUMN: error: TEXT\n"
                        "  -h, --help    show this text\n"
                        "  --hints       what may not be meant, why, and how to mend it\n"
                        "  --list-hints  show the names of all hints\n"
                        "  -m            run it as orlo -m does: the first block, for a MIDI file\n"
                        "  --no-events   leave out single values and events\n"
                        "  -o FILE       write to FILE instead of the standard output\n"
                        "  -V, --version show the version\n";

constexpr std::string_view FORMAT = "--format=";

Task refuse(const std::string &text)
{
    say("orlo-explain: " + text);
    say("Try 'orlo-explain --help'.");
    return Task::refuse;
}

// format -> "json" | "gcc"
Task take_format(std::string_view name, Options &options)
{
    if (name != "json" && name != "gcc")
        return refuse("--format is json or gcc, not '" + std::string{name} + "'");
    options.format = name == "gcc" ? Format::gcc : Format::json;
    return Task::explain;
}

Task take_out(std::string_view rest, int argc, const char *const *argv, int &next, Options &options)
{
    if (rest.empty() && next == argc)
        return refuse("-o needs a name");
    options.out = rest.empty() ? argv[next++] : std::string{rest};
    return options.out.empty() ? refuse("-o needs a name") : Task::explain;
}

Task take_piece(std::string_view name, Options &options)
{
    if (!options.piece.empty())
        return refuse("one PIECE at a time: '" + options.piece + "', '" + std::string{name} + "'");
    options.piece = name;
    return name.empty() ? refuse("the name of PIECE is empty") : Task::explain;
}

// option -> "-" letter [ value ] | "--" name
Task take_option(std::string_view option, int argc, const char *const *argv, int &next, Options &options)
{
    if (option == "-h" || option == "--help")
        return Task::help;
    if (option == "-V" || option == "--version")
        return Task::version;
    if (option == "--list-hints")
        return Task::list_hints;
    if (option == "--hints") {
        options.format = Format::hints;
        return Task::explain;
    }
    if (option == "-m") {
        options.midi = true;
        return Task::explain;
    }
    if (option == "--no-events") {
        options.events = false;
        return Task::explain;
    }
    if (option.starts_with(FORMAT))
        return take_format(option.substr(FORMAT.size()), options);
    if (option[1] == 'o')
        return take_out(option.substr(2), argc, argv, next, options);
    return refuse("no option '" + std::string{option} + "'");
}

} // namespace

Task read_options(int argc, const char *const *argv, Options &options)
{
    bool names_only = false;
    for (int next = 1; next < argc;) { // each round takes an argument
        const std::string_view argument = argv[next++];
        const bool             option   = !names_only && argument.size() > 1 && argument[0] == '-';
        if (option && argument == "--") {
            names_only = true;
            continue;
        }
        const Task task = option ? take_option(argument, argc, argv, next, options) : take_piece(argument, options);
        if (task != Task::explain)
            return task;
    }
    return options.piece.empty() ? refuse("no PIECE") : Task::explain;
}

const char *help_text() { return help; }

} // namespace orlo::explain

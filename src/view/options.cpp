// An option's value follows it in the same argument or is the next argument, as POSIX has it; after "--" are no options.

#include "view/options.h"

#include "score/pitch.h"
#include "view/messages.h"

#include <charconv>
#include <cstdlib>
#include <string_view>

namespace orlo::view {
namespace {

constexpr int USUAL_COLUMNS = 80;

template <class Value> struct Choice {
    const char *name;
    Value       value;
};
constexpr Choice<Input>   inputs[]   = {{"score", Input::score}, {"midi", Input::midi}, {"orlo", Input::orlo}};
constexpr Choice<Picture> pictures[] = {{"html", Picture::html}, {"svg", Picture::svg}, {"txt", Picture::txt}};

constexpr char help[] = "Usage: orlo-view [options] SCORE\n"
                        "Draws a Csound score, a MIDI file or an input of orlo. SCORE \"-\" is the standard input.\n"
                        "\n"
                        "  -f FORMAT     html (a page), svg (a drawing) or txt (for the terminal);\n"
                        "                without it the ending of -o decides, else html\n"
                        "  -h, --help    show this text\n"
                        "  -i KIND       SCORE is a score, midi or orlo; without it name and contents decide\n"
                        "  -o FILE       write to FILE, \"-\" is the standard output; without it a page is\n"
                        "                written to SCORE's name with .html, all else to the standard output\n"
                        "  -p N:KIND     the pitch is in p-field N as pch, oct, hz or key; -p none: there is none\n"
                        "  -r ROWS       height of a roll for the terminal, 5 to 500 (24)\n"
                        "  -w COLUMNS    its width, 40 to 1000 (as the environment's COLUMNS says, else 80)\n"
                        "  -V, --version show the version\n";

bool refuse(const std::string &text)
{
    tell("orlo-view: " + text);
    tell("Try 'orlo-view --help'.");
    return false;
}

// a whole number within limits, and nothing else
bool read_number(std::string_view text, int least, int most, int &number)
{
    const char *end          = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc{} && stop == end && number >= least && number <= most;
}

template <class Value, std::size_t count> bool choose(const Choice<Value> (&choices)[count], std::string_view name, Value &value)
{
    for (const Choice<Value> &choice : choices)
        if (name == choice.name) {
            value = choice.value;
            return true;
        }
    return false;
}

// pitch -> "none" | number ":" kind
bool read_pitch(std::string_view text, Options &options)
{
    options.pitch_given = true;
    options.pitch_field = 0;
    options.pitch       = Pitch::none;
    if (text == "none")
        return true;
    const std::size_t colon = text.find(':');
    return colon != std::string_view::npos && read_number(text.substr(0, colon), 4, MAX_FIELDS, options.pitch_field) &&
           find_pitch(text.substr(colon + 1), options.pitch) && options.pitch != Pitch::none;
}

std::string range(const char *what, int least, int most)
{
    return std::string{what} + " is from " + std::to_string(least) + " to " + std::to_string(most);
}

bool take_value(char letter, const std::string &value, Options &options)
{
    switch (letter) {
    case 'f':
        return choose(pictures, value, options.picture) || refuse("-f is html, svg or txt, not '" + value + "'");
    case 'i':
        return choose(inputs, value, options.input) || refuse("-i is score, midi or orlo, not '" + value + "'");
    case 'o':
        options.out = value;
        return !value.empty() || refuse("-o needs a name");
    case 'p':
        return read_pitch(value, options) || refuse("-p is none, or " + range("N:KIND where N", 4, MAX_FIELDS) +
                                                    " and KIND is pch, oct, hz or key, not '" + value + "'");
    case 'r':
        return read_number(value, LEAST_ROWS, MOST_ROWS, options.rows) || refuse(range("-r", LEAST_ROWS, MOST_ROWS));
    default: // 'w'
        return read_number(value, LEAST_COLUMNS, MOST_COLUMNS, options.columns) || refuse(range("-w", LEAST_COLUMNS, MOST_COLUMNS));
    }
}

bool take_name(const std::string &name, Options &options)
{
    if (!options.in.empty())
        return refuse("one SCORE at a time: '" + options.in + "', '" + name + "'");
    options.in = name;
    return !name.empty() || refuse("the name of SCORE is empty");
}

// option -> "-" letter [ value ]
bool take_option(std::string_view option, int argc, const char *const *argv, int &next, Options &options)
{
    const char letter = option[1];
    if (std::string_view{"fioprw"}.find(letter) == std::string_view::npos)
        return refuse("no option '" + std::string{option} + "'");
    if (option.size() > 2)
        return take_value(letter, std::string{option.substr(2)}, options);
    if (next == argc)
        return refuse(std::string{"-"} + letter + " needs a value");
    return take_value(letter, argv[next++], options);
}

} // namespace

Command read_options(int argc, const char *const *argv, Options &options)
{
    bool names_only = false;
    for (int next = 1; next < argc;) { // each round takes an argument
        const std::string_view argument = argv[next++];
        if (!names_only && (argument == "-h" || argument == "--help"))
            return Command::help;
        if (!names_only && (argument == "-V" || argument == "--version"))
            return Command::version;
        if (!names_only && argument == "--")
            names_only = true;
        else if (names_only || argument.size() < 2 || argument[0] != '-') {
            if (!take_name(std::string{argument}, options))
                return Command::refuse;
        } else if (!take_option(argument, argc, argv, next, options))
            return Command::refuse;
    }
    if (options.in.empty()) {
        refuse("no SCORE");
        return Command::refuse;
    }
    return Command::view;
}

const char *help_text() { return help; }

int columns_of(const Options &options)
{
    if (options.columns > 0)
        return options.columns;
    const char *environment = std::getenv("COLUMNS");
    int         columns     = 0;
    return environment != nullptr && read_number(environment, LEAST_COLUMNS, MOST_COLUMNS, columns) ? columns : USUAL_COLUMNS;
}

} // namespace orlo::view

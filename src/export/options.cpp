// An option's value follows it in the same argument or is the next argument, as POSIX has it; after "--" are no options.

#include "export/options.h"

#include "export/channels.h"
#include "platform/say.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace orlo::exporting {
namespace {

constexpr int FIRST_FIELD     = 4; // that can have a name or become something
constexpr int LAST_FIELD      = 999;
constexpr int MOST_CONTROLLER = 127;
constexpr int MOST_PROGRAM    = 128;
constexpr int MOST_BEATS      = 64; // of a bar
constexpr int MOST_UNIT       = 64;

constexpr char help[] = "Usage: orlo-export [options] PIECE -o OUT\n"
                        "Writes a whole piece for other programs. PIECE is an input of orlo, a Csound\n"
                        "document whose score is one, or a Csound score.\n"
                        "\n"
                        "  -f FORMAT     mid (a MIDI file), musicxml (notation), csv (a table) or json; without\n"
                        "                it the ending of OUT decides\n"
                        "  -h, --help    show this text\n"
                        "  -o OUT        write to OUT, \"-\" is the standard output\n"
                        "  -V, --version show the version\n"
                        "\n"
                        "For csv and json:\n"
                        "  --names P=NAME,...       what p-fields are called: p6=pan\n"
                        "\n"
                        "For mid and musicxml:\n"
                        "  --map block N|none       the beats are those of block N, or seconds; without it\n"
                        "                           those of the block that most notes fit\n"
                        "  --meter 3/4              the bars\n"
                        "\n"
                        "For musicxml:\n"
                        "  --grid N                 notes without a rhythm go to the nearest Nth: 16\n"
                        "  --map own                each block has its own beats, whatever their seconds\n"
                        "  --sounding               notes are written as long as they sound, not to the next one\n"
                        "\n"
                        "For mid:\n"
                        "  --by block               a track for each block, not for each instrument\n"
                        "  --channel I=N,...        the MIDI channel of an instrument: 2=10\n"
                        "  --controller P=N,...     a p-field as a controller: p6=10\n"
                        "  --mpe                    a channel for each note, as MPE has it\n"
                        "  --program I=N,...        the MIDI program of an instrument: 1=41\n"
                        "  --velocity P[:db][:A..B] loudness is in a p-field, as an amplitude or in decibels, and\n"
                        "                           becomes velocities from A to B: p4:db:50..90\n";

Task refuse(const std::string &text)
{
    say("orlo-export: " + text);
    say("Try 'orlo-export --help'.");
    return Task::refuse;
}

struct Ending {
    const char *name;
    Format      format;
};
constexpr Ending endings[] = {{"csv", Format::csv},   {"json", Format::json},         {"mid", Format::midi},
                              {"midi", Format::midi}, {"musicxml", Format::musicxml}, {"xml", Format::musicxml}};

bool find_format(std::string_view name, Format &format)
{
    for (const Ending &ending : endings)
        if (name == ending.name) {
            format = ending.format;
            return true;
        }
    return false;
}

// a whole number within limits, and nothing else
bool read_number(std::string_view text, int least, int most, int &number)
{
    const char *end          = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc{} && stop == end && number >= least && number <= most;
}

// p-field -> "p" number
bool read_field(std::string_view text, int &field)
{
    return text.starts_with('p') && read_number(text.substr(1), FIRST_FIELD, LAST_FIELD, field);
}

// what stands before a mark; the text goes on behind it
std::string_view take_to(std::string_view &text, char mark)
{
    const std::size_t      end   = std::min(text.find(mark), text.size());
    const std::string_view taken = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return taken;
}

// pairs -> key "=" value { "," key "=" value }
template <class Take> bool take_pairs(std::string_view text, Take take)
{
    do { // each round takes a pair
        std::string_view       value = take_to(text, ',');
        const std::string_view key   = take_to(value, '=');
        if (key.empty() || value.empty() || !take(key, value))
            return false;
    } while (!text.empty());
    return true;
}

// ---- options, by their names

Task take_names(std::string_view text, Options &options)
{
    const auto take = [&options](std::string_view key, std::string_view value) {
        int        field     = 0;
        const bool good      = read_field(key, field);
        options.names[field] = value;
        return good;
    };
    return take_pairs(text, take) ? Task::write
                                  : refuse("--names is a list like p6=pan,p7=depth, from p4 on, not '" + std::string{text} + "'");
}

Task take_controllers(std::string_view text, Options &options)
{
    const auto take = [&options](std::string_view key, std::string_view value) {
        int field  = 0;
        int number = 0;
        if (!read_field(key, field) || !read_number(value, 0, MOST_CONTROLLER, number))
            return false;
        options.midi.controllers[field] = number;
        return true;
    };
    return take_pairs(text, take)
               ? Task::write
               : refuse("--controller is a list like p6=10, controllers 0 to 127, not '" + std::string{text} + "'");
}

bool take_instruments(std::string_view text, int most, std::map<std::string, int> &numbers)
{
    return take_pairs(text, [&numbers, most](std::string_view key, std::string_view value) {
        int number = 0;
        if (!read_number(value, 1, most, number))
            return false;
        numbers[std::string{key}] = number;
        return true;
    });
}

Task take_programs(std::string_view text, Options &options)
{
    return take_instruments(text, MOST_PROGRAM, options.midi.programs)
               ? Task::write
               : refuse("--program is a list like 1=41, programs 1 to 128, not '" + std::string{text} + "'");
}

Task take_channels(std::string_view text, Options &options)
{
    return take_instruments(text, CHANNELS, options.midi.channels)
               ? Task::write
               : refuse("--channel is a list like 2=10, channels 1 to 16, not '" + std::string{text} + "'");
}

// meter -> number "/" power of 2
Task take_meter(std::string_view text, Options &options)
{
    std::string_view       unit  = text;
    const std::string_view beats = take_to(unit, '/');
    const bool good = read_number(beats, 1, MOST_BEATS, options.midi.beats) && read_number(unit, 1, MOST_UNIT, options.midi.unit) &&
                      (options.midi.unit & (options.midi.unit - 1)) == 0;
    return good ? Task::write : refuse("--meter is like 3/4 or 7/8, not '" + std::string{text} + "'");
}

// velocity -> p-field [ ":db" ] [ ":" number ".." number ]
Task take_velocity(std::string_view text, Options &options)
{
    const std::string given{text};
    VelocityRule      rule;
    bool              good = read_field(take_to(text, ':'), rule.field);
    if (text == "db" || text.starts_with("db:")) {
        rule.decibels = true;
        take_to(text, ':');
    }
    if (!text.empty()) {
        const std::size_t dots = text.find("..");
        good = good && dots != std::string_view::npos && read_number(text.substr(0, dots), 1, MOST_CONTROLLER, rule.least) &&
               read_number(text.substr(dots + 2), rule.least, MOST_CONTROLLER, rule.greatest);
    }
    options.midi.velocity = rule;
    return good ? Task::write : refuse("--velocity is like p4, p4:db or p4:db:50..90, not '" + given + "'");
}

Task take_by(std::string_view text, Options &options)
{
    options.midi.by_block = true;
    return text == "block" ? Task::write : refuse("--by is block, not '" + std::string{text} + "'");
}

// grid -> a note value, that of a triplet included
Task take_grid(std::string_view text, Options &options)
{
    int number = 0;
    for (const int value : {4, 8, 12, 16, 24, 32, 48, 64})
        if (read_number(text, value, value, number)) {
            options.notation.grid = number;
            return Task::write;
        }
    return refuse("--grid is 4, 8, 16, 32 or 64, or 12, 24 or 48 for triplets, not '" + std::string{text} + "'");
}

// the arguments that are left to read
struct Arguments {
    int                count;
    const char *const *words;
    int                next = 1;
};

// value -> what stands behind the option's letter or "=", or the next argument
bool take_value(std::string_view rest, Arguments &arguments, std::string &value)
{
    if (rest.empty() && arguments.next == arguments.count)
        return false;
    value = rest.empty() ? arguments.words[arguments.next++] : std::string{rest};
    return !value.empty();
}

// map -> "none" | "block" number
Task take_map(std::string_view rest, Arguments &arguments, Options &options)
{
    std::string value;
    int         number = 0;
    if (!take_value(rest, arguments, value))
        return refuse("--map needs 'block N', 'none' or 'own'");
    options.notation.own_beats = value == "own";
    if (value == "own")
        return Task::write;
    options.midi.map = value == "none" ? MapChoice::none : MapChoice::block;
    if (value == "none")
        return Task::write;
    const bool good        = value == "block" && take_value({}, arguments, value) && read_number(value, 1, INT32_MAX, number);
    options.midi.map_block = static_cast<std::uint32_t>(number);
    return good ? Task::write : refuse("--map is 'block N', 'none' or 'own', not '" + value + "'");
}

struct LongOption {
    std::string_view name;
    Task (*take)(std::string_view value, Options &options);
};

constexpr LongOption long_options[] = {
    {"--by", take_by},       {"--channel", take_channels}, {"--controller", take_controllers}, {"--grid", take_grid},
    {"--meter", take_meter}, {"--names", take_names},      {"--program", take_programs},       {"--velocity", take_velocity},
};

Task take_long_option(std::string_view option, Arguments &arguments, Options &options)
{
    std::string_view       rest = option;
    const std::string_view name = take_to(rest, '=');
    if (name == "--mpe" && rest.empty()) {
        options.midi.mpe = true;
        return Task::write;
    }
    if (name == "--sounding" && rest.empty()) {
        options.notation.sounding = true;
        return Task::write;
    }
    if (name == "--map")
        return take_map(rest, arguments, options);
    for (const LongOption &each : long_options) {
        std::string value;
        if (name != each.name)
            continue;
        return take_value(rest, arguments, value) ? each.take(value, options) : refuse(std::string{name} + " needs a value");
    }
    return refuse("no option '" + std::string{option} + "'");
}

Task take_option(std::string_view option, Arguments &arguments, Options &options)
{
    std::string value;
    if (option == "-h" || option == "--help")
        return Task::help;
    if (option == "-V" || option == "--version")
        return Task::version;
    if (option.starts_with("--"))
        return take_long_option(option, arguments, options);
    if (option.starts_with("-o"))
        return take_value(option.substr(2), arguments, options.out) ? Task::write : refuse("-o needs a name");
    if (option.starts_with("-f")) {
        if (!take_value(option.substr(2), arguments, value))
            return refuse("-f needs a format");
        return find_format(value, options.format) ? Task::write : refuse("-f is mid, musicxml, csv or json, not '" + value + "'");
    }
    return refuse("no option '" + std::string{option} + "'");
}

Task take_piece(std::string_view name, Options &options)
{
    if (!options.in.empty())
        return refuse("one PIECE at a time: '" + options.in + "', '" + std::string{name} + "'");
    options.in = name;
    return name.empty() ? refuse("the name of PIECE is empty") : Task::write;
}

Task check(Options &options)
{
    if (options.in.empty())
        return refuse("no PIECE");
    if (options.out.empty())
        return refuse("no OUT: name a file with -o");
    options.notation.map          = {options.midi.map, options.midi.map_block};
    options.notation.meter        = {options.midi.beats, options.midi.unit};
    const std::string_view ending = std::string_view{options.out}.substr(options.out.rfind('.') + 1); // all of it without a point
    if (options.format == Format::guess && !find_format(ending, options.format))
        return refuse("what is to be written? OUT ends with .mid, .musicxml, .csv or .json, or -f says it");
    if (options.notation.own_beats && options.format == Format::midi)
        return refuse("--map own is for musicxml, not for mid");
    return Task::write;
}

} // namespace

Task read_options(int argc, const char *const *argv, Options &options)
{
    Arguments arguments{argc, argv};
    bool      names_only = false;
    while (arguments.next < argc) { // each round takes an argument
        const std::string_view argument = argv[arguments.next++];
        const bool             option   = !names_only && argument.size() > 1 && argument[0] == '-';
        if (option && argument == "--") {
            names_only = true;
            continue;
        }
        const Task task = option ? take_option(argument, arguments, options) : take_piece(argument, options);
        if (task != Task::write)
            return task;
    }
    return check(options);
}

const char *help_text() { return help; }

} // namespace orlo::exporting

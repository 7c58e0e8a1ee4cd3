// An option's value follows it in the same argument or is the next argument, as POSIX has it; after "--" are no options.

#include "export/options.h"

#include "platform/say.h"

#include <charconv>
#include <string_view>

namespace orlo::exporting {
namespace {

constexpr int FIRST_FIELD = 4; // that can have a name
constexpr int LAST_FIELD  = 999;

constexpr char help[] = "Usage: orlo-export [options] PIECE -o OUT\n"
                        "Writes a whole piece for other programs. PIECE is an input of orlo, a Csound\n"
                        "document whose score is one, or a Csound score.\n"
                        "\n"
                        "  -f FORMAT     csv (a table) or json; without it the ending of OUT decides\n"
                        "  -h, --help    show this text\n"
                        "  --names P=NAME,...  what p-fields are called: p6=pan\n"
                        "  -o OUT        write to OUT, \"-\" is the standard output\n"
                        "  -V, --version show the version\n";

struct Ending {
    const char *name;
    Format      format;
};
constexpr Ending endings[] = {{"csv", Format::csv}, {"json", Format::json}};

Task refuse(const std::string &text)
{
    say("orlo-export: " + text);
    say("Try 'orlo-export --help'.");
    return Task::refuse;
}

bool find_format(std::string_view name, Format &format)
{
    for (const Ending &ending : endings)
        if (name == ending.name) {
            format = ending.format;
            return true;
        }
    return false;
}

// name -> "p" number "=" text
bool take_name(std::string_view text, Options &options)
{
    int               number = 0;
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos || text.front() != 'p' || equals + 1 == text.size())
        return false;
    const auto [end, error] = std::from_chars(text.data() + 1, text.data() + equals, number);
    if (error != std::errc{} || end != text.data() + equals || number < FIRST_FIELD || number > LAST_FIELD)
        return false;
    options.names[number] = text.substr(equals + 1);
    return true;
}

// names -> name { "," name }
Task take_names(std::string_view text, Options &options)
{
    while (!text.empty()) { // each round takes a name
        const std::size_t end = std::min(text.find(','), text.size());
        if (!take_name(text.substr(0, end), options))
            return refuse("--names is a list like p6=pan,p7=depth, from p4 on, not '" + std::string{text} + "'");
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return Task::write;
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

Task take_option(std::string_view option, Arguments &arguments, Options &options)
{
    constexpr std::string_view NAMES = "--names";
    std::string                value;
    if (option == "-h" || option == "--help")
        return Task::help;
    if (option == "-V" || option == "--version")
        return Task::version;
    if (option == NAMES || option.starts_with("--names=")) {
        if (!take_value(option.substr(std::min(NAMES.size() + 1, option.size())), arguments, value))
            return refuse("--names needs a list like p6=pan");
        return take_names(value, options);
    }
    if (option.starts_with("-o"))
        return take_value(option.substr(2), arguments, options.out) ? Task::write : refuse("-o needs a name");
    if (option.starts_with("-f")) {
        if (!take_value(option.substr(2), arguments, value))
            return refuse("-f needs a format");
        return find_format(value, options.format) ? Task::write : refuse("-f is csv or json, not '" + value + "'");
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
    const std::size_t dot = options.out.rfind('.');
    if (options.format != Format::guess ||
        (dot != std::string::npos && find_format(std::string_view{options.out}.substr(dot + 1), options.format)))
        return Task::write;
    return refuse("what is to be written? OUT ends with .csv or .json, or -f says it");
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

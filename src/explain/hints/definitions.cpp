// What a definition is used for is read off the text, where parts that were never run count as well: a name is used when it stands
// in a text that belongs to no definition, or in the definition of a name that is used.

#include "explain/hints/hints.h"
#include "input/comment_flags.h"
#include "input/directives.h"
#include "input/line_reader.h"
#include "input/names.h"

#include <algorithm>
#include <map>

namespace orlo::explain {
namespace {

constexpr std::size_t MOST_RENAMED = 20; // macros whose parameters are given new names
constexpr std::size_t MOST_SHOWN   = 60; // bytes of a body

// names

using Names = std::map<std::string, std::size_t, std::less<>>; // nodes by name

struct Name {
    std::vector<std::size_t> needs; // names in its definitions
    bool                     used = false;
};

struct Extent {
    std::uint64_t begin; // bytes of the piece
    std::uint64_t end;
    std::size_t   name;
};

// the names of macros and of constants, what their definitions are, and what these need
struct Usage {
    Names               macros;
    Names               constants;
    std::vector<Name>   names;
    std::vector<Extent> extents; // in the order of the text
};

std::size_t node_of(Usage &usage, Names &names, std::string_view name)
{
    const auto found = names.find(name);
    if (found != names.end())
        return found->second;
    usage.names.emplace_back();
    names.emplace(name, usage.names.size() - 1);
    return usage.names.size() - 1;
}

// a constant's definition from its "#" to the end of its value; no place where it is no such line
Place definition_of(const Finder &finder, const Constant &constant)
{
    const Place value = outermost(finder, constant.place);
    if (value.file != 0)
        return {};
    const std::string_view before_it = text_before(finder, value);
    const std::size_t      mark      = before_it.find('#');
    if (mark == std::string_view::npos)
        return {};
    return {value.file, value.begin - (before_it.size() - mark), value.end, NONE};
}

void add_definitions(const Finder &finder, Usage &usage)
{
    for (const Macro &macro : finder.piece.macros)
        if (is_plain(macro.place) && macro.place.file == 0)
            usage.extents.push_back({macro.place.begin, macro.place.end, node_of(usage, usage.macros, macro.name)});
    for (const Constant &constant : finder.piece.constants)
        if (const Place place = definition_of(finder, constant); place.file == 0)
            usage.extents.push_back({place.begin, place.end, node_of(usage, usage.constants, constant.name)});
    const auto earlier = [](const Extent &a, const Extent &b) { return a.begin < b.begin; };
    std::sort(usage.extents.begin(), usage.extents.end(), earlier);
}

// a name that stands in a file
void add_use(Usage &usage, const Names &names, std::string_view name, std::int32_t file, std::uint64_t at)
{
    const auto found = names.find(name);
    if (found == names.end())
        return;
    const auto behind =
        std::partition_point(usage.extents.begin(), usage.extents.end(), [at](const Extent &extent) { return extent.begin <= at; });
    if (file == 0 && behind != usage.extents.begin() && at < (behind - 1)->end)
        usage.names[(behind - 1)->name].needs.push_back(found->second);
    else
        usage.names[found->second].used = true;
}

std::string_view name_at(std::string_view text, std::size_t at)
{
    if (at >= text.size() || !is_letter(text[at]))
        return {};
    return text.substr(
        at, static_cast<std::size_t>(std::find_if_not(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(), is_name_char) -
                                     (text.begin() + static_cast<std::ptrdiff_t>(at))));
}

// the constants of an equation
void add_equation(Usage &usage, const File &of, std::int32_t file, std::size_t at)
{
    const std::string_view text{of.text};
    for (; at < text.size() && text[at] != ']' && text[at] != '\n'; ++at) { // each name once
        const std::string_view name = name_at(text, at);
        if (name.empty())
            continue;
        add_use(usage, usage.constants, name, file, of.skipped + at);
        at += name.size() - 1;
    }
}

void add_uses(Usage &usage, const File &of, std::int32_t file)
{
    const std::string_view text{of.text};
    PassComments           flags{false, false};
    for (std::size_t at = 0; at < text.size(); ++at) { // each character once, those of equations twice
        const char          c    = text[at];
        const char          next = at + 1 < text.size() ? text[at + 1] : '\n';
        const std::uint64_t byte = of.skipped + at;
        if (c == '\n')
            flags.comment = flags.block;
        else if (!flags.comment && c == '$')
            add_use(usage, usage.macros, name_at(text, at + 1), file, byte);
        else if (!flags.comment && c == '~' && next == '[')
            add_equation(usage, of, file, at + 2);
        else if (!flags.comment && c == '~')
            add_use(usage, usage.constants, name_at(text, at + 1), file, byte);
        follow_comment(flags, c, next);
    }
}

// what was called is used, whatever the text is
void add_calls(const Finder &finder, Usage &usage)
{
    for (const Call &call : finder.piece.source.calls())
        if (call.kind == CallKind::macro && usage.macros.find(call.name) != usage.macros.end())
            usage.names[usage.macros.find(call.name)->second].used = true;
}

void follow_needs(Usage &usage)
{
    std::vector<std::size_t> open;
    for (std::size_t i = 0; i < usage.names.size(); ++i)
        if (usage.names[i].used)
            open.push_back(i);
    while (!open.empty()) { // each name once
        const std::size_t name = open.back();
        open.pop_back();
        for (const std::size_t needed : usage.names[name].needs)
            if (!usage.names[needed].used) {
                usage.names[needed].used = true;
                open.push_back(needed);
            }
    }
}

void add_unused_macros(Finder &finder, const Usage &usage)
{
    for (const Macro &macro : finder.piece.macros) {
        if (!is_plain(macro.place) || macro.place.file != 0 || usage.names[usage.macros.find(macro.name)->second].used)
            continue;
        add(finder, {HintKind::unused_macro, "macro " + macro.name + " is never called",
                     "nothing that is used calls $" + macro.name + "; its body has " + counted(macro.body.size(), "character"),
                     macro.name_place, NONE, macro.undefined.file == NONE ? take_out(finder, macro.place) : std::vector<Edit>{}});
    }
}

void add_unused_constants(Finder &finder, const Usage &usage)
{
    for (const Constant &constant : finder.piece.constants) {
        const Place place = definition_of(finder, constant);
        if (place.file != 0 || usage.names[usage.constants.find(constant.name)->second].used)
            continue;
        const std::size_t name = text_at(finder, place).find(constant.name, CONST_WORD.size() + 1);
        Place             word{place.file, place.begin + name, place.begin + name + constant.name.size(), NONE};
        if (name == std::string_view::npos)
            word = place;
        add(finder, {HintKind::unused_constant, "constant " + constant.name + " is never used",
                     "nothing that is used needs ~" + constant.name + "; its value is " + decimal_text(constant.value, 6), word,
                     NONE, take_out(finder, place)});
    }
}

// In a file of definitions alone, nothing is used; what a file that is missing uses is not known.
bool can_tell(const Finder &finder)
{
    const std::vector<File> &files = finder.piece.source.files();
    return !finder.piece.blocks.empty() && std::all_of(files.begin(), files.end(), [](const File &file) { return file.found; });
}

void look_at_names(Finder &finder)
{
    if (!can_tell(finder))
        return;
    Usage usage;
    add_definitions(finder, usage);
    if (usage.names.empty())
        return;
    const std::vector<File> &files = finder.piece.source.files();
    for (std::size_t i = 0; i < files.size(); ++i)
        add_uses(usage, files[i], static_cast<std::int32_t>(i));
    add_calls(finder, usage);
    follow_needs(usage);
    add_unused_macros(finder, usage);
    add_unused_constants(finder, usage);
}

// parameters

// where a name stands in a text from a place on, as a whole word
std::size_t find_word(std::string_view text, std::string_view word, std::size_t from)
{
    for (std::size_t at = text.find(word, from); at != std::string_view::npos; at = text.find(word, at + 1)) {
        const bool begins = at == 0 || !is_name_char(text[at - 1]);
        const bool ends   = at + word.size() == text.size() || !is_name_char(text[at + word.size()]);
        if (begins && ends)
            return at;
    }
    return std::string_view::npos;
}

// a name that nothing in the piece has
std::string free_name(const Finder &finder, const std::string &name)
{
    constexpr int MOST = 100;
    for (int number = 2; number < MOST; ++number) {
        std::string              other     = name + std::to_string(number);
        const std::vector<File> &files     = finder.piece.source.files();
        const auto               stands_in = [&other](const File &file) { return file.text.find(other) != std::string::npos; };
        if (std::none_of(files.begin(), files.end(), stands_in))
            return other;
    }
    return {};
}

// in the list, and in the body behind "$"; nothing where the text is not plain enough to be sure
std::vector<Edit> rename(const Finder &finder, const Macro &macro, const std::string &parameter)
{
    const std::string_view text  = text_at(finder, macro.place);
    const std::size_t      list  = text.find('(');
    const std::size_t      first = list == std::string_view::npos ? list : find_word(text, parameter, list);
    const std::string      other = free_name(finder, parameter);
    if (first == std::string_view::npos || text.find(';') != std::string_view::npos || other.empty() ||
        text.find("/*") != std::string_view::npos)
        return {};
    std::vector<Edit> edits;
    for (std::size_t at = first; at != std::string_view::npos; at = find_word(text, parameter, at + 1)) {
        if (at != first && text[at - 1] != '$')
            continue;
        const std::uint64_t begin = macro.place.begin + at;
        edits.push_back({{macro.place.file, begin, begin + parameter.size(), NONE}, other});
    }
    return edits;
}

bool is_called(const Finder &finder, const Macro &macro)
{
    const auto               index = static_cast<std::int32_t>(&macro - finder.piece.macros.data());
    const std::vector<Call> &calls = finder.piece.source.calls();
    return std::any_of(calls.begin(), calls.end(),
                       [index](const Call &call) { return call.kind == CallKind::macro && call.of == index; });
}

void look_at_parameter(Finder &finder, const Macro &macro, const Macro &hidden, const std::string &parameter)
{
    const std::string_view text = text_at(finder, macro.place);
    const std::size_t      call = text.find("$" + parameter);
    if (call == std::string_view::npos || find_word(text, parameter, call) != call + 1)
        return;
    const std::uint64_t begin = macro.place.begin + call;
    add(finder,
        {HintKind::hidden_macro,
         "$" + parameter + " in macro " + macro.name + " is its parameter, and not macro " + hidden.name,
         "a parameter hides the macro of its name, whose body is " + quoted(std::string_view{hidden.body}.substr(0, MOST_SHOWN)),
         {macro.place.file, begin, begin + 1 + parameter.size(), NONE},
         NONE,
         finder.found.size() < MOST_RENAMED && is_called(finder, hidden) ? rename(finder, macro, parameter) : std::vector<Edit>{}});
}

void look_at_parameters(Finder &finder)
{
    std::map<std::string_view, const Macro *> macros;
    for (const Macro &macro : finder.piece.macros)
        macros.emplace(macro.name, &macro);
    for (const Macro &macro : finder.piece.macros)
        for (const std::string &parameter : macro.parameters) {
            const auto hidden = macros.find(parameter);
            if (finder.found.size() < MOST_HINTS && is_plain(macro.place) && hidden != macros.end() && hidden->second != &macro)
                look_at_parameter(finder, macro, *hidden->second, parameter);
        }
}

} // namespace

void look_at_definitions(Finder &finder)
{
    look_at_names(finder);
    look_at_parameters(finder);
}

} // namespace orlo::explain

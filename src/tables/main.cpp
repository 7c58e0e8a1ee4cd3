// Prints the tables of orlo for scripts: all of them as JSON, or one as lines with tabs between the columns, the first of which
// names them. Nothing here is a table: each row is read from the header that owns it. Only the limits, which are constants, are
// listed.

#include "base/codes.h"
#include "base/curves.h"
#include "base/distributions.h"
#include "ddf/ddf.h"
#include "ddf/expression.h"
#include "ddf/generator.h"
#include "ddf/second_order.h"
#include "diag/messages.h"
#include "driver/options.h"
#include "events/pfields.h"
#include "events/tempo_map.h"
#include "input/constants.h"
#include "input/directives.h"
#include "input/equations.h"
#include "input/include_pass.h"
#include "input/line_reader.h"
#include "input/macro_expansion.h"
#include "input/macros.h"
#include "input/scanners.h"
#include "lang/iblock.h"
#include "lang/settings.h"
#include "lang/tempo_command.h"
#include "tables/enum_names.h"
#include "words/curve_letters.h"
#include "words/keywords.h"
#include "words/range_letters.h"
#include "words/values.h"

#include <cstdio>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace orlo::tables {
namespace {

// A bound that a user can meet, and the header that owns it.
struct Limit {
    const char *name;
    long        value;
    const char *meaning;
    const char *file;
};

// clang-format off
#define LIMIT(file, name, meaning) {#name, static_cast<long>(name), meaning, file}
constexpr Limit limits[] = {
    LIMIT("ddf/ddf.h", SPAN_SLACK, "beats that a span may reach past the last event without a warning"),
    LIMIT("ddf/ddf.h", MOST_STALLED_STEPS, "steps of p2 in a row that use up nothing of a span of beats"),
    LIMIT("ddf/ddf.h", MOST_FULL_WARNINGS, "warnings of a full block in one span of events of p2"),
    LIMIT("ddf/expression.h", MAX_OPERATIONS, "operations of an equation in EX"),
    LIMIT("ddf/generator.h", MAX_SETS, "sets of a generator"),
    LIMIT("ddf/second_order.h", MAX_GROUPS, "groups of a set of S2"),
    LIMIT("ddf/second_order.h", MAX_GROUP_VALUES, "values of a group of S2"),
    LIMIT("events/pfields.h", LEAST_PFIELDS, "p-fields of a block, at least"),
    LIMIT("events/pfields.h", MOST_PFIELDS, "p-fields of a block"),
    LIMIT("events/tempo_map.h", MAX_TEMPOS, "segments of the tempo map"),
    LIMIT("events/tempo_map.h", MIN_TEMPO, "beats per minute, at least"),
    LIMIT("events/tempo_map.h", MAX_TEMPO, "beats per minute"),
    LIMIT("events/tempo_map.h", MAX_TEMPO_CHANGE, "beat at which a change of tempo starts or ends"),
    LIMIT("input/constants.h", MAX_CONSTANT_NAME, "characters of a constant's name, refused"),
    LIMIT("input/equations.h", MAX_EQUATION_ITEMS, "terms, and operations, of an equation in ~[ ]"),
    LIMIT("input/include_pass.h", MAX_INCLUDE_CALLS, "files copied in a run, the main input among them; the last is refused"),
    LIMIT("input/include_pass.h", MAX_INCLUDE_NAME, "characters of an include file's name"),
    LIMIT("input/line_reader.h", LINE_SIZE, "bytes of a line with its NUL"),
    LIMIT("input/macro_expansion.h", MAX_EXPANSIONS, "expansions of macros in a line"),
    LIMIT("input/macro_expansion.h", MAX_NESTING, "macros inside macros"),
    LIMIT("input/macro_expansion.h", MAX_BODY_TEXT, "characters of a macro's body while it is expanded"),
    LIMIT("input/macro_expansion.h", SURE_EXPANSIONS, "expansions of a run"),
    LIMIT("input/macro_expansion.h", EXPANSIONS_FOR_BYTE, "more of them for each byte of the input"),
    LIMIT("input/macros.h", MAX_MACRO_NAME, "characters of a macro's name, refused"),
    LIMIT("input/macros.h", MAX_MACRO_BODY, "characters of a macro's body, refused"),
    LIMIT("input/macros.h", MAX_MACRO_PARAMS, "parameters of a macro"),
    LIMIT("input/scanners.h", MIN_INTEGER, "whole number, at least"),
    LIMIT("input/scanners.h", MAX_INTEGER, "whole number"),
    LIMIT("input/scanners.h", MAX_UNSIGNED, "whole number without a sign, such as a seed"),
    LIMIT("input/scanners.h", MAX_DECIBELS, "decibels"),
    LIMIT("lang/iblock.h", MOST_BEATS, "beats of a block"),
    LIMIT("lang/iblock.h", MANY_PFIELDS, "p-fields of a block without a warning"),
    LIMIT("lang/iblock.h", LATE_START, "beat at which a block starts without a warning"),
    LIMIT("lang/iblock.h", LONG_DURATION, "beats of a block without a warning"),
    LIMIT("lang/settings.h", MAX_DEVIATION, "deviation"),
    LIMIT("lang/settings.h", LARGE_DEVIATION, "deviation without a warning"),
    LIMIT("lang/tempo_command.h", FAST_TEMPO, "beats per minute without a warning"),
    LIMIT("lang/tempo_command.h", SLOW_TEMPO, "beats per minute without a warning, at least"),
    LIMIT("lang/tempo_command.h", LATE_BEAT, "beat at which a change of tempo starts or ends without a warning"),
    LIMIT("words/keywords.h", MAX_SUFFIX, "digits after re and bn"),
    LIMIT("words/values.h", MAX_OCTAVE, "octave of a note name"),
};
#undef LIMIT
// clang-format on

using Words = std::vector<std::string>;
using Cell  = std::variant<long, bool, std::string, Words>;

struct Table {
    std::string                    name;
    Words                          columns;
    std::vector<std::vector<Cell>> rows;
};

template <class Enum> std::string name_among(const std::vector<Enumerator<Enum>> &names, Enum value)
{
    for (const auto &each : names)
        if (each.value == static_cast<int>(value))
            return std::string{each.name};
    return {};
}

template <class Enum> Table enumeration(const char *name, const std::vector<Enumerator<Enum>> &names)
{
    Table table{name, {"number", "name"}, {}};
    for (const auto &each : names)
        table.rows.push_back({long{each.value}, std::string{each.name}});
    return table;
}

const auto codes    = enumerators<Code, 0, 64>();
const auto statuses = enumerators<Status, -1, 1002>();
const auto warnings = enumerators<Warning, 0, 100>();
const auto curves   = enumerators<Curve, 0, 16>();
const auto ranges   = enumerators<Range, 0, 16>();

Words places_of(const Keyword &keyword)
{
    Words places;
    for (const auto &place : enumerators<WordPlace, 1, 8>())
        if ((keyword.places & static_cast<unsigned>(place.value)) != 0)
            places.emplace_back(place.name);
    return places;
}

Table keyword_table()
{
    Table table{"keywords", {"word", "code", "places"}, {}};
    for (const Keyword &keyword : keywords)
        table.rows.push_back({std::string{keyword.a, keyword.b}, name_among(codes, keyword.code), places_of(keyword)});
    return table;
}

template <class Number, std::size_t N>
Table message_table(const char *name, const Message<Number> (&messages)[N], const std::vector<Enumerator<Number>> &names)
{
    Table table{name, {"number", "name", "text", "line"}, {}};
    for (const auto &message : messages)
        table.rows.push_back(
            {long{message.number}, name_among(names, message.number), std::string{message.text}, message.line == Line::shown});
    return table;
}

Table curve_table()
{
    Table table{"curves", {"letter", "code", "name"}, {}};
    for (const CurveLetter &row : curve_letters)
        table.rows.push_back({std::string{row.letter}, static_cast<long>(row.curve), name_among(curves, row.curve)});
    return table;
}

Table range_table()
{
    Table table{"distributions", {"letter", "code", "name"}, {}};
    for (const RangeLetter &row : range_letters)
        table.rows.push_back({std::string{row.letter}, static_cast<long>(row.range), name_among(ranges, row.range)});
    return table;
}

Table limit_table()
{
    Table table{"limits", {"name", "value", "meaning", "file"}, {}};
    for (const Limit &limit : limits)
        table.rows.push_back({std::string{limit.name}, limit.value, std::string{limit.meaning}, std::string{limit.file}});
    return table;
}

Table options_table()
{
    Table table{"options", {"letter", "value", "meaning"}, {}};
    for (const Option &row : option_table)
        table.rows.push_back({std::string{row.letter}, std::string{row.value}, std::string{row.meaning}});
    return table;
}

Table directive_table()
{
    Table table{"directives", {"word"}, {}};
    for (const std::string_view word : directives)
        table.rows.push_back({std::string{word}});
    return table;
}

std::vector<Table> all_tables()
{
    return {keyword_table(),
            message_table("errors", error_messages, statuses),
            message_table("warnings", warning_messages, warnings),
            limit_table(),
            curve_table(),
            range_table(),
            options_table(),
            directive_table(),
            enumeration("codes", codes),
            enumeration("error_names", statuses),
            enumeration("warning_names", warnings),
            enumeration("curve_names", curves),
            enumeration("distribution_names", ranges)};
}

// a text with what would end it, or its line, after a "\"
std::string escaped(std::string_view text, std::string_view special)
{
    std::string result;
    for (const char c : text) {
        if (c == '\n' || c == '\t' || special.find(c) != std::string_view::npos)
            result += '\\';
        result += c == '\n' ? 'n' : c == '\t' ? 't' : c;
    }
    return result;
}

std::string quoted(std::string_view text) { return '"' + escaped(text, "\"\\") + '"'; }

std::string json(const Cell &cell)
{
    if (const long *number = std::get_if<long>(&cell))
        return std::to_string(*number);
    if (const bool *yes = std::get_if<bool>(&cell))
        return *yes ? "true" : "false";
    if (const std::string *text = std::get_if<std::string>(&cell))
        return quoted(*text);
    std::string result;
    for (const std::string &word : std::get<Words>(cell))
        result += (result.empty() ? "" : ", ") + quoted(word);
    return "[" + result + "]";
}

std::string plain(const Cell &cell)
{
    if (const std::string *text = std::get_if<std::string>(&cell))
        return escaped(*text, "\\");
    if (const Words *words = std::get_if<Words>(&cell)) {
        std::string result;
        for (const std::string &word : *words)
            result += (result.empty() ? "" : ",") + word;
        return result;
    }
    return json(cell);
}

std::string json(const Table &table)
{
    std::string result;
    for (const auto &row : table.rows) {
        std::string object;
        for (std::size_t i = 0; i < row.size(); ++i)
            object += (object.empty() ? "" : ", ") + quoted(table.columns[i]) + ": " + json(row[i]);
        result += (result.empty() ? "\n    {" : ",\n    {") + object + "}";
    }
    return "  " + quoted(table.name) + ": [" + result + "\n  ]";
}

void print_json()
{
    std::string result;
    for (const Table &table : all_tables())
        result += (result.empty() ? "{\n" : ",\n") + json(table);
    std::puts((result + "\n}").c_str());
}

int print_lines(std::string_view name)
{
    for (const Table &table : all_tables()) {
        if (table.name != name)
            continue;
        std::string text;
        for (const std::string &column : table.columns)
            text += (text.empty() ? "" : "\t") + column;
        for (const auto &row : table.rows)
            for (std::size_t i = 0; i < row.size(); ++i)
                text += (i == 0 ? '\n' : '\t') + plain(row[i]);
        std::puts(text.c_str());
        return 0;
    }
    std::fprintf(stderr, "orlo-tables: no table %s\n", std::string{name}.c_str());
    return 1;
}

} // namespace
} // namespace orlo::tables

int main(int argc, char **argv)
{
    if (argc > 2 || (argc == 2 && argv[1][0] == '-')) {
        std::fputs("usage: orlo-tables [TABLE]\n  all tables as JSON, or one as lines with tabs between the columns\n", stderr);
        return 2;
    }
    if (argc == 2)
        return orlo::tables::print_lines(argv[1]);
    orlo::tables::print_json();
    return 0;
}

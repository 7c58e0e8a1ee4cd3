// Places are gathered in one table while everything else is written, and the table comes last. Columns that follow a rule, as most
// do, are written by it.

#include "explain/document.h"

#include "base/curves.h"
#include "base/distributions.h"
#include "base/json.h"
#include "explain/words.h"

#include <algorithm>
#include <bit>
#include <string_view>

namespace orlo::explain {
namespace {

struct Out {
    JsonWriter         json;
    Piece             &piece;
    bool               events;
    std::vector<Place> places;
};

void put(Out &out, std::string_view name, std::int64_t value)
{
    out.json.key(name);
    out.json.number(value);
}

void put_count(Out &out, std::string_view name, std::uint64_t value) { put(out, name, static_cast<std::int64_t>(value)); }

template <std::floating_point Real> void put_real(Out &out, std::string_view name, Real value)
{
    out.json.key(name);
    out.json.number(value);
}

void put_text(Out &out, std::string_view name, std::string_view value)
{
    out.json.key(name);
    out.json.text(value);
}

void put_true(Out &out, std::string_view name, bool value)
{
    if (!value)
        return;
    out.json.key(name);
    out.json.truth(true);
}

std::int64_t index_of(Out &out, const Place &place)
{
    out.places.push_back(place);
    return static_cast<std::int64_t>(out.places.size() - 1);
}

// nothing where there is no place
void put_place(Out &out, std::string_view name, const Place &place)
{
    if (place.file != NONE)
        put(out, name, index_of(out, place));
}

// puts an array with what put_item does for each item
template <class Items, class Put> void put_list(Out &out, std::string_view name, const Items &items, Put put_item)
{
    out.json.key(name);
    out.json.begin_array();
    for (const auto &item : items)
        put_item(item);
    out.json.end_array();
}

// as put_list, an object for each item
template <class Items, class Put> void put_objects(Out &out, std::string_view name, const Items &items, Put put_members)
{
    put_list(out, name, items, [&](const auto &item) {
        out.json.begin_object();
        put_members(item);
        out.json.end_object();
    });
}

// columns

template <class Get> void put_whole_column(Out &out, std::string_view name, std::size_t count, Get get)
{
    out.json.key(name);
    const std::int64_t from = count > 0 ? get(0) : 0;
    const std::int64_t step = count > 1 ? get(1) - from : 0;
    bool               even = count > 1;
    for (std::size_t i = 2; even && i < count; ++i)
        even = get(i) - get(i - 1) == step;
    if (even) {
        out.json.begin_object();
        put(out, "from", from);
        put(out, "step", step);
        out.json.end_object();
        return;
    }
    out.json.begin_array();
    for (std::size_t i = 0; i < count; ++i)
        out.json.number(get(i));
    out.json.end_array();
}

template <class Number> void put_whole_column(Out &out, std::string_view name, const std::vector<Number> &values)
{
    put_whole_column(out, name, values.size(), [&values](std::size_t i) { return static_cast<std::int64_t>(values[i]); });
}

bool same_bits(float a, float b) { return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b); }

void put_column(Out &out, std::string_view name, const std::vector<float> &values)
{
    out.json.key(name);
    const auto differs = [&values](float value) { return !same_bits(value, values.front()); };
    if (values.size() > 1 && std::none_of(values.begin(), values.end(), differs)) {
        out.json.begin_object();
        put_real(out, "all", values.front());
        out.json.end_object();
        return;
    }
    out.json.begin_array();
    for (const float value : values)
        out.json.number(value);
    out.json.end_array();
}

void put_column(Out &out, std::string_view name, const Column &column)
{
    out.json.key(name);
    const std::string_view text{column.text};
    const std::size_t      length = column.lengths.empty() ? 0 : column.lengths.front();
    bool                   same   = column.lengths.size() > 1;
    for (std::size_t i = 1, at = length; same && i < column.lengths.size(); at += column.lengths[i++])
        same = column.lengths[i] == length && text.substr(at, length) == text.substr(0, length);
    if (same) {
        out.json.begin_object();
        put_text(out, "all", text.substr(0, length));
        out.json.end_object();
        return;
    }
    out.json.begin_array();
    std::size_t at = 0;
    for (const std::uint16_t each : column.lengths) {
        out.json.text(text.substr(at, each));
        at += each;
    }
    out.json.end_array();
}

// text and definitions

void put_piece(Out &out, const Heading &heading)
{
    out.json.key("piece");
    out.json.begin_object();
    put_text(out, "name", heading.name);
    put_text(out, "kind", heading.csd ? "csd" : "orlo");
    put_text(out, "folder", heading.folder);
    out.json.key("midi");
    out.json.truth(heading.midi);
    out.json.end_object();
}

void put_files(Out &out)
{
    put_objects(out, "files", out.piece.source.files(), [&out](const File &file) {
        put_text(out, "name", file.name);
        out.json.key("found");
        out.json.truth(file.found);
        if (file.found)
            put_count(out, "bytes", file.text.size());
        put_place(out, "included", file.included);
    });
}

std::string_view name_of(Severity severity)
{
    switch (severity) {
    case Severity::error:
        return "error";
    case Severity::warning:
        return "warning";
    case Severity::note:
        break;
    }
    return "note";
}

void put_diagnostics(Out &out)
{
    put_objects(out, "diagnostics", out.piece.diagnostics, [&out](const Diagnostic &diagnostic) {
        put_text(out, "severity", name_of(diagnostic.severity));
        if (diagnostic.number != 0)
            put(out, "number", diagnostic.number);
        put_text(out, "text", diagnostic.text);
        put_place(out, "range", diagnostic.place);
        put_true(out, "recovered", diagnostic.recovered);
        if (diagnostic.related.empty())
            return;
        put_objects(out, "related", diagnostic.related, [&out](const Related &related) {
            put_text(out, "text", related.text);
            put_place(out, "range", related.place);
        });
    });
}

std::string_view name_of(CallKind kind)
{
    switch (kind) {
    case CallKind::macro:
        return "macro";
    case CallKind::argument:
        return "argument";
    case CallKind::constant:
        return "constant";
    case CallKind::equation:
        return "equation";
    case CallKind::time:
        break;
    }
    return "time";
}

void put_calls(Out &out)
{
    put_objects(out, "calls", out.piece.source.calls(), [&out](const Call &call) {
        put_text(out, "kind", name_of(call.kind));
        if (call.kind != CallKind::equation)
            put_text(out, "name", call.name);
        if (call.of != NONE)
            put(out, "of", call.of);
        if (call.kind != CallKind::macro && call.kind != CallKind::argument)
            put_real(out, "value", call.value);
        put_place(out, "range", call.place);
    });
}

void put_definitions(Out &out)
{
    put_objects(out, "macros", out.piece.macros, [&out](const Macro &macro) {
        put_text(out, "name", macro.name);
        put_list(out, "parameters", macro.parameters, [&out](const std::string &name) { out.json.text(name); });
        put_text(out, "body", macro.body);
        put_place(out, "range", macro.place);
        put_place(out, "name_range", macro.name_place);
        put_place(out, "undefined", macro.undefined);
    });
    put_objects(out, "constants", out.piece.constants, [&out](const Constant &constant) {
        put_text(out, "name", constant.name);
        put_real(out, "value", constant.value);
        put_place(out, "range", constant.place);
        put_list(out, "uses", constant.uses, [&out](const Place &use) { out.json.number(index_of(out, use)); });
    });
    put_objects(out, "conditionals", out.piece.conditionals, [&out](const Conditional &conditional) {
        put_place(out, "range", conditional.place);
        out.json.key("taken");
        out.json.truth(conditional.taken);
        put_place(out, "end", conditional.end);
    });
    put_objects(out, "sequences", out.piece.sequences, [&out](const Sequence &sequence) {
        put(out, "seed", sequence.seed);
        put_place(out, "range", sequence.place);
    });
    put_objects(out, "tempo", out.piece.tempo, [&out](const TempoChange &change) {
        put_place(out, "range", change.place);
        put_real(out, "start", change.start);
        put_real(out, "end", change.end);
        put_real(out, "from", change.from);
        put_real(out, "to", change.to);
        put_text(out, "curve", letter_of_curve(change.curve));
        if (change.curve == static_cast<int>(Curve::power))
            put_real(out, "exponent", change.exponent);
    });
}

// commands

void put_terms(Out &out, const Set &set)
{
    out.json.key("terms");
    out.json.begin_array();
    std::vector<int> pfields;
    for (const Term &term : set.terms) {
        if (term.op != 0)
            out.json.text({&term.op, 1});
        if (term.pfield == 0) {
            out.json.number(term.number);
            continue;
        }
        std::string name{'p'};
        out.json.text(name += std::to_string(term.pfield));
        if (std::find(pfields.begin(), pfields.end(), term.pfield) == pfields.end())
            pfields.push_back(term.pfield);
    }
    out.json.end_array();
    put_list(out, "pfields", pfields, [&out](int pfield) { out.json.number(std::int64_t{pfield}); });
}

void put_curve(Out &out, const Set &set)
{
    const bool by_beat = *set.curve >= TIME_CURVE;
    const int  curve   = by_beat ? *set.curve - TIME_CURVE : *set.curve;
    put_text(out, "curve", letter_of_curve(curve));
    put_true(out, "by_beat", by_beat);
    if (curve == static_cast<int>(Curve::power))
        put_real(out, "exponent", set.exponent);
}

std::string_view name_of_choice(int choice)
{
    constexpr std::string_view names[] = {"any", "all_before_repeating", "never_twice"};
    return names[choice];
}

void put_set(Out &out, const Set &set)
{
    put_place(out, "range", set.place);
    if (set.weight)
        put_real(out, "weight", *set.weight);
    if (set.curve)
        put_curve(out, set);
    if (!set.ranges.empty())
        put_objects(out, "ranges", set.ranges, [&out](const RandomRange &range) {
            put_real(out, "low", range.low);
            put_real(out, "high", range.high);
            put_text(out, "distribution", name_of_distribution(range.distribution));
        });
    if (!set.lists.empty())
        put_list(out, "lists", set.lists, [&out](const std::vector<double> &list) {
            out.json.begin_array();
            for (const double value : list)
                out.json.number(value);
            out.json.end_array();
        });
    if (set.choice)
        put_text(out, "choice", name_of_choice(*set.choice));
    if (set.window)
        put_real(out, "window", *set.window);
    if (set.start)
        put_real(out, "start", *set.start);
    if (!set.terms.empty())
        put_terms(out, set);
    put_true(out, "rounded", set.rounded);
}

void put_commands(Out &out, const std::vector<Command> &commands)
{
    put_objects(out, "commands", commands, [&out](const Command &command) {
        put_text(out, "name", name_of_code(command.code));
        put_place(out, "range", command.place);
        if (!command.numbers.empty())
            put_list(out, "numbers", command.numbers, [&out](double number) { out.json.number(number); });
        if (!command.span)
            return;
        put_real(out, "span", *command.span);
        put_place(out, "span_range", command.span_place);
        put_objects(out, "sets", command.sets, [&out](const Set &set) { put_set(out, set); });
        put_count(out, "first", command.first);
        put_count(out, "count", command.count);
    });
}

// sections

std::string_view name_of(Kind kind)
{
    switch (kind) {
    case Kind::literal:
        return "literal";
    case Kind::repeat:
        return "repeat";
    case Kind::generator:
        return "generator";
    case Kind::fill:
        return "fill";
    case Kind::loop:
        break;
    }
    return "loop";
}

void put_repeated(Out &out, const Run &run)
{
    put_count(out, "of", run.of);
    if (run.cycle != 1)
        put_count(out, "cycle", run.cycle);
    if (!run.loop.empty())
        put_list(out, "loop", run.loop, [&out](std::uint64_t value) { out.json.number(static_cast<std::int64_t>(value)); });
}

void put_run(Out &out, const Run &run, std::int64_t first_place)
{
    put_text(out, "kind", name_of(run.kind));
    put_count(out, "count", run.count);
    put_count(out, "sequence", run.sequence);
    if (run.deviation != 0.0F)
        put_real(out, "deviation", run.deviation);
    if (run.factor != 1.0F)
        put_real(out, "factor", run.factor);
    switch (run.kind) {
    case Kind::literal:
        put(out, "ranges", first_place + static_cast<std::int64_t>(run.places));
        break;
    case Kind::repeat:
        put_place(out, "range", run.place);
        put_repeated(out, run);
        break;
    case Kind::generator:
        put_count(out, "command", run.command);
        put_whole_column(out, "sets", run.sets);
        if (!run.positions.empty()) {
            put_column(out, "positions", run.positions);
            put_column(out, "window_low", run.window_low);
            put_column(out, "window_high", run.window_high);
        }
        break;
    case Kind::fill:
    case Kind::loop:
        put_repeated(out, run);
        break;
    }
}

// the first draw of each value, by those before it
std::vector<std::uint64_t> first_draws(const Section &section)
{
    std::vector<std::uint64_t> draws;
    draws.reserve(section.draw_counts.size());
    std::size_t value = 0;
    for (const Run &run : section.runs) {
        std::uint64_t draw = run.first_draw;
        for (std::uint64_t i = 0; i < run.count; ++i) {
            draws.push_back(draw);
            draw += section.draw_counts[value++];
        }
    }
    return draws;
}

bool same_values(const std::vector<float> &a, const std::vector<float> &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), same_bits);
}

void put_values(Out &out, const Section &section)
{
    const auto first_place = static_cast<std::int64_t>(out.places.size());
    out.places.insert(out.places.end(), section.places.begin(), section.places.end());
    out.json.key("values");
    out.json.begin_object();
    put_column(out, "read", section.read);
    if (section.pfield < 4 || !same_values(section.read, section.deviated))
        put_column(out, "deviated", section.deviated);
    put_column(out, "result", section.result);
    if (section.pfield == 2)
        put_column(out, "tempo", section.tempo);
    put_whole_column(out, "draws", first_draws(section));
    put_whole_column(out, "draw_counts", section.draw_counts);
    if (!section.refused.empty())
        put_list(out, "refused", section.refused, [&out](const Refused &refused) {
            out.json.begin_array();
            for (const std::uint64_t number : {refused.value, refused.first, refused.count})
                out.json.number(static_cast<std::int64_t>(number));
            out.json.end_array();
        });
    put_objects(out, "runs", section.runs, [&out, first_place](const Run &run) { put_run(out, run, first_place); });
    out.json.end_object();
}

void put_statistics(Out &out, const Section &section)
{
    if (section.statistics.count == 0)
        return;
    out.json.key("statistics");
    out.json.begin_object();
    put_real(out, "least", static_cast<float>(section.statistics.least));
    put_real(out, "greatest", static_cast<float>(section.statistics.greatest));
    put_real(out, "mean", section.statistics.sum / static_cast<double>(section.statistics.count));
    if (section.distinct <= MOST_DISTINCT)
        put_count(out, "distinct", section.distinct);
    out.json.end_object();
}

void put_section(Out &out, const Section &section, bool with_values)
{
    put(out, "pfield", section.pfield);
    put_place(out, "range", section.place);
    put_text(out, "output", name_of_code(section.output));
    if (section.digits != NONE)
        put(out, "digits", section.digits);
    put_objects(out, "inputs", section.inputs, [&out](const Input &input) {
        put_text(out, "name", name_of_code(input.code) + (input.exact ? "x" : ""));
        put_place(out, "range", input.place);
        put_count(out, "from", input.from);
    });
    put_commands(out, section.commands);
    put_objects(out, "loops", section.loops, [&out](const Loop &loop) {
        put_place(out, "range", loop.place);
        put_count(out, "first", loop.first);
        put_count(out, "count", loop.count);
        put_true(out, "open", loop.open);
    });
    put_count(out, "written", section.written);
    put_count(out, "count", section.count);
    if (section.filled)
        put_text(out, "filled", section.by_loop ? "loop" : "last");
    put_statistics(out, section);
    if (with_values)
        put_values(out, section);
}

// blocks

void put_events(Out &out, const Events &events)
{
    out.json.key("events");
    out.json.begin_object();
    put_count(out, "count", events.count);
    put_count(out, "rests", events.rests);
    put_column(out, "beat", events.beat);
    put_column(out, "beats", events.beats);
    out.json.key("pfields");
    out.json.begin_array();
    for (std::size_t p = 0; p < events.values.size(); ++p) {
        out.json.begin_object();
        put_column(out, "value", events.values[p]);
        if (!events.printed.empty())
            put_column(out, "printed", events.printed[p]);
        put_whole_column(out, "origin", events.origins[p]);
        out.json.end_object();
    }
    out.json.end_array();
    out.json.end_object();
}

void put_header(Out &out, const Block &block)
{
    put(out, "pfields", block.pfields);
    put_real(out, "start", block.start);
    if (block.events > 0)
        put_count(out, "events_wanted", block.events);
    else
        put_real(out, "beats", block.beats);
    if (!block.started)
        return;
    put_real(out, "tempo", block.tempo);
    put_real(out, "seconds", block.seconds);
}

void put_block(Out &out, const Block &block)
{
    if (block.number != 0 && block.written)
        put(out, "number", block.number);
    put_place(out, "range", block.place);
    if (block.has_header || block.skipped)
        put(out, "instrument", block.instrument);
    put_true(out, "skipped", block.skipped);
    put_true(out, "recovered", block.recovered);
    put_true(out, "failed", !block.closed);
    if (block.has_header)
        put_header(out, block);
    if (block.written) {
        put_real(out, "duration", block.duration);
        put_real(out, "last_beat", block.last_beat);
        put_real(out, "end", block.end);
    }
    put_commands(out, block.commands);
    put_objects(out, "sections", block.sections,
                [&](const Section &section) { put_section(out, section, out.events && !block.recovered); });
    if (block.notes)
        put_events(out, *block.notes);
}

void put_score(Out &out)
{
    put_list(out, "score", out.piece.score, [&out](const ScorePart &part) {
        if (part.block == NONE) {
            out.json.text(part.text);
            return;
        }
        out.json.begin_object();
        put(out, "block", part.block);
        out.json.end_object();
    });
}

// places

struct Spot {
    Position begin;
    Position end;
};

template <class Get> void put_place_column(Out &out, std::string_view name, const std::vector<Spot> &spots, Get get)
{
    put_whole_column(out, name, spots.size(), [&](std::size_t i) { return static_cast<std::int64_t>(get(spots[i])); });
}

void put_places(Out &out)
{
    std::vector<Spot> spots;
    spots.reserve(out.places.size());
    for (const Place &place : out.places)
        spots.push_back({out.piece.source.position(place.file, place.begin), out.piece.source.position(place.file, place.end)});
    const auto any = [&spots](auto differs) { return std::any_of(spots.begin(), spots.end(), differs); };
    out.json.key("ranges");
    out.json.begin_object();
    put_count(out, "count", spots.size());
    put_whole_column(out, "file", out.places.size(), [&out](std::size_t i) { return std::int64_t{out.places[i].file}; });
    put_place_column(out, "line", spots, [](const Spot &spot) { return spot.begin.line; });
    put_place_column(out, "byte", spots, [](const Spot &spot) { return spot.begin.byte; });
    if (any([](const Spot &spot) { return spot.begin.utf16 != spot.begin.byte; }))
        put_place_column(out, "utf16", spots, [](const Spot &spot) { return spot.begin.utf16; });
    if (any([](const Spot &spot) { return spot.begin.line != spot.end.line; }))
        put_place_column(out, "end_line", spots, [](const Spot &spot) { return spot.end.line; });
    put_place_column(out, "end_byte", spots, [](const Spot &spot) { return spot.end.byte; });
    if (any([](const Spot &spot) { return spot.end.utf16 != spot.end.byte; }))
        put_place_column(out, "end_utf16", spots, [](const Spot &spot) { return spot.end.utf16; });
    if (std::any_of(out.places.begin(), out.places.end(), [](const Place &place) { return place.call != NONE; }))
        put_whole_column(out, "call", out.places.size(), [&out](std::size_t i) { return std::int64_t{out.places[i].call}; });
    out.json.end_object();
}

} // namespace

bool write_document(Piece &piece, const Heading &heading, std::FILE *file)
{
    Out out{JsonWriter{file}, piece, heading.events, {}};
    out.json.begin_object();
    put(out, "format", 1);
    put_text(out, "program", "orlo " ORLO_VERSION);
    put_piece(out, heading);
    put(out, "status", heading.status);
    put_files(out);
    put_diagnostics(out);
    put_calls(out);
    put_definitions(out);
    put_commands(out, piece.commands);
    put_objects(out, "blocks", piece.blocks, [&out](const Block &block) { put_block(out, block); });
    put_score(out);
    put_places(out);
    out.json.end_object();
    return out.json.finish();
}

} // namespace orlo::explain

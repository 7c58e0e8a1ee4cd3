// Places are gathered in one table while everything else is written, and the table comes last. Columns that follow a rule, as most
// do, are written by it.

#include "explain/document.h"

#include "base/curves.h"
#include "explain/out.h"
#include "explain/out_blocks.h"
#include "gather/words.h"

#include <algorithm>

namespace orlo::explain {
namespace {

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

void put_diagnostics(Out &out)
{
    put_objects(out, "diagnostics", out.piece.diagnostics, [&out](const Diagnostic &diagnostic) {
        put_text(out, "severity", name_of_severity(diagnostic.severity));
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

void put_hints(Out &out, const Hints &hints)
{
    put_objects(out, "hints", hints.list, [&out](const Hint &hint) {
        put_text(out, "name", name_of(hint.kind));
        put_text(out, "text", hint.text);
        put_text(out, "reason", hint.reason);
        put_place(out, "range", hint.place);
        if (hint.block != NONE)
            put(out, "block", hint.block);
        if (hint.edits.empty())
            return;
        put_objects(out, "edits", hint.edits, [&out](const Edit &edit) {
            put_place(out, "range", edit.place);
            put_text(out, "text", edit.text);
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

bool write_document(Piece &piece, const Hints &hints, const Heading &heading, std::FILE *file)
{
    Out out{JsonWriter{file}, piece, heading.events, {}};
    out.json.begin_object();
    put(out, "format", 1);
    put_text(out, "program", "orlo " ORLO_VERSION);
    put_piece(out, heading);
    put(out, "status", heading.status);
    put_files(out);
    put_diagnostics(out);
    put_hints(out, hints);
    put_true(out, "hints_full", hints.full);
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

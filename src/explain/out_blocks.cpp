#include "explain/out_blocks.h"

#include "base/curves.h"
#include "gather/words.h"

#include <algorithm>

namespace orlo::explain {
namespace {

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
            put_real(out, "low", std::min(range.low, range.high));
            put_real(out, "high", std::max(range.low, range.high));
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

} // namespace

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

namespace {

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
    put_place(out, "pfields_range", block.header.pfields);
    put_place(out, "start_range", block.header.start);
    put_place(out, "length_range", block.header.length);
    if (!block.started)
        return;
    put_real(out, "tempo", block.tempo);
    put_real(out, "seconds", block.seconds);
}

} // namespace

void put_block(Out &out, const Block &block)
{
    if (block.written)
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

} // namespace orlo::explain

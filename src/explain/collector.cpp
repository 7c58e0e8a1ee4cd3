// The run tells one thing after the other, and what belongs together is found by their order: a command's numbers follow its name,
// the values that a generator makes follow its text, and the draws of a value are those made since the value before.

#include "explain/collector.h"

#include "base/codes.h"
#include "base/random.h"
#include "diag/messages.h"
#include "events/block.h"
#include "events/pfields.h"
#include "events/tempo_map.h"
#include "explain/distinct.h"
#include "explain/ring.h"
#include "input/line_reader.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <new>

namespace orlo::explain {
namespace {

// What a value is of, until something else is told.
struct Source {
    Kind          kind    = Kind::literal;
    std::size_t   command = 0; // of a generator
    Place         place;       // of a repeat, or of the next literal
    std::uint64_t of    = 0;   // the value that is repeated
    std::uint64_t cycle = 1;
};

struct Collector {
    Piece *piece      = nullptr;
    Detail detail     = Detail::events;
    bool   recovering = false;
    bool   lost       = false; // memory was exhausted

    // what is open
    std::int32_t                                     block      = NONE; // index; the last one even after its end
    bool                                             in_block   = false;
    bool                                             in_section = false;
    bool                                             in_command = false;
    std::size_t                                      reported   = 0; // diagnostics that the open block had none of before
    Place                                            definition;     // of a macro: where it begins
    Macro                                            macro;
    std::vector<std::size_t>                         open_conditionals;
    std::map<std::string, std::int32_t, std::less<>> macros; // by name: index of the one that is in force
    std::map<std::string, std::int32_t, std::less<>> constants;
    Place                                            last_place; // of what was read last

    // of the section
    Source                     source;
    bool                       new_source = true; // the next value begins a run
    std::size_t                set        = 0;
    float                      position = 0.0F, window_low = 0.0F, window_high = 0.0F;
    bool                       walks     = false;
    std::uint64_t              last_read = 0; // the value that was read or generated last
    std::uint64_t              chord     = 0; // the first value of the last chord
    std::uint64_t              members   = 0; // its values, and how many of them have been repeated
    std::uint64_t              repeated  = 0;
    std::vector<std::uint64_t> looped;    // values in loops
    std::uint64_t              turns = 0; // values that a loop has filled
    std::uint64_t              drawn = 0; // draws of the sequence so far
    std::vector<Refused>       refused;   // of the next value
    Ring                       ring;
    Distinct                   distinct;

    // of the events
    std::size_t told = 0; // events
};

Collector now;

bool wants_values() { return now.detail == Detail::events && !now.recovering; }

Block   &block() { return now.piece->blocks[static_cast<std::size_t>(now.block)]; }
Section &section() { return block().sections.back(); }

Place here(std::size_t begin, std::size_t end)
{
    now.last_place = now.piece->source.place_of(begin, end);
    return now.last_place;
}

// makes a place reach to a column of the present line
void extend(Place &place, std::size_t end)
{
    if (end > 0)
        place = now.piece->source.join(place, here(end - 1, end));
}

// a part of the open section
Place in_section_here(std::size_t begin, std::size_t end)
{
    const Place place = here(begin, end);
    if (now.in_section)
        section().place = now.piece->source.join(section().place, place);
    return place;
}

std::vector<Command> &commands()
{
    if (now.in_section)
        return section().commands;
    return now.in_block ? block().commands : now.piece->commands;
}

// files

void include_met(std::uint64_t begin, std::uint64_t end) { now.piece->source.include_met(begin, end); }
void file_opened(const char *name, bool found) { now.piece->source.open(name, found); }
void file_text(const char *text, std::size_t length) { now.piece->source.add_text({text, length}); }
void file_left() { now.piece->source.leave(); }
void copy_continues(std::uint64_t to, std::uint64_t from) { now.piece->source.copy_continues(to, from); }
void line_read(std::uint64_t, std::uint64_t offset, std::size_t length) { now.piece->source.read_line(offset, length); }

// calls

std::int32_t find(const std::map<std::string, std::int32_t, std::less<>> &names, std::string_view name)
{
    const auto found = names.find(name);
    return found != names.end() ? found->second : NONE;
}

void call_begins(CallKind kind, const char *name, std::size_t name_length, std::size_t begin, std::size_t end, double value)
{
    const std::string_view called{name, name_length};
    SourceMap             &source = now.piece->source;
    std::int32_t           of     = NONE;
    TextMap                body;
    if (kind == CallKind::macro) {
        of = find(now.macros, called);
        if (of != NONE)
            body = now.piece->macros[static_cast<std::size_t>(of)].map;
    } else if (kind == CallKind::argument) {
        if (const TextMap *argument = source.argument(called))
            body = *argument;
    } else if (kind == CallKind::constant) {
        of = find(now.constants, called);
        if (of != NONE)
            body = now.piece->constants[static_cast<std::size_t>(of)].map;
    } else {
        body = as_number(part_of(source.line(), begin, end));
    }
    source.call(kind, called, of, value, begin, end, body);
}

void argument_taken(const char *name, std::size_t length, std::size_t begin, std::size_t end)
{
    now.piece->source.take_argument({name, length}, begin, end);
}

void call_replaced(std::size_t begin, std::size_t end, std::size_t length) { now.piece->source.replace(begin, end, length); }

// definitions

void definition_begins(std::size_t column)
{
    now.definition = here(column, column + 1);
    now.macro      = {};
}

void macro_name(std::size_t begin, std::size_t end) { now.macro.name_place = here(begin, end); }
void macro_parameter(const char *name, std::size_t length) { now.macro.parameters.emplace_back(name, length); }

// a line end stands for the blank that the line ends with
void body_part(std::size_t begin, std::size_t end)
{
    const TextMap &line = now.piece->source.line();
    const bool     ends = begin == end;
    append(now.macro.map,
           ends ? part_of(line, line.length - std::min<std::size_t>(line.length, 1), line.length) : part_of(line, begin, end));
}

void macro_defined(const char *name, const char *body, std::size_t end, bool stored)
{
    now.macro.name  = name;
    now.macro.body  = body;
    now.macro.place = now.definition;
    extend(now.macro.place, end);
    if (!stored)
        return;
    now.macros[now.macro.name] = static_cast<std::int32_t>(now.piece->macros.size());
    now.piece->macros.push_back(std::move(now.macro));
    now.macro = {};
}

void macro_undefined(const char *name, std::size_t length, std::size_t end)
{
    const auto found = now.macros.find(std::string_view{name, length});
    if (found == now.macros.end())
        return;
    now.piece->macros[static_cast<std::size_t>(found->second)].undefined = here(end - length, end);
    now.macros.erase(found);
}

void constant_defined(const char *name, double value, std::size_t begin, std::size_t end, bool stored)
{
    if (!stored) {
        here(begin, end);
        now.macro.name = name;
        return;
    }
    now.constants[name] = static_cast<std::int32_t>(now.piece->constants.size());
    now.piece->constants.push_back({name, value, here(begin, end), as_number(part_of(now.piece->source.line(), begin, end)), {}});
}

void constant_used(const char *name, std::size_t length, std::size_t begin, std::size_t end)
{
    const std::int32_t found = find(now.constants, {name, length});
    if (found != NONE)
        now.piece->constants[static_cast<std::size_t>(found)].uses.push_back(here(begin, end));
}

void condition(std::size_t begin, std::size_t end, bool taken)
{
    now.open_conditionals.push_back(now.piece->conditionals.size());
    now.piece->conditionals.push_back({here(begin, end), taken, {}});
}

void condition_ends(std::size_t begin, std::size_t end)
{
    if (now.open_conditionals.empty())
        return;
    now.piece->conditionals[now.open_conditionals.back()].end = here(begin, end);
    now.open_conditionals.pop_back();
}

void equation_drew() { now.drawn = draws_made(); }

void close_loop(Loop &loop, bool open)
{
    loop.count = section().count - loop.first;
    loop.open  = open;
}

bool loop_is_open() { return !section().loops.empty() && section().loops.back().open; }

void end_section()
{
    if (!now.in_section)
        return;
    if (loop_is_open() && section().loops.back().count == 0)
        close_loop(section().loops.back(), true);
    section().distinct = now.distinct.count();
    if (!section().filled)
        section().written = section().count;
    now.in_section = false;
}

// blocks

void block_begins(std::size_t column)
{
    const Place place = here(column, column + 1);
    if (!now.in_block || now.recovering) { // a second header in a block takes the place of the first
        end_section();
        now.block = static_cast<std::int32_t>(now.piece->blocks.size());
        now.piece->blocks.emplace_back();
    }
    now.in_block      = true;
    now.in_section    = false;
    block().place     = place;
    block().recovered = now.recovering;
}

void block_header(std::int32_t instrument, std::int32_t pfields, float start, float beats, std::uint64_t events, std::size_t end)
{
    block().has_header = true;
    block().instrument = instrument;
    block().pfields    = pfields;
    block().start      = start;
    block().beats      = beats;
    block().events     = events;
    extend(block().place, end);
}

void block_skipped(std::int32_t instrument, std::size_t end)
{
    block().instrument = instrument;
    block().skipped    = true;
    block().closed     = true;
    extend(block().place, end);
    now.in_block = false;
}

void block_starts(float tempo, float seconds)
{
    block().started = true;
    block().tempo   = tempo;
    block().seconds = seconds;
}

void block_ends(std::size_t end)
{
    extend(block().place, end);
    block().closed = true;
    now.in_block   = false;
}

// sections

void section_begins(std::int32_t pfield, std::size_t begin, std::size_t end)
{
    Section &begun = block().sections.emplace_back();
    begun.pfield   = pfield;
    begun.place    = here(begin, end);
    begun.output   = TYPE_RE;
    now.in_section = true;
    now.source     = {};
    now.new_source = true;
    now.last_read = now.chord = now.members = now.repeated = now.turns = 0;
    now.looped.clear();
    now.refused.clear();
    now.distinct.clear();
    if (pfield == 2)
        now.ring.clear();
    else
        now.ring.begin_section(static_cast<std::size_t>(pfield));
}

void output_type(std::int32_t code, std::size_t begin, std::size_t end)
{
    section().output = code;
    in_section_here(begin, end);
    if (end - begin > 2 && (code == TYPE_RE || code == TYPE_BN))
        section().digits = (code == TYPE_RE ? RE_FW : FFT_SZ)[section().pfield - 2];
}

void input_type(std::int32_t code, std::size_t begin, std::size_t end)
{
    section().inputs.push_back({code, NX && (code == TYPE_NO || code == TYPE_OP), in_section_here(begin, end), section().count});
}

void section_ends() { end_section(); }

// commands

void command_begins(std::int32_t code, std::size_t column)
{
    if (code == CMD_DIRECT || code == CMD_DIRECTIVE || code == CMD_CONSTANT)
        return;
    Command &begun = commands().emplace_back();
    begun.code     = code;
    begun.place    = in_section_here(column, column + 2);
    now.in_command = true;
}

Set &set_of(Command &command, const Place &place)
{
    if (command.sets.empty())
        command.sets.emplace_back().place = place;
    return command.sets.back();
}

void add_operation(Set &set, char op) { set.terms.push_back({op, 0, 0.0}); }

// the term that an operation waits for, or the first
Term &open_term(Set &set)
{
    if (set.terms.empty())
        set.terms.emplace_back();
    return set.terms.back();
}

void add_number_to_set(Set &set, Part part, double value)
{
    switch (part) {
    case Part::weight:
        set.weight = value;
        break;
    case Part::curve:
        set.curve = static_cast<int>(value);
        break;
    case Part::exponent:
        set.exponent = value;
        break;
    case Part::range:
        set.ranges.push_back({0.0, 0.0, static_cast<int>(value)});
        break;
    case Part::bounds:
        set.ranges.push_back({value, value, 0});
        break;
    case Part::low:
        set.ranges.back().low = value;
        break;
    case Part::high:
        set.ranges.back().high = value;
        break;
    case Part::value:
        if (set.lists.empty())
            set.lists.emplace_back();
        set.lists.back().push_back(value);
        break;
    case Part::list_end:
        set.lists.emplace_back();
        break;
    case Part::window:
        set.window = value;
        break;
    case Part::start:
        set.start = value;
        break;
    case Part::choice:
        set.choice = static_cast<int>(value);
        break;
    case Part::pfield:
        open_term(set).pfield = static_cast<int>(value);
        break;
    case Part::constant:
        open_term(set).number = value;
        break;
    case Part::operation:
        add_operation(set, static_cast<char>(value));
        break;
    case Part::rounding:
        set.rounded = value != 0.0;
        break;
    case Part::seed:
    case Part::deviation:
    case Part::rate:
    case Part::factor:
    case Part::tempo:
    case Part::span:
        break;
    }
}

void number_read(Part part, double value, std::size_t begin, std::size_t end)
{
    if (!now.in_command)
        return;
    Command    &command = commands().back();
    const Place place   = in_section_here(begin, end);
    command.place       = now.piece->source.join(command.place, place);
    switch (part) {
    case Part::seed:
    case Part::deviation:
    case Part::rate:
    case Part::factor:
    case Part::tempo:
        command.numbers.push_back(value);
        return;
    case Part::span:
        command.span       = value;
        command.span_place = place;
        return;
    case Part::weight:
        command.sets.emplace_back().place = place;
        break;
    default:
        break;
    }
    if (command.code == CMD_TE) // its curve is read from the tempo map
        return;
    Set &set  = set_of(command, place);
    set.place = now.piece->source.join(set.place, place);
    add_number_to_set(set, part, value);
}

void add_tempo_change(const Command &command)
{
    const std::size_t index =
        command.numbers.front() == 0.0 || command.numbers.size() == 1 ? 0 : static_cast<std::size_t>(TOT_TEMPOS) - 1;
    const TempoSegment &segment = TEMPO_LIST[index];
    now.piece->tempo.push_back({command.place, segment.stime, segment.etime, segment.stempo, segment.etempo,
                                static_cast<int>(segment.type), static_cast<double>(segment.vcurve)});
}

// lists that were begun for a value that did not come
void drop_empty_lists(Command &command)
{
    for (Set &set : command.sets)
        if (!set.lists.empty() && set.lists.back().empty())
            set.lists.pop_back();
}

void command_read(std::size_t end)
{
    if (!now.in_command)
        return;
    Command &command = commands().back();
    if (end > 0)
        command.place = now.piece->source.join(command.place, in_section_here(end - 1, end));
    drop_empty_lists(command);
    now.in_command = false;
    if (command.code == CMD_TE && !command.numbers.empty())
        add_tempo_change(command);
    if (command.code == CMD_RS) {
        now.piece->sequences.push_back({static_cast<std::int64_t>(command.numbers.front()), command.place});
        now.drawn = 0;
    }
    now.new_source = true;
    if (!command.span && command.code != CMD_HO)
        return;
    command.first = now.in_section ? section().count : 0;
    now.source    = {Kind::generator, commands().size() - 1, {}, 0, 1};
    now.walks     = command.code == CMD_RW;
}

// values

void loop_mark(bool opens, std::size_t column)
{
    const Place place = in_section_here(column, column + 1);
    if (opens) {
        section().loops.push_back({place, section().count});
    } else if (loop_is_open()) {
        Loop &loop = section().loops.back();
        loop.place = now.piece->source.join(loop.place, place);
        close_loop(loop, false);
    }
}

void literal(std::size_t begin, std::size_t end)
{
    if (now.source.kind != Kind::literal)
        now.new_source = true;
    now.source.kind  = Kind::literal;
    now.source.place = in_section_here(begin, end);
}

void repeat_from(Kind kind)
{
    now.source.kind  = kind;
    now.source.of    = now.last_read;
    now.source.cycle = 1;
    now.repeated     = 0;
    now.new_source   = true;
}

void repeat(std::size_t begin, std::size_t end)
{
    repeat_from(Kind::repeat);
    now.source.place = in_section_here(begin, end);
}

void fill(bool by_loop)
{
    section().filled  = true;
    section().by_loop = by_loop;
    section().written = section().count;
    if (loop_is_open())
        close_loop(section().loops.back(), true);
    repeat_from(by_loop ? Kind::loop : Kind::fill);
    if (by_loop && !now.looped.empty()) {
        now.source.of    = now.looped.front();
        now.source.cycle = now.looped.size();
    }
}

void set_chosen(std::size_t set) { now.set = set; }

void refused(std::uint64_t draws)
{
    if (wants_values() && now.in_section)
        now.refused.push_back({section().count, draws_made() - draws, draws});
}

void walked(float position, float low, float high)
{
    now.position    = position;
    now.window_low  = low;
    now.window_high = high;
}

bool follows_each_other(const std::vector<std::uint64_t> &values)
{
    return values.empty() || values.back() - values.front() + 1 == values.size();
}

void begin_run(Section &section)
{
    Run &run       = section.runs.emplace_back();
    run.kind       = now.source.kind;
    run.sequence   = now.piece->sequences.size() - 1;
    run.deviation  = MAX_DEV + MAX_DEV2;
    run.factor     = section.pfield > 2 ? PFACTOR : 1.0F;
    run.first_draw = now.drawn;
    run.places     = section.places.size();
    run.place      = now.source.place;
    run.of         = now.source.of;
    run.cycle      = now.source.cycle;
    run.command    = now.source.command;
    if (run.kind == Kind::loop && !follows_each_other(now.looped))
        run.loop = now.looped;
    now.new_source = false;
}

void count_value(double result)
{
    Section &stored = section();
    ++stored.count;
    if (now.source.kind == Kind::generator)
        ++stored.commands[now.source.command].count;
    if (now.source.kind == Kind::literal || now.source.kind == Kind::generator)
        now.last_read = stored.count - 1;
    if (IN_LOOP && !stored.filled)
        now.looped.push_back(stored.count - 1);
    if (!std::isfinite(result))
        return;
    Statistics &statistics = stored.statistics;
    statistics.least       = statistics.count == 0 ? result : std::min(statistics.least, result);
    statistics.greatest    = statistics.count == 0 ? result : std::max(statistics.greatest, result);
    statistics.sum += result;
    ++statistics.count;
}

// the draws of a value, where a walk's last one is the one that it takes
void take_draws(Section &section, Run &run)
{
    const std::uint64_t made = draws_made() - now.drawn;
    section.draw_counts.push_back(static_cast<std::uint32_t>(made));
    const std::uint64_t deviations = section.pfield == 3 ? 2 : 1;
    if (run.kind == Kind::generator && now.walks && made > deviations + 2)
        now.refused.push_back({section.count, now.drawn + 1, made - deviations - 2});
    section.refused.insert(section.refused.end(), now.refused.begin(), now.refused.end());
    now.refused.clear();
}

void add_value(float value, float deviated, float result)
{
    Section &stored = section();
    now.distinct.add(result);
    if (wants_values()) {
        const bool settings_changed = !stored.runs.empty() && (stored.runs.back().deviation != MAX_DEV + MAX_DEV2 ||
                                                               (stored.pfield > 2 && stored.runs.back().factor != PFACTOR));
        const bool drew_otherwise   = !stored.runs.empty() && now.source.kind != Kind::generator && now.drawn != draws_made() &&
                                    stored.runs.back().sequence != now.piece->sequences.size() - 1;
        if (now.new_source || settings_changed || drew_otherwise)
            begin_run(stored);
        Run &run = stored.runs.back();
        ++run.count;
        stored.read.push_back(value);
        stored.deviated.push_back(deviated);
        stored.result.push_back(result);
        take_draws(stored, run);
        if (run.kind == Kind::literal)
            stored.places.push_back(now.source.place);
        if (run.kind == Kind::generator) {
            run.sets.push_back(static_cast<std::uint8_t>(now.set));
            if (now.walks) {
                run.positions.push_back(now.position);
                run.window_low.push_back(now.window_low);
                run.window_high.push_back(now.window_high);
            }
        }
    }
    count_value(static_cast<double>(result));
    now.drawn = draws_made();
}

void started(Goes goes, float beats, float deviated, float tempo)
{
    if (wants_values()) {
        now.ring.add_start(static_cast<std::uint32_t>(section().count), goes == Goes::beside);
        section().tempo.push_back(tempo);
    }
    add_value(beats, deviated, deviated);
}

void lasted(float value, float deviated, float duration)
{
    if (wants_values())
        now.ring.store_next(static_cast<std::uint32_t>(section().count));
    add_value(value, deviated, duration);
}

void stored(Goes goes, float value, float deviated, float result)
{
    const std::uint64_t index = section().count;
    if (goes == Goes::next) {
        now.chord   = index;
        now.members = 1;
    } else {
        ++now.members;
    }
    if (wants_values()) {
        if (goes == Goes::next)
            now.ring.store_next(static_cast<std::uint32_t>(index));
        else
            now.ring.store_beside(static_cast<std::uint32_t>(index));
    }
    add_value(value, deviated, result);
}

void chord_repeated(Goes goes, bool grows, float value)
{
    if (goes == Goes::next) {
        now.repeated     = 0;
        now.source.of    = now.chord;
        now.source.cycle = now.members;
        if (wants_values() && !section().runs.empty() && !now.new_source) {
            section().runs.back().of    = now.chord;
            section().runs.back().cycle = now.members;
        }
    }
    const std::uint64_t of = now.chord + now.repeated++;
    if (!wants_values()) {
        add_value(value, value, value);
        return;
    }
    const auto index = static_cast<std::uint32_t>(section().count);
    if (goes == Goes::beside)
        now.ring.store_beside(index);
    else if (grows)
        now.ring.grow(index);
    else
        now.ring.store_next(index);
    const auto original = static_cast<std::size_t>(of);
    add_value(section().read[original], section().deviated[original], value);
}

void rest() {}

// what comes of a block

void block_done(std::int32_t pfields)
{
    now.told = 0;
    if (!wants_values()) {
        return;
    }
    Events &events = block().notes.emplace();
    events.values.resize(static_cast<std::size_t>(pfields) - 1);
    events.origins.resize(events.values.size());
    now.ring.put_in_order();
}

void event(float start, float duration, float beat, const float *values, std::size_t count)
{
    if (!wants_values())
        return;
    Events           &events = *block().notes;
    const std::size_t index  = now.told++;
    if (duration <= 0.0F) {
        ++events.rests;
        return;
    }
    ++events.count;
    events.beat.push_back(beat);
    events.beats.push_back(static_cast<float>(static_cast<double>(duration) * find_tempo(beat) / 60.0));
    events.values[0].push_back(start);
    events.values[1].push_back(duration);
    for (std::size_t p = 0; p < count; ++p)
        events.values[p + 2].push_back(values[p]);
    for (std::size_t p = 0; p < events.origins.size(); ++p)
        events.origins[p].push_back(now.ring.origin(index, p + 2));
}

void score_begins(std::uint32_t number)
{
    block().number = number;
    now.piece->score.push_back({"", now.block});
    if (block().notes)
        block().notes->printed.resize(block().notes->values.size());
}

void column(std::int32_t pfield, const char *text, std::size_t length)
{
    if (!block().notes)
        return;
    Column &column = block().notes->printed[static_cast<std::size_t>(pfield) - 2];
    column.text.append(text, length);
    column.lengths.push_back(static_cast<std::uint16_t>(length));
}

void block_written(double duration, double beats, double end)
{
    block().written   = true;
    block().duration  = duration;
    block().last_beat = beats;
    block().end       = end;
}

void score_text(const char *text, std::size_t length)
{
    if (now.recovering)
        return;
    if (now.piece->score.empty() || now.piece->score.back().block != NONE)
        now.piece->score.emplace_back();
    now.piece->score.back().text.append(text, length);
}

// messages

// where something is wrong that is said without a place
Place usual_place()
{
    if (!now.piece->source.has_lines())
        return now.piece->source.last_include();
    if (now.in_section)
        return section().place;
    return now.block != NONE && (now.in_block || !block().written) ? block().place : now.last_place;
}

void message_begins(Severity severity, int number)
{
    Diagnostic &diagnostic = now.piece->diagnostics.emplace_back();
    diagnostic.severity    = severity;
    diagnostic.number      = number;
    diagnostic.place       = usual_place();
    diagnostic.recovered   = now.recovering;
}

void message_text(const char *text, std::size_t length) { now.piece->diagnostics.back().text.append(text, length); }

void add_definition(Diagnostic &diagnostic, const std::map<std::string, std::int32_t, std::less<>> &names, bool of_constant)
{
    const std::int32_t found = find(names, now.macro.name);
    if (found == NONE)
        return;
    const auto index = static_cast<std::size_t>(found);
    diagnostic.related.push_back(
        {"defined here", of_constant ? now.piece->constants[index].place : now.piece->macros[index].name_place});
}

void message_ends()
{
    Diagnostic &diagnostic = now.piece->diagnostics.back();
    if (diagnostic.severity != Severity::error)
        return;
    if (diagnostic.number == DUPLICATE_MACRO)
        add_definition(diagnostic, now.macros, false);
    if (diagnostic.number == DUPLICATE_CONSTANT)
        add_definition(diagnostic, now.constants, true);
    if (diagnostic.number != DUPLICATE_PFIELD || now.block == NONE)
        return;
    for (const Section &earlier : block().sections)
        if (earlier.pfield == P_NO)
            diagnostic.related.push_back({"read here", earlier.place});
}

bool belongs_to_word(char c) { return is_letter(c) || is_digit(c) || c == '_' || c == '.'; }

// behind the line is where its line end stands
Place end_of_line(const char *line)
{
    const std::size_t length = now.piece->source.line().length;
    Place             place  = now.piece->source.place_of(length - std::min<std::size_t>(length, 1), length);
    if (length == 0 || is_blank(line[length - 1]))
        place.end = place.begin;
    else
        place.begin = place.end;
    return place;
}

void message_place(const char *line, std::size_t column)
{
    if (now.piece->diagnostics.empty() || !now.piece->source.has_lines())
        return;
    Diagnostic &diagnostic = now.piece->diagnostics.back();
    if (diagnostic.placed)
        return;
    diagnostic.placed        = true;
    Place            &place  = diagnostic.place;
    const std::size_t length = std::min(now.piece->source.line().length, std::strlen(line));
    if (column >= length || (column + 1 == length && is_blank(line[column]))) {
        place = end_of_line(line);
        return;
    }
    std::size_t end = column + 1;
    while (end < length && belongs_to_word(line[end - 1]) && belongs_to_word(line[end]))
        ++end;
    place = now.piece->source.place_of(column, end);
}

void recovery_begins()
{
    end_section();
    now.in_block   = false;
    now.in_command = false;
    now.recovering = true;
}

// Nothing may leave a function that the run calls: where memory is exhausted, nothing more is gathered.
template <auto function> struct Guarded;
template <class... Arguments, void (*function)(Arguments...)> struct Guarded<function> {
    static void tell(Arguments... arguments)
    {
        if (now.lost)
            return;
        try {
            function(arguments...);
        } catch (const std::bad_alloc &) {
            now.lost = true;
        }
    }
};

constexpr Observer functions = {
    Guarded<include_met>::tell,     Guarded<file_opened>::tell,
    Guarded<file_text>::tell,       Guarded<file_left>::tell,
    Guarded<copy_continues>::tell,  Guarded<line_read>::tell,
    Guarded<call_begins>::tell,     Guarded<argument_taken>::tell,
    Guarded<call_replaced>::tell,   Guarded<definition_begins>::tell,
    Guarded<macro_name>::tell,      Guarded<macro_parameter>::tell,
    Guarded<body_part>::tell,       Guarded<macro_defined>::tell,
    Guarded<macro_undefined>::tell, Guarded<constant_defined>::tell,
    Guarded<constant_used>::tell,   Guarded<condition>::tell,
    Guarded<condition_ends>::tell,  Guarded<equation_drew>::tell,
    Guarded<block_begins>::tell,    Guarded<block_header>::tell,
    Guarded<block_skipped>::tell,   Guarded<block_starts>::tell,
    Guarded<block_ends>::tell,      Guarded<section_begins>::tell,
    Guarded<output_type>::tell,     Guarded<input_type>::tell,
    Guarded<section_ends>::tell,    Guarded<command_begins>::tell,
    Guarded<number_read>::tell,     Guarded<command_read>::tell,
    Guarded<loop_mark>::tell,       Guarded<literal>::tell,
    Guarded<repeat>::tell,          Guarded<fill>::tell,
    Guarded<set_chosen>::tell,      Guarded<refused>::tell,
    Guarded<walked>::tell,          Guarded<started>::tell,
    Guarded<lasted>::tell,          Guarded<stored>::tell,
    Guarded<chord_repeated>::tell,  Guarded<rest>::tell,
    Guarded<block_done>::tell,      Guarded<event>::tell,
    Guarded<score_begins>::tell,    Guarded<column>::tell,
    Guarded<block_written>::tell,   Guarded<score_text>::tell,
    Guarded<message_begins>::tell,  Guarded<message_text>::tell,
    Guarded<message_ends>::tell,    Guarded<message_place>::tell,
    Guarded<recovery_begins>::tell,
};

} // namespace

void start_collecting(Piece &piece, Detail detail)
{
    now        = {};
    now.piece  = &piece;
    now.detail = detail;
}

const Observer &collecting_observer() { return functions; }

void end_collecting()
{
    const bool lost = now.lost;
    if (!lost) {
        end_section();
        now.piece->source.index_files();
    }
    now = {};
    if (lost)
        throw std::bad_alloc{};
}

} // namespace orlo::explain

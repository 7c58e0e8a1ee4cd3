// A value is of what was told last: a literal, a repeat, a generator or a fill. Its draws are those since the value before.

#include "gather/told.h"

#include "base/codes.h"
#include "base/random.h"
#include "events/block.h"
#include "gather/gathering.h"

#include <algorithm>
#include <cmath>

namespace orlo::gather {
namespace {

void repeat_from(Kind kind)
{
    now.source.kind  = kind;
    now.source.of    = now.last_read;
    now.source.cycle = 1;
    now.repeated     = 0;
    now.new_source   = true;
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

// what makes the present value, by the innermost text that is known
Place place_of_value()
{
    if (now.source.kind == Kind::generator)
        return section().commands[now.source.command].place;
    if (now.source.kind == Kind::literal && now.last_value_end > 0)
        return now.last_value;
    return section().place;
}

// of p2
void count_interval(float beats, float deviated, float tempo)
{
    Section &starts = section();
    if (now.source.kind == Kind::generator) {
        Command &command = starts.commands[now.source.command];
        command.seconds += std::fabs(static_cast<double>(beats)) * 60.0 / static_cast<double>(tempo);
        command.beats += static_cast<double>(beats);
        command.slowest = command.count == 0 ? tempo : std::min(command.slowest, tempo);
        command.fastest = std::max(command.fastest, tempo);
        command.longest = std::max(command.longest, std::fabs(static_cast<double>(beats)));
    }
    if (beats < 0.0F && starts.backward++ == 0)
        starts.backward_place = place_of_value();
    if (beats > 0.0F && deviated < 0.0F) {
        starts.deviation = MAX_DEV + MAX_DEV2;
        ++starts.turned;
        starts.furthest = std::min(starts.furthest, deviated);
    }
}

// the event of an interval, in the time of its block
void place_event(float beats, float deviated, float tempo, float beat, float start)
{
    Block     &open    = block();
    const bool another = section().count == 0 || start != now.last_start; // no member of a chord
    now.last_start     = start;
    if (beats < 0.0F || (!another && beats != 0.0F))
        open.steady = false;
    if (!open.steady)
        return;
    if (open.tempo_moves || MAX_DEV + MAX_DEV2 != 0.0F)
        open.moments.push_back({beat, open.reach_time, static_cast<double>(start)});
    open.last_start = beat;
    open.reach      = beat + beats;
    open.reach_time += 60.0 / static_cast<double>(tempo) * static_cast<double>(beats);
    open.reach_start = static_cast<double>(start) + std::fabs(static_cast<double>(deviated));
}

// of p3: what may have been meant as milliseconds
void count_code(float value, float duration)
{
    constexpr float FIRST = 200.0F;
    constexpr float LAST  = 1400.0F;
    if (value < FIRST || value > LAST)
        return;
    std::vector<Coded> &coded   = section().coded;
    const bool          written = now.source.kind == Kind::literal;
    const auto known = std::find_if(coded.begin(), coded.end(), [value](const Coded &each) { return each.value == value; });
    if (known == coded.end() || written) {
        if (coded.size() < MOST_CODED)
            coded.push_back({value, duration, duration, place_of_value(), written});
        return;
    }
    known->least    = std::min(known->least, duration);
    known->greatest = std::max(known->greatest, duration);
    ++known->count;
}

// the next value of a list, not the further members of a chord
void count_item(List &list, float value)
{
    list.begin = list.count == 0 ? now.last_value : list.begin;
    list.rises = list.rises && (list.count == 0 || value >= list.last);
    list.falls = list.falls && (list.count == 0 || value <= list.last);
    list.twice = list.count > 0 && value == list.last && !list.chord;
    list.chord = false;
    list.last  = value;
    ++list.count;
    float *end = list.values + list.distinct;
    if (list.distinct < List::TOLD_APART && std::find(+list.values, end, value) == end)
        list.values[list.distinct++] = value;
}

void count_in_list(float value)
{
    List &list = section().list;
    if (section().filled)
        return;
    if (now.source.kind != Kind::literal) {
        list.unmixed = false;
        return;
    }
    if (now.fused) {
        list.chord = true;
        list.twice = false;
    } else {
        count_item(list, value);
    }
    list.end = now.last_value;
}

// of p4 and up
void count_sounding(float value, float result)
{
    Section &stored = section();
    if (IN_TYPE == TYPE_NO && value < 0.0F) // a rest
        return;
    stored.sounds   = stored.sounding ? std::min(stored.sounds, result) : result;
    stored.sounding = true;
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
    if (stored.output == TYPE_DB && !(result > 0.0) && stored.levels++ == 0)
        stored.level = place_of_value();
    if (!std::isfinite(result)) {
        if (stored.no_numbers++ == 0)
            stored.no_number = place_of_value();
        return;
    }
    Statistics &statistics = stored.statistics;
    statistics.least       = statistics.count == 0 ? result : std::min(statistics.least, result);
    statistics.greatest    = statistics.count == 0 ? result : std::max(statistics.greatest, result);
    statistics.sum += result;
    ++statistics.count;
}

// the draws of a value; of a walk all between the choice of its set and its place came to nothing
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

// whether "rd", "dv" or "pf" have changed since a run began
bool has_other_settings(const Section &section, const Run &run)
{
    return run.deviation != MAX_DEV + MAX_DEV2 || (section.pfield > 2 && run.factor != PFACTOR);
}

// the run that the next value belongs to
Run &open_run(Section &section)
{
    if (now.new_source || section.runs.empty() || has_other_settings(section, section.runs.back()))
        begin_run(section);
    return section.runs.back();
}

void keep_value(Section &section, float value, float deviated, float result)
{
    Run &run = open_run(section);
    ++run.count;
    section.read.push_back(value);
    section.deviated.push_back(deviated);
    section.result.push_back(result);
    take_draws(section, run);
    if (run.kind == Kind::literal)
        section.places.push_back(now.source.place);
    if (run.kind == Kind::generator)
        run.sets.push_back(static_cast<std::uint8_t>(now.set));
    if (run.kind == Kind::generator && now.walks) {
        run.positions.push_back(now.position);
        run.window_low.push_back(now.window_low);
        run.window_high.push_back(now.window_high);
    }
}

void add_value(float value, float deviated, float result)
{
    now.distinct.add(result);
    if (now.source.kind == Kind::generator)
        section().commands[now.source.command].last_value = section().pfield > 3 ? result : value;
    if (wants_values())
        keep_value(section(), value, deviated, result);
    count_in_list(value);
    count_value(static_cast<double>(result));
    now.drawn = draws_made();
}

} // namespace

namespace told {

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
    join_value(begin, end);
    count_cut(end);
    now.fused = IS_FUSED != 0;
    if (now.source.kind != Kind::literal)
        now.new_source = true;
    now.source.kind = Kind::literal;
    if (wants_values())
        now.source.place = in_section_here(begin, end);
    else
        now.last_literal = {begin, end};
}

void repeat(std::size_t begin, std::size_t end)
{
    repeat_from(Kind::repeat);
    now.source.place = in_section_here(begin, end);
    count_cut(end);
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

void covered(float first, float last)
{
    Command &command   = section().commands[now.source.command];
    command.first_beat = first;
    command.last_beat  = last;
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

void started(float beats, float deviated, float tempo, float beat, float start)
{
    if (wants_values()) {
        now.ring.add_start(static_cast<std::uint32_t>(section().count));
        section().tempo.push_back(tempo);
    }
    count_interval(beats, deviated, tempo);
    place_event(beats, deviated, tempo, beat, start);
    add_value(beats, deviated, deviated);
}

void lasted(float value, float deviated, float duration)
{
    if (wants_values())
        now.ring.store_next(static_cast<std::uint32_t>(section().count));
    count_code(value, duration);
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
        if (goes == Goes::next) {
            now.ring.store_next(static_cast<std::uint32_t>(index));
            now.ring.begin_chord();
        } else {
            now.ring.store_beside(static_cast<std::uint32_t>(index));
        }
    }
    count_sounding(value, result);
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

} // namespace told

} // namespace orlo::gather

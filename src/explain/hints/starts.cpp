// A block is late, or early, when its start in seconds is not where another block, which began before it, has that beat. What is
// late itself says nothing about others.

#include "explain/hints/hints.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <tuple>

namespace orlo::explain {
namespace {

constexpr double      HEARD           = 0.02;  // seconds; less is not
constexpr double      THOUSANDTH      = 0.001; // seconds
constexpr std::size_t MOST_REFERENCES = 64;    // blocks that others are compared with

double tempo_time(double beats, double tempo) { return beats * 60.0 / tempo; }

// Seconds at which a block has a beat.
struct Time {
    double even; // without deviations
    double real;
};

// of a beat that the block reaches
Time time_of(const Block &block, float beat)
{
    if (block.moments.empty()) {
        const double time = static_cast<double>(block.seconds) +
                            tempo_time(static_cast<double>(beat - block.start), static_cast<double>(block.tempo));
        return {time, time};
    }
    const auto   earlier = [beat](const Moment &moment) { return moment.beat <= beat; };
    const auto   next    = std::partition_point(block.moments.begin(), block.moments.end(), earlier);
    const auto   seconds = static_cast<double>(block.seconds);
    const Moment begin   = next == block.moments.begin() ? Moment{block.start, seconds, seconds} : *(next - 1);
    const Moment end     = next == block.moments.end() ? Moment{block.reach, block.reach_time, block.reach_start} : *next;
    if (end.beat <= begin.beat)
        return {begin.second, begin.start};
    const double share = static_cast<double>((beat - begin.beat) / (end.beat - begin.beat));
    return {begin.second + share * (end.second - begin.second), begin.start + share * (end.start - begin.start)};
}

// the equation, or the time, that gave a start; null where it is written as a number
const Call *reckoning_of(const Finder &finder, const Place &start)
{
    for (Place place = start; place.call != NONE;) { // to the outermost call
        const Call &call = finder.piece.source.calls()[static_cast<std::size_t>(place.call)];
        if (call.kind == CallKind::equation || call.kind == CallKind::time)
            return &call;
        place = call.place;
    }
    return nullptr;
}

// The tempo of an equation that makes a beat of seconds, "~[SECONDS * TEMPO / 60]"; 0 for any other one.
double tempo_of_equation(std::string_view text)
{
    std::string packed;
    std::copy_if(text.begin(), text.end(), std::back_inserter(packed), [](char c) { return c != ' ' && c != '\t'; });
    constexpr std::string_view END   = "/60]";
    const std::size_t          times = packed.find('*');
    if (!packed.starts_with("~[") || !packed.ends_with(END) || times == std::string::npos ||
        packed.find_first_of("+-*/%", 2) != times)
        return 0.0;
    const std::string tempo = packed.substr(times + 1, packed.size() - END.size() - times - 1);
    return tempo.empty() || tempo.find_first_not_of("0123456789.") != std::string::npos ? 0.0 : std::strtod(tempo.c_str(), nullptr);
}

// A start that was reckoned from seconds lies elsewhere where the tempo at that beat is another one. Whether it is where it should
// be
bool look_at_reckoning(Finder &finder, const Block &block, const Call &call)
{
    const double tempo    = call.kind == CallKind::equation ? tempo_of_equation(text_at(finder, call.place)) : 0.0;
    const double meant    = tempo > 0.0 ? tempo_time(call.value, tempo) : static_cast<double>(block.seconds);
    const double distance = static_cast<double>(block.seconds) - meant;
    if (!(std::fabs(distance) > HEARD))
        return true;
    const std::string beat   = decimal_text(static_cast<double>(block.start));
    const std::string actual = decimal_text(static_cast<double>(block.tempo));
    add(finder, {HintKind::late_block,
                 name_of(finder, block) + " starts " + decimal_text(std::fabs(distance)) + " s " +
                     (distance < 0.0 ? "before" : "after") + " the time that its start is reckoned from",
                 "the equation gives beat " + beat + ", and there the tempo is " + actual + ": " + beat + " * 60 / " + actual +
                     " = " + decimal_text(static_cast<double>(block.seconds)) + " s; at tempo " + decimal_text(tempo) +
                     " it would be " + decimal_text(meant) + " s",
                 call.place,
                 index_of(finder, block),
                 {}});
    return false;
}

struct Reference {
    const Block *block; // null: the tempo map
    double       time;
};

bool is_heard_at(const Block &block, double seconds) { return std::fabs(static_cast<double>(block.seconds) - seconds) <= HEARD; }

// Whether a block begins with another one, or where another one ends: so it has been reckoned without an equation.
bool follows(const std::vector<const Block *> &references, const Block &block)
{
    return std::any_of(references.begin(), references.end(), [&block](const Block *other) {
        return is_heard_at(block, other->reach_time) || is_heard_at(block, other->reach_start) ||
               (other->start > 0.0F && is_heard_at(block, static_cast<double>(other->seconds)));
    });
}

// The seconds at which the start of a block is to be expected: by one of the blocks that have that beat, if there is one.
Reference reference_of(const std::vector<const Block *> &references, const Block &block)
{
    Reference reference{nullptr, block.by_map};
    for (const Block *other : references) {
        if (other->start >= block.start || other->reach < block.start)
            continue;
        const Time time = time_of(*other, block.start);
        if (is_heard_at(block, time.even) || is_heard_at(block, time.real))
            return {other, static_cast<double>(block.seconds)};
        if (reference.block == nullptr)
            reference = {other, time.real};
    }
    return reference;
}

// the end of what was written before a block
double end_before(const Finder &finder, const Block &block)
{
    double end = 0.0;
    for (const Block *other = finder.piece.blocks.data(); other != &block; ++other)
        if (other->written)
            end = std::max(end, other->end);
    return end;
}

// a start that gives the seconds, where the tempo stays from there on
std::vector<Edit> move_start(const Finder &finder, const Block &block, double time)
{
    const double beat = time * static_cast<double>(block.tempo) / 60.0;
    if (!is_plain(block.header.start) || block.start < block.settles || beat < static_cast<double>(block.settles))
        return {};
    const bool        at_the_end = std::fabs(end_before(finder, block) - time) < THOUSANDTH;
    const std::string seconds    = at_the_end ? "@2" : decimal_text(time);
    return {{block.header.start, "~[" + seconds + " * " + decimal_text(static_cast<double>(block.tempo)) + " / 60]"}};
}

std::string reason_of(const Finder &finder, const Block &block, const Reference &reference)
{
    std::string reason = "its start is reckoned at the tempo of that beat alone, " +
                         decimal_text(static_cast<double>(block.tempo)) + ": " + decimal_text(static_cast<double>(block.start)) +
                         " * 60 / " + decimal_text(static_cast<double>(block.tempo)) + " = " +
                         decimal_text(static_cast<double>(block.seconds)) + " s; ";
    if (reference.block != nullptr)
        reason += name_of(finder, *reference.block) + " has beat " + decimal_text(static_cast<double>(block.start)) + " at ";
    else
        reason += "through all tempos before it, beat " + decimal_text(static_cast<double>(block.start)) + " lies at ";
    return reason + decimal_text(reference.time) + " s";
}

// whether it is where it is to be expected
bool look_at_start(Finder &finder, const Block &block, const std::vector<const Block *> &references)
{
    if (block.start <= 0.0F)
        return true;
    if (const Call *call = reckoning_of(finder, block.header.start))
        return look_at_reckoning(finder, block, *call);
    const Reference reference = reference_of(references, block);
    const double    distance  = static_cast<double>(block.seconds) - reference.time;
    if (!std::isfinite(distance) || is_heard_at(block, reference.time) || follows(references, block))
        return true;
    add(finder, {HintKind::late_block,
                 name_of(finder, block) + " starts " + decimal_text(std::fabs(distance)) + " s " +
                     (distance < 0.0 ? "before" : "after") + " beat " + decimal_text(static_cast<double>(block.start)) +
                     (reference.block != nullptr ? " of " + name_of(finder, *reference.block) : " of the tempo map"),
                 reason_of(finder, block, reference), block.header.start, index_of(finder, block),
                 move_start(finder, block, reference.time)});
    return false;
}

// keeps those that reach furthest
void add_reference(std::vector<const Block *> &references, const Block &block)
{
    const auto furthest_first = [](const Block *a, const Block *b) { return a->reach > b->reach; };
    references.insert(std::upper_bound(references.begin(), references.end(), &block, furthest_first), &block);
    if (references.size() > MOST_REFERENCES)
        references.pop_back();
}

} // namespace

void look_at_starts(Finder &finder)
{
    std::vector<const Block *> blocks;
    for (const Block &block : finder.piece.blocks)
        if (block.written)
            blocks.push_back(&block);
    const auto starts_earlier = [](const Block *a, const Block *b) {
        return std::tie(a->start, a->number) < std::tie(b->start, b->number);
    };
    std::sort(blocks.begin(), blocks.end(), starts_earlier);
    std::vector<const Block *> references;
    for (const Block *block : blocks)
        if (look_at_start(finder, *block, references) && block->steady && std::isfinite(block->reach_start))
            add_reference(references, *block);
}

} // namespace orlo::explain

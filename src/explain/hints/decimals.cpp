// Every constant is written with three decimals: what is lost by that is found by writing it, and where a whole number has ended
// within what was written has been told.

#include "explain/hints/hints.h"
#include "input/constants.h"

#include <cmath>
#include <cstdlib>
#include <set>
#include <tuple>

namespace orlo::explain {
namespace {

constexpr double LEAST_LOSS = 0.0001; // of a number, by which it is another
constexpr double LARGE_LOSS = 0.01;   // the same of a start or a length
constexpr double MOST_WHOLE = 1e9;    // that is written with all its digits

std::string written(double value)
{
    char text[FTOA_SIZE];
    return {text, FtoA(text, value)};
}

// whether a number is the same in each run
bool is_fixed(const Finder &finder, const Call &call)
{
    return call.kind == CallKind::constant ||
           (call.kind == CallKind::equation && text_at(finder, call.place).find_first_of("?@") == std::string_view::npos);
}

double loss_of(double value) { return value == 0.0 ? 0.0 : std::fabs(std::strtod(written(value).c_str(), nullptr) / value - 1.0); }

std::string reason_of_loss(double value)
{
    const double fraction = std::fabs(value) - std::floor(std::fabs(value));
    if (std::strtod(written(value).c_str(), nullptr) == 0.0)
        return "a constant is always written with three decimals, so that nothing is left of this one";
    if (fraction >= 0.9995)
        return "a fraction that three decimals round up to a whole is written wrongly";
    return "a constant is always written with three decimals; this one is " + decimal_text(100.0 * loss_of(value), 2) +
           " % off by that";
}

// Calls that are spoken of elsewhere, or lose no more than can be heard: a start or a length, of which there is one.
std::set<std::int32_t> passed_calls(const Finder &finder)
{
    std::set<std::int32_t> passed;
    for (const Cut &cut : finder.piece.cuts)
        passed.insert(cut.call);
    const std::vector<Call> &calls = finder.piece.source.calls();
    for (const Block &block : finder.piece.blocks)
        for (const std::int32_t call : {block.header.start.call, block.header.length.call})
            if (call != NONE && !(loss_of(calls[static_cast<std::size_t>(call)].value) > LARGE_LOSS))
                passed.insert(call);
    return passed;
}

void look_at_losses(Finder &finder)
{
    const std::set<std::int32_t>                                    passed = passed_calls(finder);
    std::set<std::tuple<std::int32_t, std::int32_t, std::uint64_t>> seen; // constants; equations by their places
    const std::vector<Call>                                        &calls = finder.piece.source.calls();
    for (std::size_t i = 0; i < calls.size() && finder.found.size() < MOST_HINTS; ++i) {
        const Call &call = calls[i];
        if (!is_fixed(finder, call) || !std::isfinite(call.value) || !(loss_of(call.value) > LEAST_LOSS) ||
            passed.count(static_cast<std::int32_t>(i)) != 0)
            continue;
        const bool constant = call.kind == CallKind::constant;
        if (!seen.insert({constant ? call.of : NONE, constant ? NONE : call.place.file, constant ? 0 : call.place.begin}).second)
            continue;
        add(finder, {HintKind::three_decimals,
                     quoted(text_at(finder, call.place)) + " is written as " + written(call.value) + ", not as " +
                         decimal_text(call.value, 6),
                     reason_of_loss(call.value),
                     call.place,
                     NONE,
                     {}});
    }
}

// the definition of a constant as that of a macro, where it is a whole number on a line of its own
std::vector<Edit> as_macro(const Finder &finder, const Call &call, const Constant &constant)
{
    const std::string lead = "#const " + constant.name + " ";
    const auto        text = text_at(finder, constant.place);
    if (!is_plain(constant.place) || text_before(finder, constant.place) != lead || call.place.file != constant.place.file ||
        text.find_first_not_of("0123456789") != std::string_view::npos)
        return {};
    const Place whole{constant.place.file, constant.place.begin - lead.size(), constant.place.end, NONE};
    return {{whole, "#define " + constant.name + " #" + std::string{text} + "#"}, {call.place, "$" + constant.name}};
}

// A constant that is used nowhere else becomes a macro, else the number itself is written.
std::vector<Edit> whole_number(const Finder &finder, const Call &call)
{
    if (call.kind == CallKind::constant && call.of != NONE) {
        const Constant &constant = finder.piece.constants[static_cast<std::size_t>(call.of)];
        if (constant.uses.size() < 2)
            return as_macro(finder, call, constant);
    }
    return {{call.place, decimal_text(call.value, 0)}};
}

void look_at_cuts(Finder &finder)
{
    for (const Cut &cut : finder.piece.cuts) {
        const Call       &call = finder.piece.source.calls()[static_cast<std::size_t>(cut.call)];
        const std::string text = written(call.value);
        if (call.place.file == NONE || cut.length >= text.size())
            continue;
        Hint hint{HintKind::decimals_in_whole,
                  quoted(text_at(finder, call.place)) + " is written as " + text + " where a whole number has to stand",
                  "the number ends before " + quoted(std::string_view{text}.substr(cut.length)) +
                      ", which is read for itself; a macro is written as it stands",
                  call.place,
                  cut.block,
                  {}};
        if (is_fixed(finder, call) && call.value == std::floor(call.value) && std::fabs(call.value) < MOST_WHOLE)
            hint.edits = whole_number(finder, call);
        add(finder, std::move(hint));
    }
}

} // namespace

void look_at_decimals(Finder &finder)
{
    look_at_losses(finder);
    look_at_cuts(finder);
}

} // namespace orlo::explain

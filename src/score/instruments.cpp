#include "score/instruments.h"

#include <charconv>
#include <cmath>
#include <utility>

namespace orlo::score {
namespace {

int new_instrument(Instruments &instruments, Score &score, std::string name, std::size_t group)
{
    if (group == instruments.groups)
        ++instruments.groups;
    score.instruments.push_back(std::move(name));
    instruments.group_of.push_back(group);
    return static_cast<int>(score.instruments.size()) - 1;
}

} // namespace

int numbered_instrument(Instruments &instruments, Score &score, double number)
{
    if (number == instruments.last_number)
        return instruments.last_instrument;
    auto known = instruments.numbers.find(number);
    if (known == instruments.numbers.end()) {
        const auto [whole, added] = instruments.wholes.try_emplace(std::trunc(number), static_cast<int>(instruments.groups));
        static_cast<void>(added);
        const int instrument = new_instrument(instruments, score, shortest(number), static_cast<std::size_t>(whole->second));
        known                = instruments.numbers.emplace(number, instrument).first;
    }
    instruments.last_number     = number;
    instruments.last_instrument = known->second;
    return known->second;
}

int named_instrument(Instruments &instruments, Score &score, std::string_view name)
{
    const auto known = instruments.names.find(std::string{name});
    if (known != instruments.names.end())
        return known->second;
    const int instrument = new_instrument(instruments, score, std::string{name}, instruments.groups);
    instruments.names.emplace(name, instrument);
    return instrument;
}

std::size_t group_of(const Instruments &instruments, const Event &event)
{
    return instruments.group_of[static_cast<std::size_t>(event.instrument)];
}

std::string shortest(double number)
{
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, number).ptr};
}

} // namespace orlo::score

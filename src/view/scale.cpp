// A step is the least of 1, 2, 5 times a power of ten that gives few enough ticks. Ticks are counted in steps, as whole numbers:
// adding a step again and again would gather errors, and would never end where the step is less than the values' last digit.
#include "view/scale.h"

#include "base/markup.h"

#include <array>
#include <cmath>
#include <limits>
#include <string_view>

namespace orlo::view {
namespace {

constexpr double MOST_STEPS   = 1e15; // beyond, neighbouring multiples of a step are the same double
constexpr double LOWEST_NAME  = -12;  // keys with names on the axis
constexpr double HIGHEST_NAME = 152;
constexpr int    OCTAVE       = 12;

double width_of(const Range &range) { return range.high - range.low; }

// the least step with at most that many multiples in the range; one of five candidates has few enough, as their tenfold exceeds
// the range's width divided by that many
double nice_step(const Range &range, double width, int most)
{
    const double power = std::pow(10.0, std::floor(std::log10(width / most)));
    for (const double factor : {1.0, 2.0, 5.0, 10.0}) {
        const double step = factor * power;
        if (std::floor(range.high / step) - std::ceil(range.low / step) < most)
            return step;
    }
    return 20 * power;
}

// digits that tell multiples of a step apart; the size is not below the step
int digits_of(double size, double step)
{
    const double digits = std::floor(std::log10(size)) - std::floor(std::log10(step)) + 1;
    return digits > 16 ? 16 : static_cast<int>(digits);
}

// a label of plain digits where that is not too long, else with an exponent
std::string tick_label(double value, double step, double largest)
{
    if (largest >= 1e7 || step < 1e-5)
        return number_text(value, digits_of(std::fmax(std::abs(value), step), step));
    return number_text(value, 15);
}

// pitch classes that are named together, and the least distance between two of them
struct Names {
    unsigned classes; // bit n: pitch class n
    int      distance;
};

constexpr std::array<Names, 5> CHOICES{{
    {0b1111'1111'1111, 1},
    {0b0010'1001'0101, 2}, // C D E G A
    {0b0000'1001'0001, 3}, // C E G
    {0b0000'1000'0001, 5}, // C G
    {0b0000'0000'0001, OCTAVE},
}};

constexpr std::array<const char *, OCTAVE> NAMES{"c", "c#", "d", "d#", "e", "f", "f#", "g", "g#", "a", "a#", "b"};

int pitch_class_of(int key) { return (key % OCTAVE + OCTAVE) % OCTAVE; }

std::string octave_text(int key) { return std::to_string((key - pitch_class_of(key)) / OCTAVE - 1); }

// the keys of a range with these names, in every few octaves
std::vector<Tick> keys_of(const Range &keys, unsigned classes, int octaves)
{
    std::vector<Tick> ticks;
    for (int key = static_cast<int>(std::ceil(keys.low)); key <= keys.high; key++) {
        if (((classes >> static_cast<unsigned>(pitch_class_of(key))) & 1U) != 0 && (octaves == 1 || key % (octaves * OCTAVE) == 0))
            ticks.push_back({static_cast<double>(key), key_name(key)});
    }
    return ticks;
}

} // namespace

double fraction(const Range &range, double value) { return range.low < range.high ? (value - range.low) / width_of(range) : 0.5; }

void include(Range &range, bool &empty, double value)
{
    range = empty ? Range{value, value} : Range{std::fmin(range.low, value), std::fmax(range.high, value)};
    empty = false;
}

std::vector<Tick> nice_ticks(const Range &range, int most)
{
    const double largest = std::fmax(std::abs(range.low), std::abs(range.high));
    const double width   = width_of(range);
    if (width < std::numeric_limits<double>::min() || width < largest / MOST_STEPS)
        return {{range.low, number_text(range.low, 9)}};
    const double      step = nice_step(range, width, most);
    const double      near = step * 1e-9; // an end that misses its tick by a rounding has it
    std::vector<Tick> ticks;
    for (double n = std::ceil((range.low - near) / step); n * step <= range.high + near && static_cast<int>(ticks.size()) < most;
         n++)
        ticks.push_back({n * step, tick_label(n * step, step, largest)});
    return ticks;
}

std::string key_name(int key)
{
    const std::string_view name = NAMES[static_cast<std::size_t>(pitch_class_of(key))];
    return std::string{static_cast<char>(name[0] - 'a' + 'A')} + (name.size() > 1 ? "\u266F" : "") + octave_text(key);
}

bool is_black(int key) { return std::string_view{NAMES[static_cast<std::size_t>(pitch_class_of(key))]}.size() > 1; }

std::string plain_key_name(int key) { return NAMES[static_cast<std::size_t>(pitch_class_of(key))] + octave_text(key); }

std::vector<Tick> key_ticks(const Range &keys, int most)
{
    if (keys.low < LOWEST_NAME || keys.high > HIGHEST_NAME)
        return nice_ticks(keys, most);
    const double least = width_of(keys) / most; // distance
    for (const Names &names : CHOICES) {
        if (names.distance >= least)
            return keys_of(keys, names.classes, 1);
    }
    return keys_of(keys, CHOICES.back().classes, static_cast<int>(std::ceil(least / OCTAVE)));
}

std::string time_text(double time, bool beats)
{
    const std::string number = number_text(time, 7);
    if (beats)
        return number + (time == 1 ? " beat" : " beats");
    if (!(time >= 60 && time < 360'000))
        return number + " s";
    const auto  whole   = static_cast<int>(std::round(time));
    const auto  seconds = std::to_string(whole % 60);
    std::string text    = number + " s (" + std::to_string(whole / 60) + ':' + (seconds.size() < 2 ? "0" : "") + seconds;
    return text + ')';
}

} // namespace orlo::view

// Every event is a letter at its start and small letters as long as it sounds, in a grid of characters: columns are time, rows are
// pitches of one or several semitones, or instruments where there are no pitches. A start covers what sounds on.

#include "view/pictures.h"

#include "base/markup.h"
#include "score/pitch.h"
#include "view/scale.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orlo::view {
namespace {

constexpr int  LETTERS       = 26;
constexpr int  LONGEST_LABEL = 12;
constexpr int  LONGEST_NAME  = 60;
constexpr int  TICK_COLUMNS  = 10; // between two numbers of the axis, at least; few digits tell them apart, so that none is so long
constexpr char OTHERS        = '#'; // an instrument beyond the letters starts
constexpr char OTHERS_SOUND  = '=';
constexpr char SEVERAL       = '*'; // several instruments start
constexpr char SEVERAL_SOUND = '+';
constexpr char EMPTY         = ' ';

struct Roll {
    const Score             &score;
    int                      label_width = 0;
    int                      columns     = 0; // of the grid
    double                   seconds     = 0; // of a column
    bool                     pitched     = false;
    int                      lowest      = 0;     // key of the first row
    int                      step        = 1;     // semitones of a row
    bool                     has_rest    = false; // the lowest row holds what has no pitch, or does not fit
    std::vector<std::string> labels      = {};    // of the rows, the lowest first
    std::vector<std::string> cells       = {};    // the rows
};

// text that can't move the cursor: what does not print becomes "?"
std::string printable(const std::string &text, std::size_t longest)
{
    std::string shown = text.size() > longest ? text.substr(0, longest - 2) + ".." : text;
    for (char &c : shown)
        if (c < 0x20 || c > 0x7e)
            c = '?';
    return shown;
}

char start_of(int instrument) { return instrument < LETTERS ? static_cast<char>('A' + instrument) : OTHERS; }

char sound_of(int instrument) { return instrument < LETTERS ? static_cast<char>('a' + instrument) : OTHERS_SOUND; }

// rows of keys between the lowest and the highest; false when no event has a pitch
bool make_key_rows(Roll &roll, int rows)
{
    double lowest  = HUGE_VAL;
    double highest = -HUGE_VAL;
    for (const Event &event : roll.score.events) {
        const double key = key_of(roll.score, event);
        if (std::isnan(key)) {
            roll.has_rest = true;
            continue;
        }
        lowest  = std::min(lowest, key);
        highest = std::max(highest, key);
    }
    if (lowest > highest)
        return false;
    const int available = rows - (roll.has_rest ? 1 : 0);
    const int first     = static_cast<int>(std::lround(lowest));
    const int span      = static_cast<int>(std::lround(highest)) - first + 1;
    roll.lowest         = first;
    roll.step           = (span + available - 1) / available;
    if (roll.has_rest)
        roll.labels.emplace_back("none");
    for (int key = first; key < first + span; key += roll.step)
        roll.labels.push_back(plain_key_name(key));
    return true;
}

void make_instrument_rows(Roll &roll, int rows)
{
    const std::size_t count = roll.score.instruments.size();
    roll.has_rest           = count > static_cast<std::size_t>(rows);
    const std::size_t shown = roll.has_rest ? static_cast<std::size_t>(rows) - 1 : count;
    if (roll.has_rest)
        roll.labels.emplace_back("others");
    for (std::size_t i = shown; i-- > 0;)
        roll.labels.push_back(printable(roll.score.instruments[i], LONGEST_LABEL));
}

std::size_t row_of(const Roll &roll, const Event &event)
{
    const std::size_t rest = roll.has_rest ? 1 : 0;
    if (roll.pitched) {
        const double key = key_of(roll.score, event);
        return std::isnan(key) ? 0
                               : rest + static_cast<std::size_t>((static_cast<int>(std::lround(key)) - roll.lowest) / roll.step);
    }
    const std::size_t shown      = roll.labels.size() - rest;
    const auto        instrument = static_cast<std::size_t>(event.instrument);
    return instrument < shown ? rest + shown - 1 - instrument : 0;
}

std::size_t column_of(const Roll &roll, double time)
{
    if (roll.seconds <= 0)
        return 0;
    const double column = time / roll.seconds;
    return static_cast<std::size_t>(std::clamp(std::floor(column + 1e-9), 0.0, roll.columns - 1.0));
}

// does a character stand for the start of an event?
bool is_start(char c) { return (c >= 'A' && c <= 'Z') || c == OTHERS || c == SEVERAL; }

void put(char &cell, char letter)
{
    if (cell == EMPTY || (is_start(letter) && !is_start(cell)))
        cell = letter;
    else if (is_start(letter) == is_start(cell) && letter != cell)
        cell = is_start(letter) ? SEVERAL : SEVERAL_SOUND;
}

void draw_event(Roll &roll, const Event &event)
{
    std::string      &row   = roll.cells[row_of(roll, event)];
    const std::size_t first = column_of(roll, event.start);
    const double      end   = roll.seconds > 0 ? std::ceil((event.start + event.duration) / roll.seconds - 1e-9) : 0;
    put(row[first], start_of(event.instrument));
    for (std::size_t column = first + 1; column < row.size() && static_cast<double>(column) < end; ++column)
        put(row[column], sound_of(event.instrument));
}

// 1, 2 or 5 times a power of ten, not below a number above 0
double round_step(double least)
{
    const double power = std::pow(10, std::floor(std::log10(least)));
    for (const double factor : {1.0, 2.0, 5.0})
        if (factor * power >= least)
            return factor * power;
    return 10 * power;
}

// two lines: a mark and its number at every step of time
std::string axis(const Roll &roll)
{
    const std::string margin(static_cast<std::size_t>(roll.label_width) + 1, ' ');
    std::string       marks(static_cast<std::size_t>(roll.columns), '-');
    std::string       numbers;
    const double      step = roll.seconds > 0 ? round_step(roll.seconds * TICK_COLUMNS) : 1;
    for (int tick = 0;; ++tick) { // ends with the columns
        const double column = roll.seconds > 0 ? std::round(tick * step / roll.seconds) : tick * static_cast<double>(roll.columns);
        if (column >= roll.columns)
            break;
        const std::string number                = number_text(tick * step);
        marks[static_cast<std::size_t>(column)] = '+';
        if (column + static_cast<double>(number.size()) > roll.columns)
            continue;
        numbers.resize(static_cast<std::size_t>(column), ' ');
        numbers += number;
    }
    return margin + marks + '\n' + margin + numbers + '\n';
}

std::string time_text(const Score &score)
{
    const std::string number = number_text(score.end);
    return number + (score.beats ? " beat" : " second") + (number == "1" ? "" : "s");
}

std::string heading(const Score &score)
{
    const std::size_t count = score.events.size();
    std::string       text =
        printable(score.title, LONGEST_NAME) + ": " + std::to_string(count) + (count == 1 ? " event, " : " events, ");
    text += time_text(score);
    if (score.pitch_field > 0) {
        const std::string &field = score.field_names[static_cast<std::size_t>(score.pitch_field) - 1];
        const std::string  kind  = pitch_name(score.pitch);
        text += ", pitch in " + field + (field == kind ? "" : " (" + kind + ")");
        text += score.pitches.empty() ? "" : ", differs by instrument";
    }
    return text + "\n";
}

// what the letters stand for, in lines of the roll's width
std::string legend(const Roll &roll, int columns)
{
    std::vector<std::string> items;
    const auto               count  = static_cast<int>(roll.score.instruments.size());
    const auto               exists = [&](char c) {
        return std::any_of(roll.cells.begin(), roll.cells.end(),
                                         [c](const std::string &row) { return row.find(c) != std::string::npos; });
    };
    items.reserve(LETTERS + 3);
    for (int i = 0; i < std::min(count, LETTERS); ++i)
        items.push_back(std::string{start_of(i)} + " " +
                        printable(roll.score.instruments[static_cast<std::size_t>(i)], LONGEST_LABEL));
    if (count > LETTERS)
        items.push_back("# = " + std::to_string(count - LETTERS) + " more");
    if (exists(SEVERAL))
        items.emplace_back("* several start");
    if (exists(SEVERAL_SOUND))
        items.emplace_back("+ several sound");
    std::string text;
    std::string line;
    for (const std::string &item : items) {
        if (!line.empty() && line.size() + 3 + item.size() > static_cast<std::size_t>(columns))
            text += std::exchange(line, "") + "\n";
        line += (line.empty() ? "" : "   ") + item;
    }
    return text + line + "\n";
}

Roll make_roll(const Score &score, int columns, int rows)
{
    Roll roll{score};
    roll.pitched = make_key_rows(roll, rows);
    if (!roll.pitched)
        make_instrument_rows(roll, rows);
    for (const std::string &label : roll.labels)
        roll.label_width = std::max(roll.label_width, static_cast<int>(label.size()));
    roll.columns = columns - roll.label_width - 1;
    roll.seconds = score.end / roll.columns;
    roll.cells.assign(roll.labels.size(), std::string(static_cast<std::size_t>(roll.columns), EMPTY));
    for (const Event &event : score.events)
        draw_event(roll, event);
    return roll;
}

} // namespace

std::string text_roll(const Score &score, int columns, int rows)
{
    if (score.events.empty())
        return printable(score.title, LONGEST_NAME) + ": no events\n";
    const Roll  roll = make_roll(score, columns, rows);
    std::string text = heading(score);
    for (std::size_t row = roll.labels.size(); row-- > 0;) {
        std::string line = roll.labels[row];
        line.resize(static_cast<std::size_t>(roll.label_width), ' ');
        line += '|' + roll.cells[row];
        text.append(line, 0, line.find_last_not_of(EMPTY) + 1) += '\n';
    }
    return text + axis(roll) + legend(roll, columns);
}

} // namespace orlo::view

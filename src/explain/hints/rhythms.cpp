// Rhythms are whole numbers, and what is written otherwise is read as two of them: "4.5" is "4." and "5". Where the first is
// infinite nothing more is read, so that there, and where blanks or slashes part rhythms, the rest of the line is looked at as a
// text.

#include "explain/hints/hints.h"

#include "base/codes.h"

#include <algorithm>
#include <cstdlib>

namespace orlo::explain {
namespace {

bool is_digit(char c) { return c >= '0' && c <= '9'; }

bool is_number(std::string_view text)
{
    if (text.starts_with('+') || text.starts_with('-'))
        text.remove_prefix(1);
    return !text.empty() && std::all_of(text.begin(), text.end(), is_digit);
}

// "4." and "5"
bool is_fraction(std::string_view first, std::string_view second)
{
    return first.ends_with('.') && is_number(first.substr(0, first.size() - 1)) && !second.empty() && is_digit(second[0]) &&
           is_number(second);
}

// "4" and "+8"
bool is_sum(std::string_view first, std::string_view second)
{
    return !first.empty() && (is_digit(first.back()) || first.back() == '.') && second.starts_with('+');
}

using Pair = std::vector<Joined>::const_iterator;

Place both_of(const Joined &joined) { return {joined.first.file, joined.first.begin, joined.second.end, joined.first.call}; }

// "4." is 1.5 beats; 0 for a 0
double beats_of(std::string_view rhythm)
{
    const std::size_t digits = rhythm.find_first_of("0123456789");
    if (digits == std::string_view::npos)
        return 0.0;
    const double number = std::strtod(std::string{rhythm.substr(digits, rhythm.find('.') - digits)}.c_str(), nullptr);
    double       added  = number == 0.0 ? 0.0 : 4.0 / number;
    double       beats  = added;
    for (const char c : rhythm)
        if (c == '.')
            beats += added *= 0.5;
    return beats;
}

bool is_in_generator(const Finder &finder, const Joined &joined)
{
    const Block &block = finder.piece.blocks[static_cast<std::size_t>(joined.block)];
    for (const Section &section : block.sections)
        for (const Command &command : section.commands)
            if (command.span && command.place.file == joined.first.file && command.place.call == joined.first.call &&
                command.place.begin <= joined.first.begin && joined.first.end <= command.place.end)
                return true;
    return false;
}

// a number of beats among rhythms, where nothing that hangs together with it stands beside it
std::vector<Edit> as_beats(const Finder &finder, const Joined &joined)
{
    const Place            place  = both_of(joined);
    const std::string_view ahead  = text_before(finder, place);
    const std::string_view behind = text_behind(finder, place);
    const auto             ends   = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '}'; };
    if (!is_plain(place) || is_in_generator(finder, joined) || (!behind.empty() && !ends(behind[0])) || ahead.ends_with('\'') ||
        ahead.ends_with(':'))
        return {};
    return {{place, "re " + std::string{text_at(finder, place)} + " rh"}};
}

std::string value_of(std::string_view rhythm)
{
    const double beats = beats_of(rhythm);
    return beats == 0.0 ? "0 is none, and makes the interval infinite"
                        : std::string{rhythm} + " is " + decimal_text(beats) + (beats == 1.0 ? " beat" : " beats");
}

enum class Meant { beats, tie };

// whether two rhythms are written as what may be meant
bool is_meant(const Finder &finder, const Joined &joined, Meant meant)
{
    if (joined.input != TYPE_RH || joined.input_of_first != TYPE_RH || joined.block == NONE)
        return false;
    const std::string_view first  = text_at(finder, joined.first);
    const std::string_view second = text_at(finder, joined.second);
    return meant == Meant::beats ? is_fraction(first, second) : is_sum(first, second);
}

std::vector<Edit> as_meant(const Finder &finder, const Joined &joined, Meant meant)
{
    if (meant == Meant::beats)
        return as_beats(finder, joined);
    if (!is_plain(joined.second))
        return {};
    return {{{joined.second.file, joined.second.begin, joined.second.begin + 1, NONE}, ","}};
}

// of all pairs of a section, where each can be mended
std::vector<Edit> mend_pairs(const Finder &finder, Pair begin, Pair end, Meant meant)
{
    std::vector<Edit> edits;
    for (Pair pair = begin; pair != end; ++pair) {
        if (!is_meant(finder, *pair, meant))
            continue;
        const std::vector<Edit> more = as_meant(finder, *pair, meant);
        if (more.empty() || more.front().place.file != begin->first.file)
            return {};
        edits.insert(edits.end(), more.begin(), more.end());
    }
    return edits;
}

void look_at_pairs(Finder &finder, Pair begin, Pair end, Meant meant)
{
    const Pair pair = std::find_if(begin, end, [&](const Joined &joined) { return is_meant(finder, joined, meant); });
    if (pair == end)
        return;
    const Place       place  = both_of(*pair);
    const std::string first  = std::string{text_at(finder, pair->first)};
    const std::string second = std::string{text_at(finder, pair->second)};
    const std::string values = value_of(first) + ", and " + value_of(second);
    add(finder, {HintKind::no_rhythm,
                 '"' + std::string{text_at(finder, place)} + "\" is read as two rhythms, \"" + first + "\" and \"" + second + '"',
                 meant == Meant::beats ? "rhythms are whole numbers, and a point behind one is a dot: " + values
                                       : "the + is the sign of a number: " + values + "; a comma without blanks ties",
                 place, pair->block, mend_pairs(finder, pair, end, meant)});
}

// those of a section follow each other
void look_at_joined(Finder &finder)
{
    const std::vector<Joined> &joined = finder.piece.joined;
    for (Pair begin = joined.begin(); begin != joined.end();) { // each round takes a section
        const auto other = [begin](const Joined &each) { return each.block != begin->block || each.pfield != begin->pfield; };
        const Pair end   = std::find_if(begin, joined.end(), other);
        look_at_pairs(finder, begin, end, Meant::beats);
        look_at_pairs(finder, begin, end, Meant::tie);
        begin = end;
    }
}

struct Word {
    std::string_view text;
    std::uint64_t    at; // from the beginning of the text
};

std::vector<Word> words_of(std::string_view text)
{
    constexpr char    BLANKS[] = " \t\r\n";
    std::vector<Word> words;
    for (std::size_t at = 0; at < text.size();) { // each round moves on
        at                    = std::min(text.find_first_not_of(BLANKS, at), text.size());
        const std::size_t end = std::min(text.find_first_of(BLANKS, at), text.size());
        if (end > at)
            words.push_back({text.substr(at, end - at), at});
        at = end;
    }
    return words;
}

bool ends_section(std::string_view word)
{
    return word.starts_with('}') || (word.size() > 1 && word[0] == 'p' && is_digit(word[1]));
}

bool is_decimal(std::string_view word)
{
    const std::size_t point = word.find('.');
    return point != std::string_view::npos && is_fraction(word.substr(0, point + 1), word.substr(point + 1));
}

// the words of a section from a place on, up to where the next one begins
std::vector<Word> words_from(const Finder &finder, const Place &first, const Place &end, std::string &text)
{
    if (end.file != first.file || end.end <= first.begin)
        return {};
    text                    = without_comments(text_at(finder, {first.file, first.begin, end.end, NONE}));
    std::vector<Word> words = words_of(text);
    const auto        last =
        std::find_if(words.begin(), words.end(), [](const Word &word) { return word.at > 0 && ends_section(word.text); });
    words.erase(last, words.end());
    return words;
}

// every number with a fraction from a place on, where nothing but rhythms follows
std::vector<Edit> decimals_from(const Finder &finder, const Place &first, const Place &end)
{
    const std::string_view ahead = text_before(finder, first);
    std::string            text;
    std::vector<Edit>      edits;
    if (!is_plain(first) || (!ahead.empty() && ahead.back() != ' ' && ahead.back() != '\t'))
        return {};
    for (const Word &word : words_from(finder, first, end, text)) {
        const std::uint64_t at = first.begin + word.at;
        if (is_decimal(word.text))
            edits.push_back({{first.file, at, at + word.text.size(), NONE}, "re " + std::string{word.text} + " rh"});
        else if (word.text.find_first_not_of("0123456789.,+-") != std::string_view::npos)
            return {};
    }
    return edits;
}

// what has made an interval infinite: "0", or the "0." of "0.5"
void look_at_zero(Finder &finder, const Block &block, const Section &section, const Place &end)
{
    const std::string_view zero = text_at(finder, section.no_number);
    if (zero.empty() || zero.find_first_not_of("+-0.") != std::string_view::npos)
        return;
    const std::string_view behind   = text_behind(finder, section.no_number);
    const std::size_t      digits   = std::min(behind.find_first_not_of("0123456789"), behind.size());
    Place                  place    = section.no_number;
    const bool             fraction = is_fraction(zero, behind.substr(0, digits));
    if (fraction)
        place.end += digits;
    const std::string written{text_at(finder, place)};
    const std::string reason = "rhythms are whole numbers from 1 up; 4 beats divided by 0 make an interval without end";
    if (fraction)
        add(finder, {HintKind::no_rhythm, "\"" + written + "\" is read as two rhythms, the first of which is 0", reason, place,
                     index_of(finder, block), decimals_from(finder, place, end)});
    else
        add(finder, {HintKind::no_rhythm, "0 is no rhythm", reason, place, index_of(finder, block), {}});
}

bool has_rhythms(const Section &section)
{
    return std::any_of(section.inputs.begin(), section.inputs.end(), [](const Input &input) { return input.code == TYPE_RH; });
}

// "1/4"
bool is_note_value(std::string_view word)
{
    constexpr std::string_view values[] = {"1/1", "1/2", "1/4", "1/8", "1/16", "1/32", "1/64"};
    return std::find(std::begin(values), std::end(values), word) != std::end(values);
}

void look_at_slashes(Finder &finder, const Block &block, const Section &section, const Place &end)
{
    if (!is_plain(section.place))
        return;
    std::vector<Edit> edits;
    std::string       text;
    std::string       first;
    bool              rhythms = false;
    bool              others  = false; // words with slashes that part values
    for (const Word &word : words_from(finder, section.place, end, text)) {
        if (word.text == "rh" || word.text == "re" || word.text == "in")
            rhythms = word.text == "rh";
        else if (rhythms && is_note_value(word.text)) {
            first                  = first.empty() ? std::string{word.text} : first;
            const std::uint64_t at = section.place.begin + word.at;
            edits.push_back({{section.place.file, at, at + 2, NONE}, ""});
        } else {
            others = others || word.text.find('/') != std::string_view::npos;
        }
    }
    if (edits.empty() || others)
        return;
    const Place at = edits.front().place;
    add(finder, {HintKind::no_rhythm,
                 '"' + first + "\" is read as two rhythms, \"1\" and \"" + first.substr(2) + '"',
                 "a slash parts values: 1 is 4 beats, and " + value_of(std::string_view{first}.substr(2)),
                 {at.file, at.begin, at.begin + first.size(), NONE},
                 index_of(finder, block),
                 std::move(edits)});
}

} // namespace

void look_at_rhythms(Finder &finder)
{
    look_at_joined(finder);
    for (const Block &block : finder.piece.blocks) {
        if (!is_whole(block))
            continue;
        for (std::size_t i = 0; i < block.sections.size(); ++i) {
            const Section &section = block.sections[i];
            if (!has_rhythms(section))
                continue;
            const Place end = end_of_section(finder, block, i);
            look_at_slashes(finder, block, section, end);
            if (section.no_numbers > 0 && !has_hint(finder, HintKind::no_rhythm, block))
                look_at_zero(finder, block, section, end);
        }
    }
}

} // namespace orlo::explain

// Csound gives the program the lines between the two tags, each of which begins its line; line n of it is line n after the opening
// tag.

#include "gather/csd.h"

#include <algorithm>

namespace orlo::gather {
namespace {

constexpr std::string_view DOCUMENT = "<CsoundSynthesizer>";
constexpr std::string_view OPENING  = "<CsScore";
constexpr std::string_view CLOSING  = "</CsScore>";
constexpr std::string_view PROGRAM  = "bin=\"";
constexpr std::string_view BLANKS   = " \t\r";

std::string_view line_at(std::string_view text, std::size_t begin) { return text.substr(begin, text.find('\n', begin) - begin); }

// where the line after the one of a byte begins
std::size_t next_line(std::string_view text, std::size_t at)
{
    const std::size_t end = text.find('\n', at);
    return end == std::string_view::npos ? text.size() : end + 1;
}

std::string_view trimmed(std::string_view line)
{
    const std::size_t begin = std::min(line.find_first_not_of(BLANKS), line.size());
    return line.substr(begin);
}

// program -> [ folder ] "orlo" [ blank options ]
bool names_orlo(std::string_view tag)
{
    const std::size_t at = tag.find(PROGRAM);
    if (at == std::string_view::npos)
        return false;
    std::string_view command     = tag.substr(at + PROGRAM.size());
    command                      = command.substr(0, command.find('"'));
    command                      = command.substr(0, command.find_first_of(BLANKS));
    const std::size_t      slash = command.find_last_of("/\\");
    const std::string_view name  = slash == std::string_view::npos ? command : command.substr(slash + 1);
    return name == "orlo" || name == "orlo.exe";
}

// the line that begins with a tag, from a line on; the text's end when there is none
std::size_t find_tag(std::string_view text, std::size_t from, std::string_view tag)
{
    while (from < text.size() && !trimmed(line_at(text, from)).starts_with(tag))
        from = next_line(text, from);
    return from;
}

} // namespace

bool is_csd(std::string_view text) { return find_tag(text, 0, DOCUMENT) < text.size(); }

std::string find_csd_score(std::string_view text, CsdScore &score)
{
    const std::size_t tag = find_tag(text, find_tag(text, 0, DOCUMENT), OPENING);
    if (tag == text.size())
        return "it has no <CsScore>";
    if (!names_orlo(line_at(text, tag)))
        return "its <CsScore> does not name orlo as its program";
    score.begin = next_line(text, tag);
    score.end   = find_tag(text, static_cast<std::size_t>(score.begin), CLOSING);
    if (score.end == text.size())
        return "its </CsScore> is missing";
    score.line =
        static_cast<std::uint64_t>(std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(score.begin), '\n'));
    return "";
}

} // namespace orlo::gather

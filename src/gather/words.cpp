#include "gather/words.h"

#include "base/distributions.h"
#include "words/curve_letters.h"
#include "words/keywords.h"

#include <cctype>

namespace orlo::gather {
namespace {

constexpr Code generators[] = {CMD_EX, CMD_HO, CMD_MO, CMD_MS, CMD_RA, CMD_RW, CMD_S2, CMD_SE};

bool is_generator(std::int32_t code)
{
    for (const Code generator : generators)
        if (generator == code)
            return true;
    return false;
}

char capital(char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); }

} // namespace

std::string name_of_code(std::int32_t code)
{
    for (const Keyword &keyword : keywords)
        if (keyword.code == code)
            return is_generator(code) ? std::string{capital(keyword.a), capital(keyword.b)} : std::string{keyword.a, keyword.b};
    return "";
}

std::string letter_of_curve(int curve)
{
    for (const CurveLetter &row : curve_letters)
        if (static_cast<int>(row.curve) == curve)
            return {row.letter};
    return "";
}

const char *name_of_severity(Severity severity)
{
    switch (severity) {
    case Severity::error:
        return "error";
    case Severity::warning:
        return "warning";
    case Severity::note:
        break;
    }
    return "note";
}

std::string_view name_of_distribution(int distribution)
{
    switch (static_cast<Range>(distribution)) {
    case Range::uniform:
        return "uniform";
    case Range::low:
        return "low";
    case Range::high:
        return "high";
    case Range::triangular:
        return "triangular";
    case Range::gaussian:
        return "gaussian";
    case Range::bilateral:
        return "bilateral";
    case Range::beta:
        return "beta";
    }
    return "";
}

} // namespace orlo::gather

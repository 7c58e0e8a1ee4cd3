// A line is put together in a buffer that holds the longest line there can be, and written in one piece.

#include "output/score_writer.h"

#include "diag/report.h"
#include "events/timing.h"
#include "lang/iblock.h"
#include "lang/keywords.h"
#include "output/conversions.h"
#include "output/numerics.h"

namespace orlo {
namespace {

constexpr std::size_t LONGEST_COLUMN = 64; // a 32-bit float has at most 39 digits before its point and 7 behind it
constexpr std::size_t LONGEST_LINE   = (MOST_PFIELDS + 1) * LONGEST_COLUMN;

struct Line {
    char  text[LONGEST_LINE];
    char *end;
};

template <typename... Args> void put(Line &line, const char *format, Args... args)
{
    line.end += std::snprintf(line.end, LONGEST_COLUMN, format, args...);
}

// a real number right-aligned in a width, and a blank
void put_real(Line &line, float value, std::int32_t width, std::int32_t decimals)
{
    put(line, "%*.*f ", width, decimals, static_cast<double>(value));
}

void put_pfield(Line &line, float value, std::size_t slot)
{
    switch (OUTS[slot]) {
    case TYPE_RE:
        put_real(line, value, RE_FW[slot] + 6, RE_FW[slot]);
        break;
    case TYPE_IN:
        put(line, "%5d ", Round(value));
        break;
    case TYPE_DB:
        put(line, "%4.1f ", static_cast<double>(amp_to_db(Round(value))));
        break;
    case TYPE_HZ:
        put(line, "%11.5f ", static_cast<double>(cpc_to_hz(value)));
        break;
    case TYPE_OP:
        put(line, "%6.3f ", static_cast<double>(cpc_to_pch(value)));
        break;
    case TYPE_OD:
        put(line, "%4.2f ", static_cast<double>(cpc_to_oct(value)));
        break;
    case TYPE_TR:
        put(line, "%8.6f ", static_cast<double>(st_to_tr(value)));
        break;
    case TYPE_BN:
        put(line, "%5d ", cpc_to_bin(FFT_SZ[slot], value));
        break;
    default: // "xx" leaves its column out
        break;
    }
}

void put_event(Line &line, const Event *event, std::int32_t n)
{
    line.end = line.text;
    put(line, "\ni%d ", I_NO);
    put_real(line, event->start, RE_FW[0] + 5, RE_FW[0]);
    put_real(line, event->dur, RE_FW[1] + 3, RE_FW[1]);
    for (std::int32_t p = 4; p <= n; ++p)
        put_pfield(line, event->pf[p - 4], static_cast<std::size_t>(p - 2));
}

} // namespace

int print_csound(Event *&list, std::FILE *out, std::int32_t n)
{
    if (list == nullptr)
        return 0;
    if (RemoveRests(list) == 0) {
        Mprintf("\n\nOops i-block %d is all rests (check p2=0 and p3 != 400+n OR 1000+n?)! ", I_NO);
        return 0;
    }
    Line         line;
    const Event *event = list;
    do {
        event = event->next;
        put_event(line, event, n);
        std::fwrite(line.text, 1, static_cast<std::size_t>(line.end - line.text), out);
    } while (event != list);
    std::fputc('\n', out);
    return 1;
}

} // namespace orlo

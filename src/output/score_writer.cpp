// Lines are gathered in a buffer that always has room for the longest line there can be, and written many at a time.

#include "output/score_writer.h"

#include "base/conversions.h"
#include "base/number_text.h"
#include "base/numerics.h"
#include "diag/report.h"
#include "events/block.h"
#include "events/pfields.h"

namespace orlo {
namespace {

constexpr std::size_t LONGEST_COLUMN = LONGEST_NUMBER + 2;
constexpr std::size_t LONGEST_LINE   = (MOST_PFIELDS + 1) * LONGEST_COLUMN;
constexpr std::size_t BUFFER_SIZE    = 65536;

static_assert(LONGEST_LINE < BUFFER_SIZE);

// Lines on their way to the score.
struct Lines {
    std::FILE *out;
    char      *end;
    char       text[BUFFER_SIZE];
};

void flush(Lines &lines)
{
    std::fwrite(lines.text, 1, static_cast<std::size_t>(lines.end - lines.text), lines.out);
    lines.end = lines.text;
}

// a number right-aligned in a width, and a blank
void put_column(char *&end, float value, int width, int decimals)
{
    end    = put_real(end, value, width, decimals);
    *end++ = ' ';
}

void put_column(char *&end, std::int32_t value, int width)
{
    end    = put_whole(end, value, width);
    *end++ = ' ';
}

void put_pfield(char *&end, float value, std::size_t slot)
{
    switch (OUTS[slot]) {
    case TYPE_RE:
        put_column(end, value, RE_FW[slot] + 6, RE_FW[slot]);
        break;
    case TYPE_IN:
        put_column(end, Round(value), 5);
        break;
    case TYPE_DB:
        put_column(end, amp_to_db(Round(value)), 4, 1);
        break;
    case TYPE_HZ:
        put_column(end, cpc_to_hz(value), 11, 5);
        break;
    case TYPE_OP:
        put_column(end, cpc_to_pch(value), 6, 3);
        break;
    case TYPE_OD:
        put_column(end, cpc_to_oct(value), 4, 2);
        break;
    case TYPE_TR:
        put_column(end, st_to_tr(value), 8, 6);
        break;
    case TYPE_BN:
        put_column(end, cpc_to_bin(FFT_SZ[slot], value), 5);
        break;
    default: // "xx" leaves its column out
        break;
    }
}

void put_event(Lines &lines, const Event *event, std::int32_t n)
{
    char *end = lines.end;
    *end++    = '\n';
    *end++    = 'i';
    put_column(end, I_NO, 0);
    put_column(end, event->start, RE_FW[0] + 5, RE_FW[0]);
    put_column(end, event->dur, RE_FW[1] + 3, RE_FW[1]);
    for (std::int32_t p = 4; p <= n; ++p)
        put_pfield(end, event->pf[p - 4], static_cast<std::size_t>(p - 2));
    lines.end = end;
    if (static_cast<std::size_t>(end - lines.text) > BUFFER_SIZE - LONGEST_LINE)
        flush(lines);
}

} // namespace

bool print_csound(Event *&list, std::FILE *out, std::int32_t n)
{
    if (list == nullptr)
        return false;
    if (!RemoveRests(list)) {
        Mprintf("\n\nOops i-block %d is all rests (check p2=0 and p3 != 400+n OR 1000+n?)! ", I_NO);
        return false;
    }
    Lines lines;
    lines.out = out;
    lines.end = lines.text;

    const Event *event = list;
    do {
        event = event->next;
        put_event(lines, event, n);
    } while (event != list);
    flush(lines);
    std::fputc('\n', out);
    return true;
}

} // namespace orlo

// Lines are gathered in a buffer that always has room for the longest line there can be, and written many at a time. A value that
// is the same as in the line before takes its text from there: the buffer is emptied when it is nearly full, so that the line
// before is never where the next one comes.

#include "output/score_writer.h"

#include "base/conversions.h"
#include "base/number_text.h"
#include "base/numerics.h"
#include "base/observer.h"
#include "diag/report.h"
#include "events/block.h"
#include "events/pfields.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace orlo {
namespace {

constexpr std::size_t LONGEST_COLUMN = LONGEST_NUMBER + 2;
constexpr std::size_t LONGEST_LINE   = (MOST_PFIELDS + 1) * LONGEST_COLUMN;
constexpr std::size_t BUFFER_SIZE    = 65536;

constexpr std::size_t SHORT_TEXT = 16; // a text up to here is copied as so many bytes

static_assert(2 * LONGEST_LINE < BUFFER_SIZE && SHORT_TEXT < LONGEST_COLUMN);

// The text of a column in the line before.
struct Column {
    float       value;
    const char *text; // null before the first line
    std::size_t length;
};

// Lines on their way to the score.
struct Lines {
    std::FILE *out;
    char      *end;
    Column     columns[MOST_PFIELDS - 1]; // index 0 is p2
    char       head[LONGEST_COLUMN];      // what every line begins with
    char       text[BUFFER_SIZE];
};

void flush(Lines &lines)
{
    if (lines.out != nullptr)
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

void put_value(char *&end, float value, std::size_t slot)
{
    if (slot < 2) { // start and duration are always reals, each in a width of its own
        put_column(end, value, RE_FW[slot] + (slot == 0 ? 5 : 3), RE_FW[slot]);
        return;
    }
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

// appends a text that may stand in the line before
char *copy_text(char *end, const char *text, std::size_t length)
{
    if (length <= SHORT_TEXT)
        std::memmove(end, text, SHORT_TEXT);
    else
        std::memcpy(end, text, length);
    return end + length;
}

void put_pfield(Lines &lines, float value, std::size_t slot)
{
    Column     &column = lines.columns[slot];
    char *const start  = lines.end;
    if (column.text != nullptr && std::bit_cast<std::uint32_t>(column.value) == std::bit_cast<std::uint32_t>(value))
        lines.end = copy_text(start, column.text, column.length);
    else
        put_value(lines.end, value, slot);
    column = {value, start, static_cast<std::size_t>(lines.end - start)};
}

inline void put_event(Lines &lines, const Event *event, std::size_t head_length, std::int32_t n)
{
    lines.end = copy_text(lines.end, lines.head, head_length);
    put_pfield(lines, event->start, 0);
    put_pfield(lines, event->dur, 1);
    for (std::int32_t p = 4; p <= n; ++p)
        put_pfield(lines, event->pf[p - 4], static_cast<std::size_t>(p - 2));
    if (static_cast<std::size_t>(lines.end - lines.text) > BUFFER_SIZE - LONGEST_LINE)
        flush(lines);
}

// the events after one of the ring, up to another
void put_events(Lines &lines, const Event *before, const Event *last, std::size_t head_length, std::int32_t n)
{
    const Event *event = before;
    do {
        event = event->next;
        put_event(lines, event, head_length, n);
    } while (event != last);
}

void tell_columns(const Lines &lines, std::int32_t n)
{
    for (std::int32_t p = 2; p <= n; ++p) {
        const Column &column = lines.columns[p - 2];
        observer->column(p, column.text, column.length);
    }
}

// as put_events, for all of the ring, one after the other
void put_told_events(Lines &lines, const Event *list, std::size_t head_length, std::int32_t n)
{
    const Event *event = list;
    do {
        put_events(lines, event, event->next, head_length, n);
        tell_columns(lines, n);
        event = event->next;
    } while (event != list);
}

} // namespace

bool print_csound(Event *&list, std::FILE *out, std::int32_t n)
{
    if (list == nullptr)
        return false;
    if (!RemoveRests(list)) {
        tell(Severity::warning, "\n\n", "Oops i-block %d is all rests (check p2=0 and p3 != 400+n OR 1000+n?)!", " ", I_NO);
        return false;
    }
    Lines lines;
    lines.out = out;
    lines.end = lines.text;
    std::fill_n(lines.columns, n - 1, Column{});
    char *head_end = lines.head;
    *head_end++    = '\n';
    *head_end++    = 'i';
    put_column(head_end, I_NO, 0);
    const auto head_length = static_cast<std::size_t>(head_end - lines.head);

    if (observer != nullptr && observer->column != nullptr)
        put_told_events(lines, list, head_length, n);
    else if (out != nullptr)
        put_events(lines, list, list, head_length, n);
    *lines.end++ = '\n';
    flush(lines);
    if (observer != nullptr)
        observer->score_text("\n", 1);
    return true;
}

} // namespace orlo

// Path data begins with an absolute move and goes on with relative ones, which are shorter. All coordinates are whole tenths
// before they are subtracted, so that relative moves gather no errors.
//
// In a plan of many events a page could grow without end. Notes are intervals on rows, which are merged; dots are cells of a grid
// of tenths across and pixels down, and cells one above another are merged. So what is written is bounded by the grid, not by the
// events.
#include "view/marks.h"

#include "base/markup.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace orlo::view {
namespace {

constexpr std::int64_t PIXEL        = 10; // tenths
constexpr std::int64_t DOT          = 5;  // tenths between two columns of merged dots
constexpr std::size_t  MANY_A_SLICE = 5000;
constexpr std::size_t  MOST_SLICES  = 32;

struct Span {
    std::int64_t across, from, to; // the coordinate that it has as a whole, and its ends in the other
    friend auto  operator<=>(const Span &, const Span &) = default;
};

// the pen of a path: where it is, and what it has drawn
struct Pen {
    std::string  path;
    std::int64_t x = 0, y = 0;
};

// "-" parts two numbers as well as a blank does
void put_second(std::string &out, std::int64_t number)
{
    if (number >= 0)
        out += ' ';
    put_tenths(out, number);
}

void move_to(Pen &pen, std::int64_t x, std::int64_t y)
{
    const bool first = pen.path.empty();
    pen.path += first ? 'M' : 'm';
    put_tenths(pen.path, first ? x : x - pen.x);
    put_second(pen.path, first ? y : y - pen.y);
    pen.x = x;
    pen.y = y;
}

void draw_h(Pen &pen, std::int64_t length)
{
    pen.path += 'h';
    put_tenths(pen.path, length);
    pen.x += length;
}

void draw_v(Pen &pen, std::int64_t length)
{
    pen.path += 'v';
    put_tenths(pen.path, length);
    pen.y += length;
}

// ends where it began
void draw_box(Pen &pen, std::int64_t x, std::int64_t y, std::int64_t width, std::int64_t height)
{
    move_to(pen, x, y);
    draw_h(pen, width);
    draw_v(pen, height);
    draw_h(pen, -width);
    pen.path += 'z';
    pen.y = y;
}

// things to draw by series and slice of the time
template <class Thing> struct Slices {
    const Plan        &plan;
    std::size_t        count; // slices of a series
    std::vector<Thing> things = std::vector<Thing>(plan.series.size() * count);
};

std::size_t slices_of(const Score &score) { return score.events.size() > MANY_A_SLICE ? MOST_SLICES : 1; }

template <class Thing> Thing &slice_of(Slices<Thing> &slices, const Event &event)
{
    const double part  = fraction(slices.plan.time, event.start);
    const auto   slice = std::min(static_cast<std::size_t>(part * static_cast<double>(slices.count)), slices.count - 1);
    return slices.things[static_cast<std::size_t>(series_of(event)) * slices.count + slice];
}

void add_piece(std::vector<Piece> &pieces, std::size_t series, std::string data)
{
    if (!data.empty())
        pieces.push_back({series, std::move(data)});
}

std::vector<Piece> pieces_of(Slices<Pen> &pens)
{
    std::vector<Piece> pieces;
    for (std::size_t i = 0; i < pens.things.size(); i++)
        add_piece(pieces, i / pens.count, std::move(pens.things[i].path));
    return pieces;
}

// the box of an event's note
struct Box {
    std::int64_t x, y, width, height;
};

Box box_of(const Plan &plan, const Score &score, const Place &place, const Event &event)
{
    const std::int64_t x      = tenths_x(plan, place, event.start);
    const std::int64_t end    = tenths_x(plan, place, event.start + event.duration);
    const std::int64_t height = tenths(plan.note_height);
    return {x, tenths(place.y + note_y(plan, score, event)) - height / 2, std::max<std::int64_t>(end - x, 1), height};
}

void put_attribute(std::string &out, std::string_view name, std::int64_t number)
{
    out += name;
    put_tenths(out, number);
    out += '"';
}

// sorts spans and merges those that touch; calls for nothing where there is one
void merge(std::vector<Span> &spans)
{
    std::sort(spans.begin(), spans.end());
    std::size_t kept = 0;
    for (const Span &span : spans) {
        if (kept > 0 && spans[kept - 1].across == span.across && span.from <= spans[kept - 1].to)
            spans[kept - 1].to = std::max(spans[kept - 1].to, span.to);
        else
            spans[kept++] = span;
    }
    spans.resize(kept);
}

std::string lines_of(std::vector<Span> &spans)
{
    Pen pen;
    merge(spans);
    for (const Span &span : spans) {
        move_to(pen, span.from, span.across);
        draw_h(pen, span.to - span.from);
    }
    return std::move(pen.path);
}

// cells a pixel high; a dot is a line without length
std::string columns_of(std::vector<Span> &spans)
{
    Pen pen;
    merge(spans);
    for (const Span &span : spans) {
        move_to(pen, span.across, span.from);
        draw_v(pen, span.to - span.from - PIXEL);
    }
    return std::move(pen.path);
}

std::vector<Piece> merged_dots(const Plan &plan, const Score &score, const Lane &lane, const Place &place)
{
    Slices<std::vector<Span>> spans{plan, slices_of(score)};
    for (const Event &event : score.events) {
        const double value = field_value(score, event, lane.field);
        if (std::isnan(value))
            continue;
        const std::int64_t y = std::llround(place.y + value_y(lane, value)) * PIXEL;
        const std::int64_t x = (tenths_x(plan, place, event.start) + DOT / 2) / DOT * DOT;
        slice_of(spans, event).push_back({x, y, y + PIXEL});
    }
    std::vector<Piece> pieces;
    for (std::size_t i = 0; i < spans.things.size(); i++)
        add_piece(pieces, i / spans.count, columns_of(spans.things[i]));
    return pieces;
}

} // namespace

std::int64_t tenths_x(const Plan &plan, const Place &place, double time)
{
    return tenths(place.x + fraction(plan.time, time) * place.width);
}

std::vector<std::string> note_elements(const Plan &plan, const Score &score, const Place &place)
{
    std::vector<std::string> elements(plan.series.size());
    for (const Event &event : score.events) {
        const Box    box = box_of(plan, score, place, event);
        std::string &out = elements[static_cast<std::size_t>(series_of(event))];
        put_attribute(out, "<rect x=\"", box.x);
        put_attribute(out, " y=\"", box.y);
        put_attribute(out, " width=\"", box.width);
        put_attribute(out, " height=\"", box.height);
        out += "/>";
    }
    return elements;
}

std::vector<Piece> note_outlines(const Plan &plan, const Score &score, const Place &place)
{
    Slices<Pen> pens{plan, slices_of(score)};
    for (const Event &event : score.events) {
        const Box box = box_of(plan, score, place, event);
        draw_box(slice_of(pens, event), box.x, box.y, box.width, box.height);
    }
    return pieces_of(pens);
}

std::vector<Piece> note_lines(const Plan &plan, const Score &score, const Place &place)
{
    Slices<std::vector<Span>> spans{plan, slices_of(score)};
    for (const Event &event : score.events) {
        const Box box = box_of(plan, score, place, event);
        slice_of(spans, event).push_back({box.y + box.height / 2, box.x, box.x + box.width});
    }
    std::vector<Piece> pieces;
    for (std::size_t i = 0; i < spans.things.size(); i++)
        add_piece(pieces, i / spans.count, lines_of(spans.things[i]));
    return pieces;
}

std::vector<Piece> value_dots(const Plan &plan, const Score &score, const Lane &lane, const Place &place)
{
    if (plan.many)
        return merged_dots(plan, score, lane, place);
    Slices<Pen> pens{plan, slices_of(score)};
    for (const Event &event : score.events) {
        const double value = field_value(score, event, lane.field);
        if (std::isnan(value))
            continue;
        Pen &pen = slice_of(pens, event);
        move_to(pen, tenths_x(plan, place, event.start), tenths(place.y + value_y(lane, value)));
        pen.path += "h0";
    }
    return pieces_of(pens);
}

std::string histogram_bars(const Lane &lane, const Place &place)
{
    const std::size_t most   = *std::max_element(lane.bins.begin(), lane.bins.end());
    const double      height = (LANE_HEIGHT - 2 * LANE_PADDING) / HISTOGRAM_BINS;
    Pen               pen;
    for (std::size_t i = 0; i < HISTOGRAM_BINS; i++) {
        if (lane.bins[i] == 0)
            continue;
        const double       bar    = place.width * static_cast<double>(lane.bins[i]) / static_cast<double>(most);
        const std::int64_t top    = tenths(place.y + LANE_HEIGHT - LANE_PADDING - static_cast<double>(i + 1) * height);
        const std::int64_t bottom = tenths(place.y + LANE_HEIGHT - LANE_PADDING - static_cast<double>(i) * height);
        draw_box(pen, tenths(place.x), top, std::max<std::int64_t>(tenths(bar), PIXEL),
                 std::max<std::int64_t>(bottom - top - 2, 1));
    }
    return std::move(pen.path);
}

} // namespace orlo::view

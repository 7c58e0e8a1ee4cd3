// The page is complete without its script: the script changes which part of the drawing is seen. Each plot holds an svg of its own
// whose width is the whole score's and whose height is in pixels, stretched to the plot's width: so the time axis alone is zoomed,
// and text, which stands outside, is not stretched.
#include "view/pictures.h"

#include "base/json.h"
#include "base/markup.h"
#include "view/axes.h"
#include "view/marks.h"
#include "view/page_files.h"
#include "view/plan.h"
#include "view/summary.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace orlo::view {
namespace {

constexpr double FINE      = 100'000; // width of the drawing, one decimal: a millionth of the whole is seen
constexpr double COARSE    = 1'000;   // the same of a score of many events
constexpr double LABELS    = 58;      // where labels end, in their column of 64
constexpr double BARS      = 76;      // width of a histogram, in its column of 84
constexpr double BARS_LEFT = 8;
constexpr int    TICKS     = 12;

constexpr std::size_t FEW_DOTS = 2000;

double width_of(const Plan &plan) { return plan.many ? COARSE : FINE; }

std::string percent(const Plan &plan, double time) { return pixels(100 * fraction(plan.time, time)) + '%'; }

void put_head(std::string &out, const Score &score)
{
    out += "<!DOCTYPE html>\n<html lang=\"en\" class=\"without-script\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; img-src data:; "
           "style-src 'unsafe-inline'; script-src 'unsafe-inline'\">\n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<link rel=\"icon\" href=\"data:,\">\n<title>";
    out += escaped(score.title);
    out += "</title>\n<style>\n";
    out += PAGE_STYLE;
    out += "</style>\n</head>\n<body>\n";
}

void put_paragraph(std::string &out, const char *text_class, const std::string &text)
{
    if (text.empty())
        return;
    out += "<p class=\"";
    out += text_class;
    out += "\">" + escaped(text) + "</p>\n";
}

void put_header(std::string &out, const Score &score, const Plan &plan)
{
    out += "<header>\n<div>\n<h1>" + escaped(score.title) + "</h1>\n";
    put_paragraph(out, "summary", summary_text(score));
    put_paragraph(out, "soft", left_out_text(plan));
    if (!score.events.empty() && !plan.details)
        put_paragraph(out, "soft", "The numbers of single events are not shown: there are too many.");
    out += "</div>\n";
    if (!score.events.empty())
        out += "<div class=\"tools\" role=\"toolbar\" aria-label=\"View\">\n"
               "<button type=\"button\" id=\"farther\" title=\"key -\">Farther</button>\n"
               "<button type=\"button\" id=\"nearer\" title=\"key +\">Nearer</button>\n"
               "<button type=\"button\" id=\"whole\" title=\"key 0\">Whole</button>\n"
               "<button type=\"button\" id=\"theme\">Dark</button>\n</div>\n";
    out += "</header>\n";
}

void put_troubles(std::string &out, const Score &score)
{
    if (score.troubles.empty())
        return;
    out += "<details class=\"troubles\" open>\n<summary>" + escaped(trouble_text(score)) + "</summary>\n<ol>\n";
    for (const Trouble &trouble : score.troubles) {
        out += "<li>";
        if (trouble.line > 0)
            out += "<b>line " + std::to_string(trouble.line) + ":</b> ";
        out += escaped(trouble.text) + "</li>\n";
    }
    out += "</ol>\n</details>\n";
}

void put_legend(std::string &out, const Plan &plan)
{
    out += "<ul class=\"legend\" aria-label=\"Instruments\">\n";
    for (std::size_t i = 0; i < plan.series.size(); i++)
        out += "<li><button type=\"button\" aria-pressed=\"true\"><svg width=\"14\" height=\"10\" aria-hidden=\"true\"><rect "
               "class=\"" +
               series_classes(i) + "\" x=\".5\" y=\".5\" width=\"13\" height=\"9\"/></svg><span>" + escaped(plan.series[i].name) +
               "</span> <small>" + count_text(plan.series[i].events) + "</small></button></li>\n";
    out += "</ul>\n";
}

void put_time_axis(std::string &out, const Score &score, const Plan &plan)
{
    out += "<div class=\"axis\" aria-hidden=\"true\"><div>";
    out += score.beats ? "beats" : "seconds";
    out += "</div><div class=\"box\"><i></i><svg class=\"labels\" height=\"22\">";
    for (const Tick &tick : nice_ticks(plan.time, TICKS))
        out += "<text class=\"m\" x=\"" + percent(plan, tick.value) + "\" y=\"15\">" + escaped(tick.label) + "</text>";
    out += "</svg></div></div>\n";
}

void put_time_lines(std::string &out, const Plan &plan)
{
    out += "<g class=\"times\">";
    for (const Tick &tick : nice_ticks(plan.time, TICKS)) {
        const std::string x = percent(plan, tick.value);
        out += joined({R"(<line class="g" x1=")", x, R"(" x2=")", x, R"(" y2="100%"/>)"});
    }
    out += "</g>";
}

// the part of a row that is the same in all: button, words, the opening of its box
void put_row_head(std::string &out, const std::string &id, const std::string &name, const std::string &words)
{
    out += "<section class=\"row\" aria-label=\"" + escaped(name) + "\">\n<div class=\"head\"><button type=\"button\" " +
           "aria-expanded=\"true\" aria-controls=\"" + id + "\">" + escaped(name) + "</button>";
    put_paragraph(out, "", words);
    out += "</div>\n<div class=\"box\" id=\"" + id + "\">\n";
}

void put_labels(std::string &out, const std::string &height, const std::string &labels)
{
    out += "<svg class=\"values\" width=\"64\" height=\"" + height + "\" aria-hidden=\"true\">" + labels + "</svg>\n";
}

// the beginning of a plot up to what is drawn of the series
void put_plot_start(std::string &out, const Plan &plan, const std::string &attributes, const std::string &height,
                    const std::string &grid)
{
    out += "<svg class=\"plot\" role=\"img\" height=\"" + height + '"' + attributes + "><g>" + grid + "</g>";
    put_time_lines(out, plan);
    out += "\n<svg class=\"data\" width=\"100%\" height=\"100%\" preserveAspectRatio=\"none\" viewBox=\"0 0 " +
           pixels(width_of(plan)) + ' ' + height + '"';
}

constexpr const char *PLOT_END = "</svg>\n<g class=\"mark\"></g></svg>\n";

void put_path(std::string &out, const Piece &piece, const char *form)
{
    out += "<path class=\"s" + std::to_string(piece.series) + ' ' + series_classes(piece.series) + ' ' + form + "\" d=\"";
    out += piece.data;
    out += "\"/>\n";
}

void put_notes(std::string &out, const Score &score, const Plan &plan)
{
    const Place place{width_of(plan), 0, 0};
    if (plan.many) {
        for (const Piece &piece : note_lines(plan, score, place))
            put_path(out, piece, "l");
        return;
    }
    const auto elements = note_elements(plan, score, place);
    for (std::size_t i = 0; i < elements.size(); i++)
        out += "<g class=\"s" + std::to_string(i) + ' ' + series_classes(i) + "\">" + elements[i] + "</g>\n";
}

void put_roll(std::string &out, const Score &score, const Plan &plan)
{
    const std::string height = pixels(plan.roll_height);
    put_row_head(out, "roll", "Roll", pitch_text(score, plan));
    put_labels(out, height, roll_labels(plan, LABELS));
    put_plot_start(out, plan, " tabindex=\"0\" aria-label=\"Notes over time\"", height, roll_grid(plan, "100%"));
    out += plan.many ? " stroke-width=\"" + pixels(plan.note_height) + "\" stroke-opacity=\".7\">\n" : ">\n";
    put_notes(out, score, plan);
    out += PLOT_END;
    out += "</div>\n</section>\n";
}

void put_lane(std::string &out, const Score &score, const Plan &plan, std::size_t index)
{
    const Lane       &lane   = plan.lanes[index];
    const std::string height = pixels(LANE_HEIGHT);
    const std::string number = std::to_string(index);
    put_row_head(out, "lane-" + number, lane.name, lane_text(lane));
    put_labels(out, height, lane_labels(lane, LABELS));
    put_plot_start(out, plan, " data-lane=\"" + number + "\" aria-label=\"" + escaped(lane.name) + " over time\"", height,
                   lane_grid(lane, "100%"));
    out += plan.many                        ? " stroke-width=\"1.5\" stroke-opacity=\".5\">\n"
           : score.events.size() > FEW_DOTS ? " stroke-width=\"2.5\">\n"
                                            : " stroke-width=\"4\">\n";
    for (const Piece &piece : value_dots(plan, score, lane, {width_of(plan), 0, 0}))
        put_path(out, piece, "d");
    out += PLOT_END;
    out += "<svg width=\"84\" height=\"" + height + "\" role=\"img\" aria-label=\"How often each value of " + escaped(lane.name) +
           " comes\"><path class=\"b\" d=\"" + histogram_bars(lane, {BARS, BARS_LEFT, 0}) + "\"/></svg>\n</div>\n</section>\n";
}

void put_list(std::string &out, const char *name, const std::vector<std::string> &texts)
{
    out += ",\n\"" + std::string(name) + "\":[";
    for (std::size_t i = 0; i < texts.size(); i++) {
        out += i > 0 ? "," : "";
        put_json_text(out, texts[i]);
    }
    out += ']';
}

void put_number(std::string &out, const char *name, double value)
{
    out += ",\"" + std::string(name) + "\":";
    put_json_number(out, value);
}

void put_event(std::string &out, const Score &score, const Plan &plan, const Event &event)
{
    out += '[' + std::to_string(event.line) + ',' + std::to_string(event.instrument);
    const double y = std::round(note_y(plan, score, event) * 10) / 10;
    for (const double value : {event.start, event.duration, y, key_of(score, event)}) {
        out += ',';
        put_json_number(out, value);
    }
    for (int field = 1; field <= event.fields; field++) {
        out += ',';
        put_json_number(out, field_value(score, event, field));
    }
    out += ']';
}

void put_events(std::string &out, const Score &score, const Plan &plan)
{
    out += ",\n\"events\":[";
    for (std::size_t i = 0; plan.details && i < score.events.size(); i++) {
        out += i > 0 ? ",\n" : "\n";
        put_event(out, score, plan, score.events[i]);
    }
    out += ']';
}

// what the script knows of the score
void put_data(std::string &out, const Score &score, const Plan &plan)
{
    out += "<script type=\"application/json\" id=\"score-data\">{\"many\":";
    out += plan.many ? "true" : "false";
    out += score.beats ? ",\"unit\":\"beats\"" : ",\"unit\":\"s\"";
    put_number(out, "low", plan.time.low);
    put_number(out, "high", plan.time.high);
    put_number(out, "width", width_of(plan));
    put_number(out, "noteHeight", plan.note_height);
    put_number(out, "padding", LANE_PADDING);
    put_number(out, "series", static_cast<double>(plan.series.size()));
    put_list(out, "names", score.field_names);
    std::vector<std::string> names;
    if (plan.details)
        std::transform(score.instruments.begin(), score.instruments.end(), std::back_inserter(names), instrument_name);
    put_list(out, "instruments", names);
    out += ",\n\"lanes\":[";
    for (std::size_t i = 0; i < plan.lanes.size(); i++) {
        out += i > 0 ? ",{\"field\":" : "{\"field\":";
        out += std::to_string(plan.lanes[i].field);
        put_number(out, "low", plan.lanes[i].range.low);
        put_number(out, "high", plan.lanes[i].range.high);
        out += '}';
    }
    out += ']';
    put_events(out, score, plan);
    out += "}</script>\n";
}

void put_drawing(std::string &out, const Score &score, const Plan &plan)
{
    put_legend(out, plan);
    put_paragraph(
        out, "help",
        "The wheel zooms, dragging moves, a double click shows the whole. A click on an instrument or a heading hides it, "
        "with Shift it shows an instrument alone.");
    out += "<main>\n";
    put_time_axis(out, score, plan);
    put_roll(out, score, plan);
    for (std::size_t i = 0; i < plan.lanes.size(); i++)
        put_lane(out, score, plan, i);
    out += "</main>\n<div id=\"tip\" role=\"tooltip\" hidden></div>\n";
    put_data(out, score, plan);
    out += "<script>\n";
    out += PAGE_SCRIPT;
    out += "</script>\n";
}

} // namespace

std::string html_page(const Score &score)
{
    const Plan  plan = plan_of(score);
    std::string out;
    put_head(out, score);
    put_header(out, score, plan);
    put_troubles(out, score);
    if (score.events.empty())
        out += "<p>There are no events to draw.</p>\n";
    else
        put_drawing(out, score, plan);
    out += "</body>\n</html>\n";
    return out;
}

} // namespace orlo::view

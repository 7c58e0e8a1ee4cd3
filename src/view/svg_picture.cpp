// One column of boxes: words, legend, roll, lanes, each as high as its plan says, so that a box's top is the sum of those above.
#include "view/pictures.h"

#include "base/markup.h"
#include "view/axes.h"
#include "view/marks.h"
#include "view/plan.h"
#include "view/summary.h"

#include <cmath>

namespace orlo::view {
namespace {

constexpr double WIDTH     = 960;
constexpr double LEFT      = 76;  // labels at the left of the plots
constexpr double PLOT      = 780; // width of the plots
constexpr double BARS      = 72;  // width of a histogram
constexpr double BARS_LEFT = LEFT + PLOT + 12;
constexpr double LINE      = 18; // a line of words
constexpr double TOP       = 58; // title and summary
constexpr double GAP       = 10;
constexpr double AXIS      = 22; // height of the time axis' labels
constexpr double LETTER    = 6.4;
constexpr double NARROW    = 28; // space around a name in the legend
constexpr int    TICKS     = 12;

constexpr std::size_t LEGEND_LETTERS = 24;
constexpr std::size_t TITLE_LETTERS  = 80;
constexpr std::size_t FEW_DOTS       = 2000;

constexpr const char *STYLE =
    "text{font:11px system-ui,'Segoe UI','DejaVu Sans',sans-serif;fill:#3d454e}"
    ".h{font-size:16px;font-weight:600;fill:#1b1f24}.n{font-weight:600;fill:#1b1f24}.t{text-anchor:end}.m{text-anchor:middle}"
    ".g{stroke:#e4e7eb}.G{stroke:#c5cad1}.k{fill:#f4f5f7}.b{fill:#8a939e}.f{fill:none;stroke:#c5cad1}"
    ".c0{fill:#103bd3;stroke:#103bd3}.c1{fill:#e77400;stroke:#e77400}.c2{fill:#6c0030;stroke:#6c0030}"
    ".c3{fill:#249cc0;stroke:#249cc0}.c4{fill:#628cff;stroke:#628cff}.c5{fill:#2c2c74;stroke:#2c2c74}"
    ".c6{fill:#6e4200;stroke:#6e4200}.c7{fill:#e3726a;stroke:#e3726a}"
    ".y0{fill-opacity:.5}.y1{fill-opacity:.06}.d,.l{fill:none}.d{stroke-linecap:round}.d.y1{stroke-linecap:square}";

std::string text_at(double x, double y, const std::string &text_class, const std::string &text)
{
    const std::string named = text_class.empty() ? "" : " class=\"" + text_class + '"';
    return "<text" + named + " x=\"" + pixels(x) + "\" y=\"" + pixels(y) + "\">" + escaped(text) + "</text>\n";
}

std::string moved(double x, double y, const std::string &elements)
{
    return elements.empty() ? "" : "<g transform=\"translate(" + pixels(x) + ' ' + pixels(y) + ")\">" + elements + "</g>\n";
}

std::string path_of(const std::string &classes, const std::string &data)
{
    return data.empty() ? "" : "<path class=\"" + classes + "\" d=\"" + data + "\"/>\n";
}

// moves y below the words
std::string heading(const Score &score, const Plan &plan, double &y)
{
    std::string line = summary_text(score);
    for (const std::string &more : {pitch_text(score, plan), trouble_text(score)})
        line += joined({more.empty() ? "" : "; ", more});
    std::string out = text_at(GAP, 24, "h", shortened(score.title, TITLE_LETTERS)) + text_at(GAP, 44, "", line);
    if (const std::string less = left_out_text(plan); !less.empty()) {
        out += text_at(GAP, 44 + LINE, "", less);
        y += LINE;
    }
    return out;
}

// adds the instruments' names below y, in as many lines as they need, and moves y below them
std::string legend(const Plan &plan, double &y)
{
    std::string out;
    double      x = GAP;
    for (std::size_t i = 0; i < plan.series.size(); i++) {
        const std::string name  = shortened(plan.series[i].name, LEGEND_LETTERS) + " (" + count_text(plan.series[i].events) + ')';
        const double      width = NARROW + LETTER * static_cast<double>(name.size());
        if (x > GAP && x + width > WIDTH - GAP) {
            x = GAP;
            y += LINE;
        }
        out += "<rect class=\"" + series_classes(i) + "\" x=\"" + pixels(x) + "\" y=\"" + pixels(y + 3) +
               "\" width=\"12\" height=\"9\"/>" + text_at(x + 17, y + 11, "", name);
        x += width;
    }
    y += LINE + GAP;
    return out;
}

std::string frame(double y, double height)
{
    return "<rect class=\"f\" x=\"" + pixels(LEFT) + "\" y=\"" + pixels(y) + "\" width=\"" + pixels(PLOT) + "\" height=\"" +
           pixels(height) + "\"/>\n";
}

std::string time_lines(const Plan &plan, double y, double height)
{
    std::string out;
    for (const Tick &tick : nice_ticks(plan.time, TICKS)) {
        const std::string x = pixels(LEFT + fraction(plan.time, tick.value) * PLOT);
        out +=
            joined({R"(<line class="g" x1=")", x, R"(" y1=")", pixels(y), R"(" x2=")", x, R"(" y2=")", pixels(y + height), "\"/>"});
    }
    return out + '\n';
}

std::string time_labels(const Score &score, const Plan &plan, double y)
{
    std::string out = text_at(LEFT + PLOT + GAP, y + 15, "", score.beats ? "beats" : "seconds");
    for (const Tick &tick : nice_ticks(plan.time, TICKS))
        out += text_at(LEFT + fraction(plan.time, tick.value) * PLOT, y + 15, "m", tick.label);
    return out;
}

std::string roll(const Score &score, const Plan &plan, double y)
{
    const Place       place{PLOT, LEFT, y};
    const auto        pieces = plan.many ? note_lines(plan, score, place) : note_outlines(plan, score, place);
    const std::string form   = plan.many ? " l" : "";
    std::string       out    = moved(LEFT, y, roll_grid(plan, pixels(PLOT))) + time_lines(plan, y, plan.roll_height) +
                      moved(0, y, roll_labels(plan, LEFT - 6)) + "<g stroke-width=\"" +
                      (plan.many ? pixels(plan.note_height) + "\" stroke-opacity=\".7" : "0.8") + "\">\n";
    for (const Piece &piece : pieces)
        out += path_of(series_classes(piece.series) + form, piece.data);
    return out + "</g>\n" + frame(y, plan.roll_height);
}

std::string lane(const Score &score, const Plan &plan, const Lane &lane, double y)
{
    const auto   pieces = value_dots(plan, score, lane, {PLOT, LEFT, y});
    const double dot    = plan.many ? 1.2 : score.events.size() > FEW_DOTS ? 2.2 : 3.2;
    std::string  out    = "<text x=\"" + pixels(LEFT) + "\" y=\"" + pixels(y - 5) + "\"><tspan class=\"n\">" + escaped(lane.name) +
                      "</tspan>  " + escaped(lane_text(lane)) + "</text>\n" + moved(LEFT, y, lane_grid(lane, pixels(PLOT))) +
                      time_lines(plan, y, LANE_HEIGHT) + moved(0, y, lane_labels(lane, LEFT - 6)) + "<g stroke-width=\"" +
                      pixels(dot) + (plan.many ? "\" stroke-opacity=\".5\">\n" : "\">\n");
    for (const Piece &piece : pieces)
        out += path_of("d " + series_classes(piece.series), piece.data);
    return out + "</g>\n" + frame(y, LANE_HEIGHT) + path_of("b", histogram_bars(lane, {BARS, BARS_LEFT, y}));
}

// everything below the heading; y is moved to the bottom
std::string body(const Score &score, const Plan &plan, double &y)
{
    std::string out = legend(plan, y);
    out += roll(score, plan, y);
    y += plan.roll_height;
    out += time_labels(score, plan, y);
    y += AXIS;
    for (const Lane &each : plan.lanes) {
        y += LINE + GAP;
        out += lane(score, plan, each, y);
        y += LANE_HEIGHT;
    }
    out += time_labels(score, plan, y); // there is a lane: p3 has one
    y += AXIS;
    return out;
}

} // namespace

std::string svg_picture(const Score &score)
{
    const Plan  plan    = plan_of(score);
    double      y       = TOP;
    std::string content = heading(score, plan, y);
    if (!score.events.empty())
        content += body(score, plan, y);
    const std::string width  = pixels(WIDTH);
    const std::string height = pixels(std::round(y + GAP));
    const std::string size   = "width=\"" + width + "\" height=\"" + height + '"';
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" " + size + " viewBox=\"0 0 " + width + ' ' + height + "\">\n<title>" +
           escaped(score.title) + "</title>\n<style>" + STYLE + "</style>\n<rect " + size + " fill=\"#fff\"/>\n" + content +
           "</svg>\n";
}

} // namespace orlo::view

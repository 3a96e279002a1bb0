#include "plot.h"

#include "failure.h"
#include "number_text.h"
#include "plot_canvas.h"
#include "plot_geometry.h"
#include "plot_marks.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <functional>

namespace esttform::app {

namespace {

// Sizes in points of 1/72 inch.
constexpr double PLOT_MAX_WIDTH = 680.0, PLOT_MAX_HEIGHT = 600.0;
constexpr double PLOT_MIN_WIDTH = 440.0, PLOT_MIN_HEIGHT = 160.0;
constexpr double RIGHT_MARGIN = 20.0, TOP_MARGIN = 50.0;
constexpr double AXIS_LABEL_WIDTH = 30.0;                ///< left of the tick labels
constexpr double AXIS_HEIGHT = 40.0;
constexpr double LEGEND_LINE_HEIGHT = 17.0, LEGEND_SAMPLE_WIDTH = 34.0, LEGEND_GAP = 18.0, BOTTOM_MARGIN = 10.0;
constexpr double TITLE_SIZE = 13.0, TEXT_SIZE = 10.5, TICK_SIZE = 9.5;
constexpr double TICK_LENGTH = 4.0, TICK_SPACING = 75.0;

constexpr double OUTLINE_WIDTH = 1.8, HALO_WIDTH = 3.4, FIRST_OUTLINE_WIDTH = 1.2;
constexpr double FIRST_OUTLINE_DASHES[] = {6.0, 3.0};

/// Where the plane lies on the page.
struct Frame {
    PlotBox view;
    double left, top, width, height, scale;
    std::vector<double> xTicks, yTicks;

    PlotPoint at(double x, double y) const noexcept
    {
        return {left + (x - view.left) * scale, top + (y - view.top) * scale};
    }
};

/// Text of one of the ticks, with the digits behind the point that tell neighbours apart.
std::string tickText(double tick, const std::vector<double>& ticks)
{
    const double step = ticks.size() > 1 ? ticks[1] - ticks[0] : 1.0;
    if (std::fabs(tick) >= 1e6 || step < 1e-4)
        return fmt::format("{:.6g}", tick);
    return fmt::format("{:.{}f}", tick, step >= 1.0 ? 0 : static_cast<int>(std::ceil(-std::log10(step) - 1e-9)));
}

/// Fits a view into the page with one scale for x and y; a view too slim for the page is widened about its middle.
Frame frameOf(PlotBox view, PlotCanvas& measure)
{
    const double scale = std::min(PLOT_MAX_WIDTH / view.width(), PLOT_MAX_HEIGHT / view.height());
    const double width = std::max(view.width() * scale, PLOT_MIN_WIDTH);
    const double height = std::max(view.height() * scale, PLOT_MIN_HEIGHT);
    const double dx = 0.5 * (width / scale - view.width()), dy = 0.5 * (height / scale - view.height());
    view = {view.left - dx, view.top - dy, view.right + dx, view.bottom + dy};
    const auto tickNum = [](double length) { return std::max(2, static_cast<int>(length / TICK_SPACING)); };
    Frame frame{view, AXIS_LABEL_WIDTH, TOP_MARGIN, width, height, scale,
                ticksOf(view.left, view.right, tickNum(width)), ticksOf(view.top, view.bottom, tickNum(height))};
    double labelWidth = 0.0;
    measure.setFont(TICK_SIZE, false);
    for (const double tick : frame.yTicks)
        labelWidth = std::max(labelWidth, measure.textWidth(tickText(tick, frame.yTicks)));
    frame.left += labelWidth;
    return frame;
}

/// A text that the drawing library takes: valid UTF-8.
std::string validText(const std::string& text)
{
    using nlohmann::json;
    return json::parse(json(text).dump(-1, ' ', false, json::error_handler_t::replace)).get<std::string>();
}

/// A text cut so that it fits.
std::string fitted(const PlotCanvas& canvas, std::string text, double width)
{
    const auto isContinuation = [](char c) { return (static_cast<unsigned char>(c) & 0xc0) == 0x80; };
    if (canvas.textWidth(text) <= width)
        return text;
    while (!text.empty() && canvas.textWidth(text + "...") > width) {
        while (!text.empty() && isContinuation(text.back()))
            text.pop_back();
        if (!text.empty())
            text.pop_back();
    }
    return text + "...";
}

void drawTitle(PlotCanvas& canvas, const Frame& frame, const PlotScene& scene, const std::string& inputName,
               const std::string& typeText)
{
    const auto pairNum = static_cast<std::int64_t>(scene.pairs.size());
    const auto inlierNum = std::count(scene.inliers.begin(), scene.inliers.end(), 1);
    std::string title = counted(pairNum, "pair");
    if (!scene.inliers.empty())
        title = fmt::format("{} of {} are inliers ({:.1f} %)", inlierNum, title,
                            100.0 * static_cast<double>(inlierNum) / static_cast<double>(pairNum));
    std::string subtitle = scene.map ? fmt::format("{} transformation", typeText)
                                     : fmt::format("no {} transformation found", typeText);
    if (scene.step.frame)
        subtitle += fmt::format(", step {} (frame {})", scene.step.step, *scene.step.frame);
    subtitle += ", " + validText(std::filesystem::path(inputName).filename().string());

    cairo_set_source_rgb(canvas.context(), 0.0, 0.0, 0.0);
    canvas.setFont(TITLE_SIZE, true);
    canvas.drawText(title, frame.left, frame.top - 26.0);
    canvas.setFont(TEXT_SIZE, false);
    canvas.drawText(fitted(canvas, subtitle, frame.width), frame.left, frame.top - 10.0);
}

void drawAxes(PlotCanvas& canvas, const Frame& frame)
{
    cairo_t* const cr = canvas.context();
    cairo_set_source_rgb(cr, 0.2, 0.2, 0.2);
    cairo_set_line_width(cr, 0.8);
    canvas.setFont(TICK_SIZE, false);
    for (const double tick : frame.xTicks) {
        const double x = frame.at(tick, 0.0)[0], y = frame.top + frame.height;
        cairo_move_to(cr, x, y);
        cairo_line_to(cr, x, y + TICK_LENGTH);
        cairo_stroke(cr);
        canvas.drawText(tickText(tick, frame.xTicks), x, y + TICK_LENGTH + 11.0, 0.5);
    }
    for (const double tick : frame.yTicks) {
        const double y = frame.at(0.0, tick)[1];
        cairo_move_to(cr, frame.left, y);
        cairo_line_to(cr, frame.left - TICK_LENGTH, y);
        cairo_stroke(cr);
        canvas.drawText(tickText(tick, frame.yTicks), frame.left - TICK_LENGTH - 3.0, y + 3.4, 1.0);
    }
    cairo_rectangle(cr, frame.left, frame.top, frame.width, frame.height);
    cairo_stroke(cr);
    canvas.setFont(TEXT_SIZE, false);
    canvas.drawText("x, point units", frame.left + 0.5 * frame.width, frame.top + frame.height + 31.0, 0.5);
    cairo_save(cr);
    cairo_translate(cr, 14.0, frame.top + 0.5 * frame.height);
    cairo_rotate(cr, -std::acos(0.0));
    canvas.drawText("y, point units", 0.0, 0.0, 0.5);
    cairo_restore(cr);
}

void traceOutline(cairo_t* cr, const Frame& frame, const Polyline& outline)
{
    // Far parts are cut to what the drawing library can hold; the clip hides the cut.
    constexpr double FAR = 1e4;
    cairo_new_sub_path(cr);
    for (const PlotPoint& p : outline) {
        const PlotPoint q = frame.at(p[0], p[1]);
        cairo_line_to(cr, std::clamp(q[0], -FAR, FAR), std::clamp(q[1], -FAR, FAR));
    }
}

void strokeFirstOutline(cairo_t* cr)
{
    cairo_set_source_rgb(cr, 0.0, 0.0, 0.0);
    cairo_set_line_width(cr, FIRST_OUTLINE_WIDTH);
    cairo_set_dash(cr, FIRST_OUTLINE_DASHES, 2, 0.0);
    cairo_stroke(cr);
    cairo_set_dash(cr, nullptr, 0, 0.0);
}

void strokeCarriedOutline(cairo_t* cr)
{
    cairo_set_source_rgb(cr, 1.0, 1.0, 1.0);
    cairo_set_line_width(cr, HALO_WIDTH);
    cairo_stroke_preserve(cr);
    cairo_set_source_rgb(cr, 0.0, 0.0, 0.0);
    cairo_set_line_width(cr, OUTLINE_WIDTH);
    cairo_stroke(cr);
}

/// One entry of the legend: a sample that is drawn about (0, 0), LEGEND_SAMPLE_WIDTH wide, and a text.
struct LegendEntry {
    std::string text;
    std::function<void(cairo_t*)> drawSample;
    bool isOnNewLine = false;
};

std::vector<LegendEntry> legendOf(const PlotScene& scene, const MatchMarks& marks)
{
    const auto line = [](void (*stroke)(cairo_t*)) {
        return [stroke](cairo_t* cr) {
            cairo_move_to(cr, -0.5 * LEGEND_SAMPLE_WIDTH + 4.0, 0.0);
            cairo_line_to(cr, 0.5 * LEGEND_SAMPLE_WIDTH - 4.0, 0.0);
            stroke(cr);
        };
    };
    std::vector<LegendEntry> entries;
    for (const MarkClass* const markClass : marks.classes())
        if (markClass->pairNum > 0)
            entries.push_back({markClass->legendText(),
                               [markClass, &marks](cairo_t* cr) { marks.drawSample(cr, *markClass, LEGEND_SAMPLE_WIDTH - 8.0); }, false});
    if (scene.map) {
        entries.push_back({"box of the first points", line(strokeFirstOutline), true});
        entries.push_back({"the box carried over by the transformation", line(strokeCarriedOutline), false});
    }
    if (marks.leftOutNum() > 0)
        entries.push_back({fmt::format("{} not finite or far outside, not drawn", counted(marks.leftOutNum(), "pair")), {}, false});
    return entries;
}

/// Lays the legend out in lines. @return its height
double drawLegend(PlotCanvas& canvas, const std::vector<LegendEntry>& entries, double left, double top, double width, bool isDrawn)
{
    canvas.setFont(TEXT_SIZE, false);
    double x = left, y = top + 0.5 * LEGEND_LINE_HEIGHT;
    for (const LegendEntry& entry : entries) {
        const double sampleWidth = entry.drawSample ? LEGEND_SAMPLE_WIDTH : 0.0;
        const double entryWidth = sampleWidth + canvas.textWidth(entry.text);
        if (x > left && (entry.isOnNewLine || x + entryWidth > left + width)) {
            x = left;
            y += LEGEND_LINE_HEIGHT;
        }
        if (isDrawn) {
            cairo_t* const cr = canvas.context();
            cairo_save(cr);
            cairo_translate(cr, x + 0.5 * LEGEND_SAMPLE_WIDTH - 4.0, y);
            if (entry.drawSample)
                entry.drawSample(cr);
            cairo_restore(cr);
            cairo_set_source_rgb(cr, 0.0, 0.0, 0.0);
            canvas.drawText(entry.text, x + sampleWidth, y + 3.8);
        }
        x += entryWidth + LEGEND_GAP;
    }
    return y + 0.5 * LEGEND_LINE_HEIGHT - top;
}

}  // namespace

PlotFormat plotFormatOf(const std::string& path)
{
    std::string extension = std::filesystem::path(path).extension().string();
    for (char& c : extension)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    if (extension == ".svg")
        return PlotFormat::Svg;
    if (extension == ".png")
        return PlotFormat::Png;
    if (extension == ".pdf")
        return PlotFormat::Pdf;
    throw Failure(fmt::format("--plot: got {}, expected a name that ends in .svg, .png or .pdf", inQuotes(path)));
}

std::string renderPlot(const PlotScene& scene, const std::string& inputName, const std::string& typeText, PlotFormat format)
{
    const PlotBox firstBox = boxOfSet(scene.pairs, 0);
    const std::vector<Polyline> carried = scene.map ? carriedOutline(firstBox, *scene.map) : std::vector<Polyline>();
    PlotCanvas measure(PlotFormat::Svg, PLOT_MAX_WIDTH, PLOT_MAX_HEIGHT);
    const Frame frame = frameOf(viewOf(firstBox, boxOfSet(scene.pairs, 1), carried), measure);
    const MatchMarks marks(scene, frame.view, [&frame](double x, double y) { return frame.at(x, y); });
    const std::vector<LegendEntry> legend = legendOf(scene, marks);

    const double pageWidth = frame.left + frame.width + RIGHT_MARGIN;
    const double legendTop = frame.top + frame.height + AXIS_HEIGHT;
    const double legendHeight = drawLegend(measure, legend, frame.left, legendTop, frame.width, false);
    PlotCanvas canvas(format, pageWidth, legendTop + legendHeight + BOTTOM_MARGIN);

    cairo_t* const cr = canvas.context();
    cairo_save(cr);
    cairo_rectangle(cr, frame.left, frame.top, frame.width, frame.height);
    cairo_clip(cr);
    marks.draw(cr);
    if (scene.map) {
        for (const Polyline& part : carried)
            traceOutline(cr, frame, part);
        strokeCarriedOutline(cr);
        traceOutline(cr, frame, outlineOf(firstBox));
        strokeFirstOutline(cr);
    }
    cairo_restore(cr);
    drawAxes(canvas, frame);
    drawTitle(canvas, frame, scene, inputName, typeText);
    drawLegend(canvas, legend, frame.left, legendTop, frame.width, true);
    return canvas.finish();
}

}  // namespace esttform::app

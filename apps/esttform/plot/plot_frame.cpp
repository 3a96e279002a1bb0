#include "plot/plot_frame.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace esttform::app {

namespace {

constexpr double TICK_SPACING = 75.0;
constexpr double AXIS_NAME_WIDTH = 30.0;                 ///< left of the tick labels
constexpr double AXIS_NAME_GAP = 16.0;                   ///< from the left end to the baseline of the upright name
constexpr double AXIS_NAME_ASCENT = 4.0;                 ///< of that name, when it is right of the frame

int tickNumFor(double length) noexcept
{
    return std::max(2, static_cast<int>(length / TICK_SPACING));
}

}  // namespace

std::string tickText(double tick, const std::vector<double>& ticks)
{
    const double step = ticks.size() > 1 ? ticks[1] - ticks[0] : 1.0;
    if (std::fabs(tick) >= 1e6 || step < 1e-4)
        return fmt::format("{:.6g}", tick);
    return fmt::format("{:.{}f}", tick, step >= 1.0 ? 0 : static_cast<int>(std::ceil(-std::log10(step) - 1e-9)));
}

double axisRoom(const std::vector<double>& yTicks, PlotCanvas& canvas)
{
    double labelWidth = 0.0;
    canvas.setFont(TICK_SIZE, false);
    for (const double tick : yTicks)
        labelWidth = std::max(labelWidth, canvas.textWidth(tickText(tick, yTicks)));
    return AXIS_NAME_WIDTH + labelWidth;
}

PlotFrame frameOf(PlotBox view, const FrameLimits& limits, double outerLeft, double top, PlotCanvas& canvas)
{
    const double scale = std::min(limits.maxWidth / view.width(), limits.maxHeight / view.height());
    const double width = std::max(view.width() * scale, limits.minWidth);
    const double height = std::max(view.height() * scale, limits.minHeight);
    const double dx = 0.5 * (width / scale - view.width()), dy = 0.5 * (height / scale - view.height());
    view = {view.left - dx, view.top - dy, view.right + dx, view.bottom + dy};
    PlotFrame frame{view, outerLeft, top, width, height, scale,
                    ticksOf(view.left, view.right, tickNumFor(width)), ticksOf(view.top, view.bottom, tickNumFor(height))};
    frame.left += axisRoom(frame.yTicks, canvas);
    return frame;
}

void drawXTick(PlotCanvas& canvas, const PlotFrame& frame, double x, const std::string& text)
{
    cairo_t* const cr = canvas.context();
    cairo_set_source_rgb(cr, 0.2, 0.2, 0.2);
    cairo_set_line_width(cr, 0.8);
    cairo_move_to(cr, x, frame.bottom());
    cairo_line_to(cr, x, frame.bottom() + TICK_LENGTH);
    cairo_stroke(cr);
    canvas.setFont(TICK_SIZE, false);
    canvas.drawText(text, x, frame.bottom() + TICK_LENGTH + 11.0, 0.5);
}

void drawYTick(PlotCanvas& canvas, const PlotFrame& frame, double y, const std::string& text)
{
    cairo_t* const cr = canvas.context();
    cairo_set_source_rgb(cr, 0.2, 0.2, 0.2);
    cairo_set_line_width(cr, 0.8);
    const double edge = frame.isYAxisRight ? frame.right() : frame.left, outward = frame.isYAxisRight ? 1.0 : -1.0;
    cairo_move_to(cr, edge, y);
    cairo_line_to(cr, edge + outward * TICK_LENGTH, y);
    cairo_stroke(cr);
    canvas.setFont(TICK_SIZE, false);
    canvas.drawText(text, edge + outward * (TICK_LENGTH + 3.0), y + 3.4, frame.isYAxisRight ? 0.0 : 1.0);
}

void drawEdge(PlotCanvas& canvas, const PlotFrame& frame, const std::string& xName, const std::string& yName)
{
    cairo_t* const cr = canvas.context();
    cairo_set_source_rgb(cr, 0.2, 0.2, 0.2);
    cairo_set_line_width(cr, 0.8);
    cairo_rectangle(cr, frame.left, frame.top, frame.width, frame.height);
    cairo_stroke(cr);
    canvas.setFont(TEXT_SIZE, false);
    canvas.drawText(xName, frame.left + 0.5 * frame.width, frame.bottom() + 31.0, 0.5);
    cairo_save(cr);
    const double room = axisRoom(frame.yTicks, canvas) - AXIS_NAME_GAP;
    cairo_translate(cr, frame.isYAxisRight ? frame.right() + room + AXIS_NAME_ASCENT : frame.left - room,
                    frame.top + 0.5 * frame.height);
    cairo_rotate(cr, -std::acos(0.0));
    canvas.setFont(TEXT_SIZE, false);
    canvas.drawText(yName, 0.0, 0.0, 0.5);
    cairo_restore(cr);
}

void drawAxes(PlotCanvas& canvas, const PlotFrame& frame)
{
    for (const double tick : frame.xTicks)
        drawXTick(canvas, frame, frame.at(tick, 0.0)[0], tickText(tick, frame.xTicks));
    for (const double tick : frame.yTicks)
        drawYTick(canvas, frame, frame.at(0.0, tick)[1], tickText(tick, frame.yTicks));
    drawEdge(canvas, frame, "x, pixels", "y, pixels");
}

}  // namespace esttform::app

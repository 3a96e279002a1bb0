// PlotFrame: a rectangle of the page that shows a part of the plane, with its axes.
#pragma once

#include "plot/plot_canvas.h"
#include "plot/plot_geometry.h"

#include <string>
#include <vector>

namespace esttform::app {

/// Sizes in points of 1/72 inch.
constexpr double TITLE_SIZE = 13.0, HEADING_SIZE = 11.0, TEXT_SIZE = 10.5, TICK_SIZE = 9.5;
constexpr double TICK_LENGTH = 4.0;
/// Height below a frame that ticks, their labels and the axis' name take.
constexpr double AXIS_HEIGHT = 40.0;

/// Limits of a frame's size.
struct FrameLimits {
    double minWidth, maxWidth, minHeight, maxHeight;
};

/// Where the plane lies on the page.
struct PlotFrame {
    PlotBox view;
    double left = 0.0, top = 0.0, width = 0.0, height = 0.0, scale = 1.0;
    std::vector<double> xTicks, yTicks;
    bool isYAxisRight = false;

    PlotPoint at(double x, double y) const noexcept
    {
        return {left + (x - view.left) * scale, top + (y - view.top) * scale};
    }
    double right() const noexcept { return left + width; }
    double bottom() const noexcept { return top + height; }
};

/// Fits a view into the limits with one scale for x and y; a view that is too slim is widened about its middle.
///
/// @param outerLeft  left end of all that belongs to the frame: the axis' name and the tick labels are to its right
PlotFrame frameOf(PlotBox view, const FrameLimits& limits, double outerLeft, double top, PlotCanvas& canvas);

/// Draws the frame's edge, ticks and names of the axes.
void drawAxes(PlotCanvas& canvas, const PlotFrame& frame);

/// Text of one of the ticks, with the digits behind the point that tell neighbours apart.
std::string tickText(double tick, const std::vector<double>& ticks);
/// Draws a tick with its label below the frame, at a place of the page.
void drawXTick(PlotCanvas& canvas, const PlotFrame& frame, double x, const std::string& text);
/// The same beside the frame.
void drawYTick(PlotCanvas& canvas, const PlotFrame& frame, double y, const std::string& text);
/// Draws the edge of the frame and the names of the axes.
void drawEdge(PlotCanvas& canvas, const PlotFrame& frame, const std::string& xName, const std::string& yName);

/// Room that the y axis' name and the widest label take beside a frame.
double axisRoom(const std::vector<double>& yTicks, PlotCanvas& canvas);

/// Restricts drawing to the inside of a frame while it lives.
class FrameClip {
public:
    FrameClip(cairo_t* cr, const PlotFrame& frame) : mContext(cr)
    {
        cairo_save(cr);
        cairo_rectangle(cr, frame.left, frame.top, frame.width, frame.height);
        cairo_clip(cr);
    }
    ~FrameClip() { cairo_restore(mContext); }
    FrameClip(const FrameClip&) = delete;
    FrameClip& operator=(const FrameClip&) = delete;

private:
    cairo_t* mContext;
};

}  // namespace esttform::app

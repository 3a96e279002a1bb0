#include "stabilise/plot_trajectory.h"

#include "number_text.h"
#include "plot/plot_canvas.h"
#include "plot/plot_frame.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace esttform::app {

namespace {

// Sizes in points of 1/72 inch.
constexpr double WIDTH = 640.0, RIGHT_MARGIN = 20.0, TOP = 66.0, PANEL_HEIGHT = 112.0, PANEL_GAP = 14.0;
constexpr double PATH_WIDTH = 0.9, SMOOTH_WIDTH = 2.4, LEGEND_LINE = 24.0;
constexpr double HATCH_SPACING = 5.0;
/// Share of a panel's range that is free above and below the curves.
constexpr double HEAD_ROOM = 0.08;

struct Quantity {
    const char* name;
    double (*of)(const Motion& motion);
    double leastRange;                                   ///< so that rounding errors do not look like motion
};
const std::array<Quantity, 4> QUANTITIES{{
    {"x, pixels", [](const Motion& m) { return m.t.real(); }, 0.1},
    {"y, pixels", [](const Motion& m) { return m.t.imag(); }, 0.1},
    {"angle, degrees", [](const Motion& m) { return degreesOf(m); }, 0.01},
    {"scale", [](const Motion& m) { return scaleOf(m); }, 1e-4},
}};

/// One quantity over the pictures.
class Panel {
public:
    Panel(const StabilisedPath& s, const Quantity& quantity, double top) : mStabilised(s), mQuantity(quantity)
    {
        double lowest = quantity.of(s.path[0]), highest = lowest;
        for (const auto* const path : {&s.path, &s.smooth})
            for (const Motion& motion : *path) {
                lowest = std::min(lowest, quantity.of(motion));
                highest = std::max(highest, quantity.of(motion));
            }
        const double room = HEAD_ROOM * (highest - lowest) + std::max(0.0, 0.5 * (quantity.leastRange - (highest - lowest)));
        mLowest = lowest - room;
        mHighest = highest + room;
        mFrame.top = top;
        mFrame.height = PANEL_HEIGHT;
        mFrame.yTicks = ticksOf(mLowest, mHighest, 4);
        mLastFrame = static_cast<double>(s.firstFrame) + static_cast<double>(s.path.size() - 1);
        mFrame.xTicks = ticksOf(static_cast<double>(s.firstFrame), mLastFrame, 8);
        const auto isBroken = [](double tick) { return tick != std::floor(tick); };
        mFrame.xTicks.erase(std::remove_if(mFrame.xTicks.begin(), mFrame.xTicks.end(), isBroken), mFrame.xTicks.end());
    }

    double axisRoom(PlotCanvas& measure) const { return app::axisRoom(mFrame.yTicks, measure); }
    void setLeft(double left)
    {
        mFrame.left = left;
        mFrame.width = WIDTH - RIGHT_MARGIN - left;
    }

    void draw(PlotCanvas& canvas, bool isLast) const
    {
        cairo_t* const cr = canvas.context();
        {
            const FrameClip clip(cr, mFrame);
            hatchBridged(cr);
            setPathStyle(cr);
            drawCurve(cr, mStabilised.path);
            setSmoothStyle(cr);
            drawCurve(cr, mStabilised.smooth);
        }
        if (isLast)
            for (const double tick : mFrame.xTicks)
                drawXTick(canvas, mFrame, xOf(tick), tickText(tick, mFrame.xTicks));
        for (const double tick : mFrame.yTicks)
            drawYTick(canvas, mFrame, yOf(tick), tickText(tick, mFrame.yTicks));
        drawEdge(canvas, mFrame, isLast ? "frame" : "", "");
        drawName(canvas);
    }

    static void setPathStyle(cairo_t* cr)
    {
        cairo_set_source_rgb(cr, 0.835, 0.369, 0.0);
        cairo_set_line_width(cr, PATH_WIDTH);
    }
    static void setSmoothStyle(cairo_t* cr)
    {
        cairo_set_source_rgb(cr, 0.0, 0.34, 0.62);
        cairo_set_line_width(cr, SMOOTH_WIDTH);
    }

    /// Hatches a part of the page.
    static void hatch(cairo_t* cr, double left, double top, double width, double height)
    {
        cairo_save(cr);
        cairo_rectangle(cr, left, top, width, height);
        cairo_clip(cr);
        cairo_set_source_rgb(cr, 0.62, 0.62, 0.62);
        cairo_set_line_width(cr, 0.7);
        for (double x = left - height; x < left + width; x += HATCH_SPACING) {
            cairo_move_to(cr, x, top + height);
            cairo_line_to(cr, x + height, top);
        }
        cairo_stroke(cr);
        cairo_restore(cr);
    }

private:
    double xOf(double frame) const
    {
        const double first = static_cast<double>(mStabilised.firstFrame);
        return mFrame.left + (frame - first) / (mLastFrame - first) * mFrame.width;
    }
    double yOf(double value) const { return mFrame.bottom() - (value - mLowest) / (mHighest - mLowest) * mFrame.height; }

    void drawCurve(cairo_t* cr, const std::vector<Motion>& path) const
    {
        cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
        double frame = static_cast<double>(mStabilised.firstFrame);
        for (const Motion& motion : path)
            cairo_line_to(cr, xOf(frame++), yOf(mQuantity.of(motion)));
        cairo_stroke(cr);
    }

    void hatchBridged(cairo_t* cr) const
    {
        const auto& isFound = mStabilised.isFound;
        for (std::size_t k = 0; k < isFound.size(); ++k) {
            const std::size_t begin = k;
            while (k < isFound.size() && !isFound[k])
                ++k;
            if (k == begin)
                continue;
            const double left = xOf(static_cast<double>(mStabilised.firstFrame) + static_cast<double>(begin));
            hatch(cr, left, mFrame.top, xOf(static_cast<double>(mStabilised.firstFrame) + static_cast<double>(k)) - left,
                  mFrame.height);
        }
    }

    /// Upright at the left edge of the page, for all panels at one place.
    void drawName(PlotCanvas& canvas) const
    {
        cairo_t* const cr = canvas.context();
        cairo_save(cr);
        cairo_set_source_rgb(cr, 0.0, 0.0, 0.0);
        cairo_translate(cr, 16.0, mFrame.top + 0.5 * mFrame.height);
        cairo_rotate(cr, -std::acos(0.0));
        canvas.setFont(TEXT_SIZE, false);
        canvas.drawText(mQuantity.name, 0.0, 0.0, 0.5);
        cairo_restore(cr);
    }

    const StabilisedPath& mStabilised;
    const Quantity& mQuantity;
    PlotFrame mFrame;
    double mLowest = 0.0, mHighest = 1.0, mLastFrame = 1.0;
};

/// Root mean square of the centre's second difference: how much the motion changes from picture to picture.
double shakeOf(const std::vector<Motion>& path)
{
    double sum = 0.0;
    for (std::size_t k = 2; k < path.size(); ++k)
        sum += std::norm(path[k].t - 2.0 * path[k - 1].t + path[k - 2].t);
    return path.size() > 2 ? std::sqrt(sum / static_cast<double>(path.size() - 2)) : 0.0;
}

void drawHead(PlotCanvas& canvas, const StabilisedPath& s, const std::string& inputName, double left)
{
    cairo_t* const cr = canvas.context();
    const auto missingNum = std::count(s.isFound.begin(), s.isFound.end(), false);
    const double width = WIDTH - RIGHT_MARGIN - left;
    cairo_set_source_rgb(cr, 0.0, 0.0, 0.0);
    canvas.setFont(TITLE_SIZE, true);
    canvas.drawText(canvas.fitted("Path of the picture, " + fileNameOf(inputName), width), left, 20.0);
    canvas.setFont(TEXT_SIZE, false);
    const std::string counts = fmt::format("{}, {} bridged; shake (RMS change of the motion) {:.3g} pixels before, {:.3g} after",
                                           counted(static_cast<std::int64_t>(s.path.size()), "picture"),
                                           counted(missingNum, "motion"), shakeOf(s.path), shakeOf(s.smooth));
    canvas.drawText(canvas.fitted(counts, width), left, 37.0);
    double x = left;
    const auto drawEntry = [&](const char* text) {
        cairo_set_source_rgb(cr, 0.0, 0.0, 0.0);
        canvas.drawText(text, x + LEGEND_LINE + 5.0, 55.0);
        x += LEGEND_LINE + 25.0 + canvas.textWidth(text);
    };
    Panel::setPathStyle(cr);
    cairo_move_to(cr, x, 51.0);
    cairo_line_to(cr, x + LEGEND_LINE, 51.0);
    cairo_stroke(cr);
    drawEntry("before smoothing");
    Panel::setSmoothStyle(cr);
    cairo_move_to(cr, x, 51.0);
    cairo_line_to(cr, x + LEGEND_LINE, 51.0);
    cairo_stroke(cr);
    drawEntry("after");
    if (missingNum > 0) {
        Panel::hatch(cr, x, 46.0, LEGEND_LINE, 10.0);
        drawEntry("motion bridged");
    }
}

}  // namespace

std::string renderTrajectory(const StabilisedPath& s, const std::string& inputName, PlotFormat format)
{
    PlotCanvas measure(PlotFormat::Svg, 1.0, 1.0);
    std::vector<Panel> panels;
    double top = TOP, left = 0.0;
    for (const Quantity& quantity : QUANTITIES) {
        panels.emplace_back(s, quantity, top);
        top += PANEL_HEIGHT + PANEL_GAP;
        left = std::max(left, panels.back().axisRoom(measure));
    }
    PlotCanvas canvas(format, WIDTH, top - PANEL_GAP + AXIS_HEIGHT);
    drawHead(canvas, s, inputName, left);
    for (Panel& panel : panels) {
        panel.setLeft(left);
        panel.draw(canvas, &panel == &panels.back());
    }
    return canvas.finish();
}

}  // namespace esttform::app

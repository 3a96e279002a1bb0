#include "plot/plot_marks.h"

#include "number_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace esttform::app {

namespace {

/// Page coordinates are rounded to a quarter of a point: invisible, and half the bytes.
constexpr double SNAPS_PER_POINT = 4.0;
constexpr double OUTLIER_DASHES[] = {2.5, 2.5};
constexpr double LINE_WIDTH = 0.5;

/// Radius of the marks by the number of pairs.
double radiusFor(std::size_t pairNum) noexcept
{
    return pairNum <= 300 ? 2.4 : pairNum <= 1000 ? 1.9 : pairNum <= 5000 ? 1.4 : 0.9;
}

PlotPoint snapped(const PlotPoint& p) noexcept
{
    return {std::round(p[0] * SNAPS_PER_POINT) / SNAPS_PER_POINT, std::round(p[1] * SNAPS_PER_POINT) / SNAPS_PER_POINT};
}

void keepDistinct(std::vector<PlotPoint>& points)
{
    std::sort(points.begin(), points.end());
    points.erase(std::unique(points.begin(), points.end()), points.end());
}

// ---- Strokes: each draws all its marks at once

void strokeDots(cairo_t* cr, const std::vector<PlotPoint>& points, double radius)
{
    for (const PlotPoint& p : points) {
        cairo_move_to(cr, p[0], p[1]);
        cairo_line_to(cr, p[0], p[1]);
    }
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_width(cr, 2.0 * radius);
    cairo_stroke(cr);
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_BUTT);
}

void strokeCrosses(cairo_t* cr, const std::vector<PlotPoint>& points, double radius)
{
    const double arm = snapped({1.2 * radius, 0.0})[0];
    for (const PlotPoint& p : points)
        for (const double slope : {1.0, -1.0}) {
            cairo_move_to(cr, p[0] - arm, p[1] - slope * arm);
            cairo_line_to(cr, p[0] + arm, p[1] + slope * arm);
        }
    cairo_set_line_width(cr, 0.7 * radius);
    cairo_stroke(cr);
}

void strokeFirstPoints(cairo_t* cr, const std::vector<PlotPoint>& points, double radius)
{
    cairo_set_source_rgb(cr, 0.35, 0.35, 0.35);          // a grey ring: a dark dot with a light one on it
    strokeDots(cr, points, radius);
    cairo_set_source_rgb(cr, 1.0, 1.0, 1.0);
    strokeDots(cr, points, 0.55 * radius);
}

void strokeSecondPoints(cairo_t* cr, const MarkClass& c, const std::vector<PlotPoint>& points, double radius)
{
    cairo_set_source_rgb(cr, c.red, c.green, c.blue);
    if (c.isCross)
        strokeCrosses(cr, points, radius);
    else
        strokeDots(cr, points, radius);
}

void strokeLines(cairo_t* cr, const MarkClass& c, const std::vector<std::array<PlotPoint, 2>>& lines)
{
    const auto tinted = [&c](double channel) { return channel + c.lineTint * (1.0 - channel); };
    cairo_set_source_rgb(cr, tinted(c.red), tinted(c.green), tinted(c.blue));
    cairo_set_line_width(cr, LINE_WIDTH);
    if (c.isDashed)
        cairo_set_dash(cr, OUTLIER_DASHES, 2, 0.0);
    for (const auto& line : lines) {
        cairo_move_to(cr, line[0][0], line[0][1]);
        cairo_line_to(cr, line[1][0], line[1][1]);
    }
    cairo_stroke(cr);
    cairo_set_dash(cr, nullptr, 0, 0.0);
}

}  // namespace

std::string MarkClass::legendText() const
{
    std::string text = fmt::format("{}: first point (ring), second point ({})", counted(pairNum, name), isCross ? "cross" : "dot");
    if (lineStride > 1)
        text += fmt::format(", 1 line in {}", lineStride);
    return text;
}

MatchMarks::MatchMarks(const PlotScene& scene, const PlotFrame& first, const PlotFrame& second, std::int64_t lineMaxNum)
    : mRadius(radiusFor(scene.pairs.size()))
{
    const bool hasMask = !scene.inliers.empty();
    const double tint = scene.image1 || scene.image2 ? 0.1 : 0.4;      // pale lines would be lost on an image
    // Blue and vermilion: told apart by colour-blind people.
    mClasses.push_back({"outlier", 0.835, 0.369, 0.0, tint, true, true, 0, 1, {}, {}, {}});
    mClasses.push_back({hasMask ? "inlier" : "pair", 0.0, 0.34, 0.62, tint, false, false, 0, 1, {}, {}, {}});
    for (std::size_t i = 0; i < scene.pairs.size(); ++i) {
        const Pair& pair = scene.pairs[i];
        MarkClass& c = mClasses[hasMask && scene.inliers[i] == 0 ? 0 : 1];
        ++c.pairNum;
        if (!first.view.contains(pair[0], pair[1]) || !second.view.contains(pair[2], pair[3])) {
            ++mLeftOutNum;
            continue;
        }
        c.lines.push_back({snapped(first.at(pair[0], pair[1])), snapped(second.at(pair[2], pair[3]))});
        c.first.push_back(c.lines.back()[0]);
        c.second.push_back(c.lines.back()[1]);
    }
    for (MarkClass& c : mClasses) {
        keepDistinct(c.first);
        keepDistinct(c.second);
        c.lineStride = (static_cast<std::int64_t>(c.lines.size()) + lineMaxNum - 1) / lineMaxNum;
        const auto stride = static_cast<std::size_t>(std::max<std::int64_t>(1, c.lineStride));
        std::size_t keptNum = 0;
        for (std::size_t i = 0; i < c.lines.size(); i += stride)
            c.lines[keptNum++] = c.lines[i];
        c.lines.resize(keptNum);
    }
}

std::vector<const MarkClass*> MatchMarks::classes() const
{
    return {&mClasses[1], &mClasses[0]};
}

void MatchMarks::draw(cairo_t* cr) const
{
    for (const MarkClass& c : mClasses)
        strokeLines(cr, c, c.lines);
    for (const MarkClass& c : mClasses)
        strokeFirstPoints(cr, c.first, mRadius);
    for (const MarkClass& c : mClasses)
        strokeSecondPoints(cr, c, c.second, mRadius);
}

void MatchMarks::drawSample(cairo_t* cr, const MarkClass& c, double width) const
{
    const PlotPoint from{-0.5 * width, 0.0}, to{0.5 * width, 0.0};
    const double radius = radiusFor(0);
    strokeLines(cr, c, {{from, to}});
    strokeFirstPoints(cr, {from}, radius);
    strokeSecondPoints(cr, c, {to}, radius);
}

}  // namespace esttform::app

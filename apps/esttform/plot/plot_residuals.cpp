#include "plot/plot_residuals.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace esttform::app {

namespace {

constexpr std::size_t VECTOR_MAX_NUM = 500;
/// Length on the page that nine vectors in ten stay below.
constexpr double WANTED_LENGTH = 24.0;
constexpr double LONG_SHARE = 0.9;
/// Residuals that need more are rounding errors; they are drawn as dots.
constexpr double MAGNIFICATION_MAX = 1e4;
constexpr double RESIDUAL_WIDTH = 0.7, FOOT_RADIUS = 1.3;

/// The largest of 1, 2, 5, 10, 20, ... that is not above a value.
double roundDown(double value) noexcept
{
    const double power = std::pow(10.0, std::floor(std::log10(value)));
    const double ratio = value / power;
    return power * (ratio >= 5.0 ? 5.0 : ratio >= 2.0 ? 2.0 : 1.0);
}

double longLength(const std::vector<Residual>& vectors)
{
    std::vector<double> lengths;
    for (const Residual& r : vectors)
        lengths.push_back(r.distance);
    const auto idx = static_cast<std::ptrdiff_t>(LONG_SHARE * static_cast<double>(lengths.size() - 1));
    std::nth_element(lengths.begin(), lengths.begin() + idx, lengths.end());
    return lengths[static_cast<std::size_t>(idx)];
}

}  // namespace

ResidualPanel::ResidualPanel(const PlotScene& scene, const std::vector<Residual>& residuals, const PlotBox& place,
                             PlotCanvas& measure)
    : mNoun(scene.inliers.empty() ? "pair" : "inlier")
{
    std::vector<Pair> drawn;
    for (std::size_t i = 0; i < residuals.size(); ++i)
        if ((scene.inliers.empty() || scene.inliers[i] != 0) && std::isfinite(residuals[i].distance)) {
            mVectors.push_back(residuals[i]);
            drawn.push_back(scene.pairs[i]);
        }
    const PlotBox points = boxOfSet(drawn, 1);
    const double height = place.height() - PANEL_HEADING_HEIGHT - AXIS_HEIGHT;
    const PlotBox view = viewOf(points, points, {});
    mFrame = frameOf(view, {1.0, place.width(), height, height}, place.left, place.top + PANEL_HEADING_HEIGHT, measure);
    const double width = place.right - mFrame.left;
    mFrame = frameOf(view, {width, width, height, height}, place.left, mFrame.top, measure);
    mFrame.width = place.right - mFrame.left;
    if (mVectors.empty())
        return;
    const double length = longLength(mVectors) * mFrame.scale;
    mMagnification = length > 0.0 ? std::clamp(roundDown(WANTED_LENGTH / length), 1.0, MAGNIFICATION_MAX) : 1.0;
    mStride = (mVectors.size() + VECTOR_MAX_NUM - 1) / VECTOR_MAX_NUM;
}

void ResidualPanel::draw(PlotCanvas& canvas) const
{
    cairo_t* const cr = canvas.context();
    {
        const FrameClip clip(cr, mFrame);
        cairo_set_source_rgb(cr, 0.0, 0.34, 0.62);
        for (const bool isFoot : {false, true}) {
            for (std::size_t i = 0; i < mVectors.size(); i += mStride) {
                const Residual& r = mVectors[i];
                const PlotPoint p = mFrame.at(r.x, r.y);
                const double reach = isFoot ? 0.0 : mMagnification * mFrame.scale;
                constexpr double FAR = 1e4;
                cairo_move_to(cr, std::clamp(p[0], -FAR, FAR), std::clamp(p[1], -FAR, FAR));
                cairo_line_to(cr, std::clamp(p[0] + reach * r.dx, -FAR, FAR), std::clamp(p[1] + reach * r.dy, -FAR, FAR));
            }
            cairo_set_line_cap(cr, isFoot ? CAIRO_LINE_CAP_ROUND : CAIRO_LINE_CAP_BUTT);
            cairo_set_line_width(cr, isFoot ? 2.0 * FOOT_RADIUS : RESIDUAL_WIDTH);
            cairo_stroke(cr);
        }
        cairo_set_line_cap(cr, CAIRO_LINE_CAP_BUTT);
    }
    drawAxes(canvas, mFrame);
    std::string text = mVectors.empty() ? "no residuals" : mNoun + " residuals";
    if (mMagnification > 1.0)
        text += fmt::format(", {:g} times as long", mMagnification);
    if (mStride > 1)
        text += fmt::format(" (1 in {})", mStride);
    canvas.setFont(HEADING_SIZE, true);
    cairo_set_source_rgb(cr, 0.0, 0.0, 0.0);
    canvas.drawText(canvas.fitted(text, mFrame.width), mFrame.left, mFrame.top - 6.0);
}

}  // namespace esttform::app

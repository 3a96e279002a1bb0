#include "plot/plot_histogram.h"

#include "number_text.h"
#include "plot/plot_residuals.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace esttform::app {

namespace {

/// Decades of the axis, and its lowest one: distances below are rounding errors.
constexpr int DECADE_MAX_NUM = 7, LOWEST_DECADE = -3;
/// Share of the distances that may lie beyond either end of the axis.
constexpr double TAIL_SHARE = 0.005;
/// Share of the frame's height that the highest bar leaves free, for the words about the threshold.
constexpr double HEAD_ROOM = 1.25;
/// Thresholds whose ends differ by less are drawn as one line.
constexpr double ONE_LINE_RATIO = 1.03;
constexpr double HATCH_SPACING = 3.5;
constexpr double THRESHOLD_DASHES[] = {5.0, 2.5};

int decadeOf(double value, double (*round)(double)) noexcept
{
    return value > 0.0 ? static_cast<int>(round(std::log10(value))) : LOWEST_DECADE;
}

/// Three digits, but no exponent before there are seven.
std::string limitText(double limit)
{
    return limit >= 1000.0 && limit < 1e6 ? fmt::format("{:.0f}", limit) : fmt::format("{:.3g}", limit);
}

void setColour(cairo_t* cr, bool isInlier)
{
    if (isInlier)
        cairo_set_source_rgb(cr, 0.0, 0.34, 0.62);
    else
        cairo_set_source_rgb(cr, 0.835, 0.369, 0.0);
}

/// A bar: filled for inliers, hatched for outliers.
void drawBar(cairo_t* cr, double left, double top, double width, double height, bool isInlier)
{
    setColour(cr, isInlier);
    cairo_rectangle(cr, left, top, width, height);
    if (isInlier) {
        cairo_fill(cr);
        return;
    }
    cairo_save(cr);
    cairo_clip_preserve(cr);
    cairo_set_line_width(cr, 1.4);
    cairo_stroke(cr);                                    // the inner half of it stays
    cairo_set_line_width(cr, 0.7);
    const double first = std::floor((left + top) / HATCH_SPACING) * HATCH_SPACING;   // one grid for all bars
    for (double sum = first; sum < left + width + top + height; sum += HATCH_SPACING) {
        cairo_move_to(cr, sum - top, top);
        cairo_line_to(cr, sum - top - height, top + height);
    }
    cairo_stroke(cr);
    cairo_restore(cr);
}

}  // namespace

std::int64_t Histogram::highest() const noexcept
{
    std::int64_t highest = 0;
    for (const auto& bin : bins)
        highest = std::max(highest, bin[0] + bin[1]);
    return highest;
}

Histogram histogramOf(const std::vector<Residual>& residuals, const std::vector<std::uint8_t>& inliers,
                      const std::optional<ThresholdRange>& threshold)
{
    Histogram h;
    std::vector<double> distances;
    for (const Residual& r : residuals)
        if (std::isfinite(r.distance))
            distances.push_back(r.distance);
    h.notCountedNum = static_cast<std::int64_t>(residuals.size() - distances.size());
    if (distances.empty())
        distances.push_back(1.0);                        // for an axis only
    std::sort(distances.begin(), distances.end());
    const auto tail = static_cast<std::size_t>(TAIL_SHARE * static_cast<double>(distances.size() - 1));
    const double lowest = distances[tail], highest = distances[distances.size() - 1 - tail];
    h.lowDecade = std::max(LOWEST_DECADE, decadeOf(threshold ? std::min(lowest, threshold->low) : lowest, std::floor));
    h.highDecade = std::max(h.lowDecade + 1, decadeOf(threshold ? std::max(highest, threshold->high) : highest, std::ceil));
    h.highDecade = std::min(h.highDecade, h.lowDecade + DECADE_MAX_NUM);
    const int binNum = (h.highDecade - h.lowDecade) * Histogram::BINS_PER_DECADE;
    h.bins.assign(static_cast<std::size_t>(binNum), {0, 0});
    for (std::size_t i = 0; i < residuals.size(); ++i) {
        if (!std::isfinite(residuals[i].distance))
            continue;
        const double place = (std::log10(residuals[i].distance) - h.lowDecade) * Histogram::BINS_PER_DECADE;   // -inf for 0
        h.hasBelow = h.hasBelow || place < 0.0;
        h.hasAbove = h.hasAbove || place > binNum;
        const auto bin = static_cast<std::size_t>(std::clamp(place, 0.0, binNum - 1.0));
        ++h.bins[bin][inliers.empty() || inliers[i] != 0 ? 1 : 0];
    }
    return h;
}

HistogramPanel::HistogramPanel(const PlotScene& scene, const std::vector<Residual>& residuals, const PlotBox& place,
                               PlotCanvas& measure)
    : mHasMask(!scene.inliers.empty()),
      mThreshold(scene.threshold ? std::optional(thresholdRange(residuals, scene.inliers, *scene.threshold)) : std::nullopt),
      mHistogram(histogramOf(residuals, scene.inliers, mThreshold)),
      mHighest(HEAD_ROOM * static_cast<double>(std::max<std::int64_t>(1, mHistogram.highest())))
{
    mFrame.yTicks = ticksOf(0.0, mHighest, 4);
    const auto isNoCount = [](double tick) { return tick != std::floor(tick); };
    mFrame.yTicks.erase(std::remove_if(mFrame.yTicks.begin(), mFrame.yTicks.end(), isNoCount), mFrame.yTicks.end());
    mFrame.left = place.left + axisRoom(mFrame.yTicks, measure);
    mFrame.top = place.top + PANEL_HEADING_HEIGHT;
    mFrame.width = place.right - mFrame.left;
    mFrame.height = place.bottom - AXIS_HEIGHT - mFrame.top;
}

double HistogramPanel::xOf(double distance) const noexcept
{
    const double share = (std::log10(distance) - mHistogram.lowDecade) / (mHistogram.highDecade - mHistogram.lowDecade);
    return mFrame.left + std::clamp(share, -1.0, 2.0) * mFrame.width;
}

double HistogramPanel::yOf(double num) const noexcept
{
    return mFrame.bottom() - num / mHighest * mFrame.height;
}

void HistogramPanel::drawBars(cairo_t* cr) const
{
    const double width = mFrame.width / static_cast<double>(mHistogram.bins.size());
    for (std::size_t i = 0; i < mHistogram.bins.size(); ++i) {
        const auto& bin = mHistogram.bins[i];
        const double left = mFrame.left + static_cast<double>(i) * width;
        const double middle = yOf(static_cast<double>(bin[1])), top = yOf(static_cast<double>(bin[0] + bin[1]));
        if (bin[1] > 0)
            drawBar(cr, left + 0.5, middle, width - 1.0, mFrame.bottom() - middle, true);
        if (bin[0] > 0)
            drawBar(cr, left + 0.5, top, width - 1.0, middle - top, false);
    }
}

void HistogramPanel::drawThreshold(PlotCanvas& canvas) const
{
    cairo_t* const cr = canvas.context();
    const double low = xOf(mThreshold->low), high = xOf(mThreshold->high);
    const bool isOneLine = mThreshold->high < ONE_LINE_RATIO * mThreshold->low;
    cairo_set_source_rgb(cr, 0.0, 0.0, 0.0);
    cairo_set_line_width(cr, 1.2);
    cairo_set_dash(cr, THRESHOLD_DASHES, 2, 0.0);
    for (const double x : {low, high}) {
        cairo_move_to(cr, x, mFrame.top);
        cairo_line_to(cr, x, mFrame.bottom());
        if (isOneLine)
            break;
    }
    cairo_stroke(cr);
    cairo_set_dash(cr, nullptr, 0, 0.0);
    const std::string text = "threshold " + (isOneLine ? "" : limitText(mThreshold->low) + " to ") + limitText(mThreshold->high);
    canvas.setFont(TEXT_SIZE, false);
    const double width = canvas.textWidth(text);
    const bool isRight = high + 6.0 + width < mFrame.right();
    const double left = std::max(isRight ? high + 5.0 : low - 5.0 - width, mFrame.left + 4.0);
    cairo_set_source_rgb(cr, 1.0, 1.0, 1.0);             // the text may have to lie over a line
    cairo_rectangle(cr, left - 2.0, mFrame.top + 3.0, width + 4.0, 1.4 * TEXT_SIZE);
    cairo_fill(cr);
    cairo_set_source_rgb(cr, 0.0, 0.0, 0.0);
    canvas.drawText(text, left, mFrame.top + 14.0);
}

void HistogramPanel::draw(PlotCanvas& canvas) const
{
    cairo_t* const cr = canvas.context();
    {
        const FrameClip clip(cr, mFrame);
        drawBars(cr);
        if (mThreshold)
            drawThreshold(canvas);
    }
    for (int decade = mHistogram.lowDecade; decade <= mHistogram.highDecade; ++decade) {
        const bool isBelow = decade == mHistogram.lowDecade && mHistogram.hasBelow;
        const bool isAbove = decade == mHistogram.highDecade && mHistogram.hasAbove;
        const double value = std::pow(10.0, decade);
        drawXTick(canvas, mFrame, xOf(value), fmt::format("{}{:g}", isBelow ? "<" : isAbove ? ">" : "", value));
    }
    for (const double tick : mFrame.yTicks)
        drawYTick(canvas, mFrame, yOf(tick), tickText(tick, mFrame.yTicks));
    drawEdge(canvas, mFrame, "distance of second point from TForm * first, pixels", "pairs");
    canvas.setFont(HEADING_SIZE, true);
    cairo_set_source_rgb(cr, 0.0, 0.0, 0.0);
    std::string text = mHasMask ? "inliers filled, outliers hatched" : "distances of all pairs";
    if (mHistogram.notCountedNum > 0)
        text += fmt::format(", {} without", mHistogram.notCountedNum);
    canvas.drawText(canvas.fitted(text, mFrame.width), mFrame.left, mFrame.top - 6.0);
}

}  // namespace esttform::app

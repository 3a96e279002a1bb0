// HistogramPanel: how many pairs lie how far from where TForm maps their first points, with the threshold.
#pragma once

#include "geometry/residuals.h"
#include "plot/plot.h"
#include "plot/plot_frame.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace esttform::app {

/// Distances counted in bins of equal width on a logarithmic axis.
struct Histogram {
    static constexpr int BINS_PER_DECADE = 6;

    int lowDecade = 0, highDecade = 1;               ///< the axis runs from 10^lowDecade to 10^highDecade
    std::vector<std::array<std::int64_t, 2>> bins;   ///< outliers and inliers (all pairs without a mask)
    bool hasBelow = false, hasAbove = false;         ///< distances beyond the axis are counted in the first and last bin
    std::int64_t notCountedNum = 0;                  ///< pairs without a finite distance

    std::int64_t highest() const noexcept;
};

/// @param threshold  the axis holds it, too; empty: none
Histogram histogramOf(const std::vector<Residual>& residuals, const std::vector<std::uint8_t>& inliers,
                      const std::optional<ThresholdRange>& threshold);

class HistogramPanel {
public:
    /// Lays the panel out in a box of the page whose top is the heading's.
    HistogramPanel(const PlotScene& scene, const std::vector<Residual>& residuals, const PlotBox& place, PlotCanvas& measure);

    void draw(PlotCanvas& canvas) const;

private:
    double xOf(double distance) const noexcept;
    double yOf(double num) const noexcept;
    void drawBars(cairo_t* cr) const;
    void drawThreshold(PlotCanvas& canvas) const;

    bool mHasMask;
    std::optional<ThresholdRange> mThreshold;
    Histogram mHistogram;
    PlotFrame mFrame;
    double mHighest;                     ///< pairs at the top of the frame
};

}  // namespace esttform::app

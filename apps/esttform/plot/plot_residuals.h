// ResidualPanel: the residual vectors of the inliers, magnified, where they are in the second picture.
#pragma once

#include "geometry/residuals.h"
#include "plot/plot.h"
#include "plot/plot_frame.h"

#include <string>
#include <vector>

namespace esttform::app {

class ResidualPanel {
public:
    /// Lays the panel out in a box of the page whose top is the heading's.
    ///
    /// @param residuals  one a pair of the scene
    ResidualPanel(const PlotScene& scene, const std::vector<Residual>& residuals, const PlotBox& place, PlotCanvas& measure);

    void draw(PlotCanvas& canvas) const;

private:
    std::vector<Residual> mVectors;      ///< those that are drawn
    std::size_t mStride = 1;
    double mMagnification = 1.0;
    std::string mNoun;                   ///< "inlier" or "pair"
    PlotFrame mFrame;
};

/// Height that heading and axes take of a panel's place, above and below its frame.
constexpr double PANEL_HEADING_HEIGHT = 20.0;

}  // namespace esttform::app

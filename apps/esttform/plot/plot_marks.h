// MatchMarks: the points and lines of the matches on the page, in few strokes so that large pictures stay small files.
#pragma once

#include "plot/plot.h"
#include "plot/plot_frame.h"

#include <cairo.h>

#include <cstdint>
#include <string>
#include <vector>

namespace esttform::app {

/// Pairs that are drawn alike.
struct MarkClass {
    const char* name;               ///< "inlier", "outlier" or "pair"
    double red, green, blue;        ///< of the second points
    double lineTint;                ///< share of white in the colour of the lines
    bool isCross;                   ///< second points are crosses, else dots
    bool isDashed;                  ///< lines are dashed, else solid
    std::int64_t pairNum = 0;
    std::int64_t lineStride = 1;    ///< every so many-th line is drawn
    std::vector<PlotPoint> first;   ///< distinct places of the first points, on the page
    std::vector<PlotPoint> second;  ///< of the second points
    std::vector<std::array<PlotPoint, 2>> lines;

    std::string legendText() const;
};

class MatchMarks {
public:
    /// Places every pair that the frames show.
    ///
    /// @param first, second  of the first and of the second points; one frame for both is admitted
    /// @param lineMaxNum     lines of a class that are drawn at most: more of them hide each other and the points
    MatchMarks(const PlotScene& scene, const PlotFrame& first, const PlotFrame& second, std::int64_t lineMaxNum);

    /// Draws lines, then first points, then second points; inliers over outliers.
    void draw(cairo_t* cr) const;
    /// Draws one line with both points about (0, 0) for the legend.
    void drawSample(cairo_t* cr, const MarkClass& markClass, double width) const;

    /// Classes in the order in which a legend names them.
    std::vector<const MarkClass*> classes() const;
    /// Pairs that are not drawn.
    std::int64_t leftOutNum() const noexcept { return mLeftOutNum; }

private:
    std::vector<MarkClass> mClasses;
    double mRadius = 0.0;
    std::int64_t mLeftOutNum = 0;
};

}  // namespace esttform::app

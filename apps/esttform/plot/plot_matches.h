// MatchPanel: the matches of a picture, in one frame or, with both images, in one frame for each of them.
#pragma once

#include "plot/plot.h"
#include "plot/plot_frame.h"
#include "plot/plot_legend.h"
#include "plot/plot_marks.h"

#include <vector>

namespace esttform::app {

class MatchPanel {
public:
    /// Lays the panel out; `scene` must outlive it.
    ///
    /// @param measure  any canvas, for the sizes of texts
    MatchPanel(const PlotScene& scene, double top, PlotCanvas& measure);
    MatchPanel(const MatchPanel&) = delete;
    MatchPanel& operator=(const MatchPanel&) = delete;

    void draw(PlotCanvas& canvas) const;

    /// Left end of the frames, and right end of all.
    double left() const noexcept { return mFirst.left; }
    double right() const noexcept { return mRight; }
    double bottom() const noexcept { return mLegendTop + mLegendHeight; }

private:
    struct Content;

    MatchPanel(const PlotScene& scene, const Content& content, PlotCanvas& measure);
    void drawBackground(PlotCanvas& canvas) const;
    void drawOutlines(cairo_t* cr) const;
    std::vector<LegendEntry> legend() const;

    const PlotScene& mScene;
    bool mIsSideBySide;
    PlotBox mOutlined;                       ///< what TForm carries over: the first image, or the box of the first points
    std::vector<Polyline> mCarried;
    PlotFrame mFirst, mSecond;               ///< the same in one frame
    MatchMarks mMarks;
    double mRight, mLegendTop, mLegendHeight;
};

}  // namespace esttform::app

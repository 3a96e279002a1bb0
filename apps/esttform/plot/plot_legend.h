// Legend: entries of a sample and a text each, laid out in lines of a given width.
#pragma once

#include "plot/plot_canvas.h"

#include <functional>
#include <string>
#include <vector>

namespace esttform::app {

/// Width of the samples, in points.
constexpr double LEGEND_SAMPLE_WIDTH = 34.0;

struct LegendEntry {
    std::string text;
    std::function<void(cairo_t*)> drawSample;  ///< draws about (0, 0), at most LEGEND_SAMPLE_WIDTH - 8 wide; empty: text only
    bool isOnNewLine = false;
};

/// Lays the entries out from the left; an entry that does not fit begins a line. @return height of all lines
double legendHeight(PlotCanvas& canvas, const std::vector<LegendEntry>& entries, double width);
/// Draws them.
void drawLegend(PlotCanvas& canvas, const std::vector<LegendEntry>& entries, double left, double top, double width);

}  // namespace esttform::app

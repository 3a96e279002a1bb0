#include "plot/plot_legend.h"

#include "plot/plot_frame.h"

namespace esttform::app {

namespace {

constexpr double LINE_HEIGHT = 17.0, GAP = 18.0;
constexpr double BASELINE = 3.8;                         ///< of the text below the middle of its line

/// Calls place(entry, x, y) for every entry, y being the middle of its line. @return height of all lines
template <typename Place>
double layOut(const PlotCanvas& canvas, const std::vector<LegendEntry>& entries, double width, Place place)
{
    double x = 0.0, y = 0.5 * LINE_HEIGHT;
    for (const LegendEntry& entry : entries) {
        const double entryWidth = (entry.drawSample ? LEGEND_SAMPLE_WIDTH : 0.0) + canvas.textWidth(entry.text);
        if (x > 0.0 && (entry.isOnNewLine || x + entryWidth > width)) {
            x = 0.0;
            y += LINE_HEIGHT;
        }
        place(entry, x, y);
        x += entryWidth + GAP;
    }
    return entries.empty() ? 0.0 : y + 0.5 * LINE_HEIGHT;
}

}  // namespace

double legendHeight(PlotCanvas& canvas, const std::vector<LegendEntry>& entries, double width)
{
    canvas.setFont(TEXT_SIZE, false);
    return layOut(canvas, entries, width, [](const LegendEntry&, double, double) {});
}

void drawLegend(PlotCanvas& canvas, const std::vector<LegendEntry>& entries, double left, double top, double width)
{
    canvas.setFont(TEXT_SIZE, false);
    layOut(canvas, entries, width, [&](const LegendEntry& entry, double x, double y) {
        cairo_t* const cr = canvas.context();
        if (entry.drawSample) {
            cairo_save(cr);
            cairo_translate(cr, left + x + 0.5 * LEGEND_SAMPLE_WIDTH - 4.0, top + y);
            entry.drawSample(cr);
            cairo_restore(cr);
        }
        cairo_set_source_rgb(cr, 0.0, 0.0, 0.0);
        canvas.drawText(entry.text, left + x + (entry.drawSample ? LEGEND_SAMPLE_WIDTH : 0.0), top + y + BASELINE);
    });
}

}  // namespace esttform::app

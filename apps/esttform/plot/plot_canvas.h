// PlotCanvas: a cairo surface of any of the three formats that ends up as bytes, and the text functions drawing needs.
#pragma once

#include "plot/plot.h"

#include <cairo.h>

#include <string>

namespace esttform::app {

class PlotCanvas {
public:
    /// A white page.
    ///
    /// @param width, height  in points of 1/72 inch; PNG has two pixels a point
    /// @throws Failure (OurFault) if the drawing library fails
    PlotCanvas(PlotFormat format, double width, double height);
    ~PlotCanvas();
    PlotCanvas(const PlotCanvas&) = delete;
    PlotCanvas& operator=(const PlotCanvas&) = delete;

    cairo_t* context() const noexcept { return mContext; }

    /// How fine images need to be: pixels of PNG, and what print and screens show of SVG and PDF.
    double pixelsPerPoint() const noexcept;

    /// Ends the drawing and hands out the file's bytes.
    ///
    /// @throws Failure (OurFault) if any drawing operation failed
    std::string finish();

    void setFont(double size, bool isBold);
    double textWidth(const std::string& text) const;
    /// A text cut so that it fits.
    std::string fitted(std::string text, double width) const;
    /// Draws a text with its baseline at y.
    ///
    /// @param anchor  0: x is its left end, 0.5 its middle, 1 its right end
    void drawText(const std::string& text, double x, double y, double anchor = 0.0);

private:
    PlotFormat mFormat;
    std::string mBytes;
    cairo_surface_t* mSurface = nullptr;
    cairo_t* mContext = nullptr;
};

}  // namespace esttform::app

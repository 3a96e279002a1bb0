#include "plot/plot_canvas.h"

#include "failure.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <fmt/format.h>

#include <cmath>
#include <new>

namespace esttform::app {

namespace {

constexpr double PNG_PIXELS_PER_POINT = 2.0;
constexpr double VECTOR_PIXELS_PER_POINT = 1.5;

cairo_status_t takeBytes(void* bytes, const unsigned char* data, unsigned int size)
try {
    static_cast<std::string*>(bytes)->append(reinterpret_cast<const char*>(data), size);
    return CAIRO_STATUS_SUCCESS;
} catch (const std::bad_alloc&) {
    return CAIRO_STATUS_NO_MEMORY;
}

void check(cairo_status_t status)
{
    if (status != CAIRO_STATUS_SUCCESS)
        throw Failure(fmt::format("--plot: cannot draw: {}", cairo_status_to_string(status)), ExitCode::OurFault);
}

}  // namespace

PlotCanvas::PlotCanvas(PlotFormat format, double width, double height) : mFormat(format)
{
    switch (format) {
    case PlotFormat::Svg:
        mSurface = cairo_svg_surface_create_for_stream(takeBytes, &mBytes, width, height);
        break;
    case PlotFormat::Pdf:
        mSurface = cairo_pdf_surface_create_for_stream(takeBytes, &mBytes, width, height);
        break;
    case PlotFormat::Png:
        mSurface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(std::ceil(width * PNG_PIXELS_PER_POINT)),
                                              static_cast<int>(std::ceil(height * PNG_PIXELS_PER_POINT)));
        cairo_surface_set_device_scale(mSurface, PNG_PIXELS_PER_POINT, PNG_PIXELS_PER_POINT);
        break;
    }
    mContext = cairo_create(mSurface);
    cairo_set_source_rgb(mContext, 1.0, 1.0, 1.0);
    cairo_paint(mContext);
}

PlotCanvas::~PlotCanvas()
{
    cairo_destroy(mContext);
    cairo_surface_destroy(mSurface);
}

std::string PlotCanvas::finish()
{
    check(cairo_status(mContext));
    if (mFormat == PlotFormat::Png)
        check(cairo_surface_write_to_png_stream(mSurface, takeBytes, &mBytes));
    cairo_surface_finish(mSurface);
    check(cairo_surface_status(mSurface));
    return std::move(mBytes);
}

double PlotCanvas::pixelsPerPoint() const noexcept
{
    return mFormat == PlotFormat::Png ? PNG_PIXELS_PER_POINT : VECTOR_PIXELS_PER_POINT;
}

void PlotCanvas::setFont(double size, bool isBold)
{
    cairo_select_font_face(mContext, "sans-serif", CAIRO_FONT_SLANT_NORMAL,
                           isBold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(mContext, size);
}

double PlotCanvas::textWidth(const std::string& text) const
{
    cairo_text_extents_t extents;
    cairo_text_extents(mContext, text.c_str(), &extents);
    return extents.x_advance;
}

std::string PlotCanvas::fitted(std::string text, double width) const
{
    const auto isContinuation = [](char c) { return (static_cast<unsigned char>(c) & 0xc0) == 0x80; };
    if (textWidth(text) <= width)
        return text;
    while (!text.empty() && textWidth(text + "...") > width) {
        while (!text.empty() && isContinuation(text.back()))
            text.pop_back();
        if (!text.empty())
            text.pop_back();
    }
    return text + "...";
}

void PlotCanvas::drawText(const std::string& text, double x, double y, double anchor)
{
    cairo_move_to(mContext, x - anchor * textWidth(text), y);
    cairo_show_text(mContext, text.c_str());
}

}  // namespace esttform::app

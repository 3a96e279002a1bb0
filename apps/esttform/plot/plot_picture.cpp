#include "plot/plot_picture.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace esttform::app {

namespace {

using Surface = std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)>;

/// Black becomes this grey; white stays.
constexpr std::uint32_t DARKEST = 112;
/// Greys are rounded to multiples of this: hardly visible, and the file is smaller.
constexpr std::uint32_t GREY_STEP = 6;

/// Weights of red, green and blue in the luminance, in 1/1000 (Rec. 601).
std::uint32_t fadedGrey(std::uint32_t pixel) noexcept
{
    const std::uint32_t grey = (299 * (pixel >> 16 & 0xff) + 587 * (pixel >> 8 & 0xff) + 114 * (pixel & 0xff)) / 1000;
    const std::uint32_t faded = DARKEST + grey * (255 - DARKEST) / 255;
    return std::min<std::uint32_t>(255, (faded + GREY_STEP / 2) / GREY_STEP * GREY_STEP) * 0x010101U;
}

/// Calls change(row) with the pixels of every row of an RGB24 surface.
template <typename Change>
void eachRow(cairo_surface_t* surface, Change change)
{
    cairo_surface_flush(surface);
    const int height = cairo_image_surface_get_height(surface);
    const auto stride = static_cast<std::ptrdiff_t>(cairo_image_surface_get_stride(surface));
    for (int y = 0; y < height; ++y)
        change(reinterpret_cast<std::uint32_t*>(cairo_image_surface_get_data(surface) + y * stride), y);
    cairo_surface_mark_dirty(surface);
}

Surface surfaceOf(int width, int height)
{
    return {cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height), cairo_surface_destroy};
}

/// Paints a surface over the rectangle (0, 0) to (width, height).
void paintScaled(cairo_t* cr, cairo_surface_t* source, double width, double height)
{
    cairo_scale(cr, width / cairo_image_surface_get_width(source), height / cairo_image_surface_get_height(source));
    cairo_set_source_surface(cr, source, 0.0, 0.0);
    cairo_pattern_set_extend(cairo_get_source(cr), CAIRO_EXTEND_PAD);
    cairo_rectangle(cr, 0.0, 0.0, cairo_image_surface_get_width(source), cairo_image_surface_get_height(source));
    cairo_fill(cr);
}

/// The drawing library's limit of a surface's width and height.
constexpr int SIDE_MAX = 32767;

/// The image, shrunk to at most this size.
Surface shrunk(const Picture& picture, int maxWidth, int maxHeight)
{
    const int step = 1 + (std::max(picture.width, picture.height) - 1) / SIDE_MAX;   // nearly always 1
    Surface full = surfaceOf((picture.width + step - 1) / step, (picture.height + step - 1) / step);
    if (cairo_surface_status(full.get()) != CAIRO_STATUS_SUCCESS)
        return full;
    const int fullWidth = cairo_image_surface_get_width(full.get()), fullHeight = cairo_image_surface_get_height(full.get());
    eachRow(full.get(), [&](std::uint32_t* row, int y) {
        const std::uint32_t* from = picture.pixels.data() + static_cast<std::ptrdiff_t>(y) * step * picture.width;
        for (int x = 0; x < fullWidth; ++x, from += step)
            row[x] = *from;
    });
    if (fullWidth <= maxWidth && fullHeight <= maxHeight)
        return full;
    Surface small = surfaceOf(std::min(fullWidth, maxWidth), std::min(fullHeight, maxHeight));
    cairo_t* const cr = cairo_create(small.get());
    paintScaled(cr, full.get(), cairo_image_surface_get_width(small.get()), cairo_image_surface_get_height(small.get()));
    cairo_destroy(cr);
    return small;
}

}  // namespace

PlotBox boxOf(const Picture& picture) noexcept
{
    return {-0.5, -0.5, picture.width - 0.5, picture.height - 0.5};
}

void drawPicture(PlotCanvas& canvas, const PlotFrame& frame, const Picture& picture)
{
    const double width = picture.width * frame.scale, height = picture.height * frame.scale;
    const double fineness = canvas.pixelsPerPoint();
    const auto pixelNum = [fineness](double length) { return std::max(1, static_cast<int>(std::lround(length * fineness))); };
    const Surface surface = shrunk(picture, pixelNum(width), pixelNum(height));
    if (cairo_surface_status(surface.get()) == CAIRO_STATUS_SUCCESS)
        eachRow(surface.get(), [&surface](std::uint32_t* row, int) {
            std::transform(row, row + cairo_image_surface_get_width(surface.get()), row, fadedGrey);
        });
    cairo_t* const cr = canvas.context();
    const PlotPoint corner = frame.at(-0.5, -0.5);
    cairo_save(cr);
    cairo_translate(cr, corner[0], corner[1]);
    paintScaled(cr, surface.get(), width, height);
    cairo_restore(cr);
}

}  // namespace esttform::app

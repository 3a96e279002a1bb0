#include "picture_files.h"

#include "program.h"

#include <gtest/gtest.h>

#include <random>

namespace {

/// The shapes lie on a box of this size and around it, whatever the map shows of them.
constexpr double SCENE_WIDTH = 480.0, SCENE_HEIGHT = 360.0;

template <typename Draw>
void writePicture(const std::string& path, int width, int height, Draw draw)
{
    cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
    cairo_t* const cr = cairo_create(surface);
    draw(cr);
    cairo_destroy(cr);
    EXPECT_EQ(cairo_surface_write_to_png(surface, path.c_str()), CAIRO_STATUS_SUCCESS);
    cairo_surface_destroy(surface);
}

}  // namespace

void writeScene(const std::string& path, int width, int height, const AffineMap& map)
{
    writePicture(path, width, height, [&](cairo_t* cr) {
        // Pixels have their centres at whole coordinates, half a pixel from where the drawing library has them.
        const cairo_matrix_t matrix{map[0], map[3], map[1], map[4], map[2] + 0.5, map[5] + 0.5};
        cairo_set_source_rgb(cr, 0.5, 0.5, 0.5);
        cairo_paint(cr);
        cairo_transform(cr, &matrix);
        std::mt19937 generator(11);
        const auto real = [&generator](double low, double high) {
            return low + (high - low) * static_cast<double>(generator()) / 4294967296.0;
        };
        for (int i = 0; i < 700; ++i) {
            const double x = real(-0.3, 1.3) * SCENE_WIDTH, y = real(-0.3, 1.3) * SCENE_HEIGHT, size = real(3.0, 18.0);
            const double red = real(0.0, 1.0), green = real(0.0, 1.0), blue = real(0.0, 1.0);
            cairo_set_source_rgb(cr, red, green, blue);
            if (i % 2 == 0)
                cairo_arc(cr, x, y, size, 0.0, 6.3);
            else
                cairo_rectangle(cr, x, y, size, 0.5 * size);
            cairo_fill(cr);
        }
    });
}

void writeBlank(const std::string& path, int width, int height, double grey)
{
    writePicture(path, width, height, [grey](cairo_t* cr) {
        cairo_set_source_rgb(cr, grey, grey, grey);
        cairo_paint(cr);
    });
}

esttform::app::Picture pictureOfPng(const std::string& bytes)
{
    const TempFolder folder;
    return esttform::app::readPng(folder.write("picture.png", bytes));
}

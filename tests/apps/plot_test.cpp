// Pictures: their geometry, formats and sizes.
#include "plot.h"
#include "plot_geometry.h"

#include "failure.h"

#include <cairo.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace esttform::app {
namespace {

/// Random matches, a third of them inliers.
PlotScene randomScene(int pairNum)
{
    std::mt19937 generator(3);
    std::uniform_real_distribution<double> place(0.0, 1000.0);
    PlotScene scene;
    for (int i = 0; i < pairNum; ++i) {
        scene.pairs.push_back({place(generator), place(generator), place(generator), place(generator)});
        scene.inliers.push_back(i % 3 == 0 ? 1 : 0);
    }
    scene.map = PointMap{{0.8, -0.6, 300.0, 0.6, 0.8, 0.0, 1e-4, 0.0, 1.0}};
    return scene;
}

struct PngSource {
    const std::string& bytes;
    std::size_t readNum = 0;
};

cairo_status_t readPng(void* source, unsigned char* data, unsigned int size)
{
    PngSource& png = *static_cast<PngSource*>(source);
    if (png.readNum + size > png.bytes.size())
        return CAIRO_STATUS_READ_ERROR;
    std::memcpy(data, png.bytes.data() + png.readNum, size);
    png.readNum += size;
    return CAIRO_STATUS_SUCCESS;
}

/// Share of pixels of a PNG that are not white.
double inkOf(const std::string& bytes)
{
    PngSource png{bytes};
    cairo_surface_t* const image = cairo_image_surface_create_from_png_stream(readPng, &png);
    EXPECT_EQ(cairo_surface_status(image), CAIRO_STATUS_SUCCESS);
    const int width = cairo_image_surface_get_width(image), height = cairo_image_surface_get_height(image);
    const unsigned char* const data = cairo_image_surface_get_data(image);
    int inkNum = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            std::uint32_t pixel = 0;
            std::memcpy(&pixel, data + y * cairo_image_surface_get_stride(image) + 4 * x, 4);
            inkNum += (pixel & 0xffffff) != 0xffffff ? 1 : 0;
        }
    cairo_surface_destroy(image);
    return static_cast<double>(inkNum) / (static_cast<double>(width) * height);
}

TEST(PlotTest, FormatsBeginAsTheyShould)
{
    const PlotScene scene = randomScene(50);
    EXPECT_NE(renderPlot(scene, "a.csv", "projective", PlotFormat::Svg).find("<svg"), std::string::npos);
    EXPECT_EQ(renderPlot(scene, "a.csv", "projective", PlotFormat::Pdf).substr(0, 5), "%PDF-");
    EXPECT_EQ(renderPlot(scene, "a.csv", "projective", PlotFormat::Png).substr(1, 3), "PNG");
    EXPECT_EQ(plotFormatOf("dir.png/a.SVG"), PlotFormat::Svg);
    EXPECT_THROW(plotFormatOf("a.gif"), Failure);
    EXPECT_THROW(plotFormatOf("png"), Failure);
}

TEST(PlotTest, ManyMatchesStaySmall)
{
    const std::string svg = renderPlot(randomScene(20000), "a.csv", "projective", PlotFormat::Svg);
    EXPECT_LT(svg.size(), 3000000u);
    EXPECT_GT(svg.size(), 500000u);                      // the points are there
}

TEST(PlotTest, DrawsWhateverTheMatchesAre)
{
    const double big = std::numeric_limits<double>::max(), nan = std::numeric_limits<double>::quiet_NaN();
    const PlotScene normal = randomScene(300);
    const double normalInk = inkOf(renderPlot(normal, "a.csv", "affine", PlotFormat::Png));
    EXPECT_GT(normalInk, 0.05);

    PlotScene wild = normal;                             // wild pairs neither blow up nor blank the picture
    for (const double value : {big, -big, nan, 1e12}) {
        wild.pairs.push_back({value, value, 1.0, 1.0});
        wild.inliers.push_back(0);
    }
    EXPECT_NEAR(inkOf(renderPlot(wild, "a.csv", "affine", PlotFormat::Png)), normalInk, 0.2 * normalInk);

    const std::vector<std::vector<Pair>> odd{{{5, 5, 5, 5}}, {{nan, nan, nan, nan}}, {{big, big, big, big}},
                                             {{0, 0, 1e6, 0}, {1, 0, 2e6, 0}}, {{1e-300, 0, 0, 1e-300}}, {{1e15, 0, 1e15 + 1, 0}}};
    for (const std::vector<Pair>& pairs : odd) {
        PlotScene scene;
        scene.pairs = pairs;
        scene.map = normal.map;
        EXPECT_GT(inkOf(renderPlot(scene, "name \xff not UTF-8.csv", "affine", PlotFormat::Png)), 0.01) << pairs[0][0];
        scene.map.reset();
        EXPECT_GT(inkOf(renderPlot(scene, std::string(500, 'x'), "affine", PlotFormat::Png)), 0.01) << pairs[0][0];
    }
}

// ---- Geometry

TEST(PlotGeometryTest, BoxLeavesFarPointsOut)
{
    std::vector<Pair> pairs;
    for (int i = 0; i <= 100; ++i)
        pairs.push_back({double(i), double(2 * i), 0.0, 0.0});
    pairs.push_back({1e7, 50.0, 0.0, 0.0});
    const PlotBox box = boxOfSet(pairs, 0);
    EXPECT_EQ(box.left, 0.0);
    EXPECT_EQ(box.right, 100.0);
    EXPECT_EQ(box.bottom, 200.0);
    const PlotBox place = boxOfSet(pairs, 1);
    EXPECT_EQ(place.width(), 1.0);
}

TEST(PlotGeometryTest, HorizonCutsTheOutline)
{
    const PlotBox box{0.0, 0.0, 10.0, 10.0};
    EXPECT_EQ(carriedOutline(box, PointMap{}).size(), 1u);
    // w = 1 - x/8 is zero at x = 8, within the box: the right edge is beyond the horizon, the left one in front.
    const PointMap map{{1, 0, 0, 0, 1, 0, -1.0 / 8.0, 0, 1}};
    const auto parts = carriedOutline(box, map);
    ASSERT_EQ(parts.size(), 2u);
    for (const Polyline& part : parts)
        for (const PlotPoint& p : part)
            EXPECT_GE(p[0], 0.0);                        // x/w stays positive in front, and turns negative beyond
}

TEST(PlotGeometryTest, FarOutlineDoesNotShrinkThePoints)
{
    const PlotBox box{0.0, 0.0, 10.0, 10.0};
    const PlotBox view = viewOf(box, box, {{{-1000.0, 0.0}, {0.0, 1e9}}});
    EXPECT_GE(view.left, -6.0);
    EXPECT_LE(view.bottom, 16.0);
    EXPECT_TRUE(view.contains(0.0, 0.0) && view.contains(10.0, 10.0));
}

TEST(PlotGeometryTest, TicksAreRound)
{
    EXPECT_EQ(ticksOf(-13.0, 31.0, 5), (std::vector<double>{-10, 0, 10, 20, 30}));
    EXPECT_EQ(ticksOf(0.0, 1000.0, 5), (std::vector<double>{0, 200, 400, 600, 800, 1000}));
    EXPECT_EQ(ticksOf(99.9, 100.9, 2), (std::vector<double>{100, 100.5}));
    EXPECT_LT(ticksOf(1e15, 1e15 + 1.0, 8).size(), 50u);
}

}  // namespace
}  // namespace esttform::app

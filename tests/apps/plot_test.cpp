// Pictures: their geometry, formats and sizes, images and distances in them.
#include "plot/plot.h"
#include "plot/plot_geometry.h"
#include "plot/plot_histogram.h"
#include "plot/plot_scene.h"

#include "failure.h"
#include "picture_files.h"
#include "program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
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

/// Share of pixels of a PNG that are not white.
double inkOf(const std::string& bytes)
{
    const Picture picture = pictureOfPng(bytes);
    const auto whiteNum = std::count(picture.pixels.begin(), picture.pixels.end(), 0xffffffU);
    return 1.0 - static_cast<double>(whiteNum) / static_cast<double>(picture.pixels.size());
}

/// Noise, which no format can pack.
std::shared_ptr<const Picture> noise(int width, int height)
{
    std::mt19937 generator(5);
    Picture picture{"noise.png", width, height, {}};
    for (int i = 0; i < width * height; ++i)
        picture.pixels.push_back(generator() & 0xffffffU);
    return std::make_shared<const Picture>(std::move(picture));
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
    PlotScene scene = randomScene(20000);
    for (const auto& image : {std::shared_ptr<const Picture>(), noise(1000, 750)})
        for (const PlotFormat format : {PlotFormat::Svg, PlotFormat::Png, PlotFormat::Pdf}) {
            scene.image1 = image;
            scene.image2.reset();
            EXPECT_LT(renderPlot(scene, "a.csv", "projective", format).size(), 3000000u) << static_cast<int>(format);
            scene.image2 = image;
            EXPECT_LT(renderPlot(scene, "a.csv", "projective", format).size(), 3000000u) << static_cast<int>(format);
        }
    scene.image1 = scene.image2 = nullptr;
    EXPECT_GT(renderPlot(scene, "a.csv", "projective", PlotFormat::Svg).size(), 500000u);   // the points are there
}

TEST(PlotTest, ImagesAreDrawnWhereTheyBelong)
{
    // A black image, 100 by 50 pixels, among points that span 400 by 400: its faded black covers 1/32 of their area.
    PlotScene scene;
    scene.pairs = {{0, 0, 0, 0}, {400, 0, 400, 0}, {0, 400, 0, 400}, {400, 400, 400, 400}};
    scene.image1 = std::make_shared<const Picture>(Picture{"black.png", 100, 50, std::vector<std::uint32_t>(5000, 0)});
    const auto fadedNum = [&scene] {
        const Picture plot = pictureOfPng(renderPlot(scene, "a.csv", "affine", PlotFormat::Png));
        const auto num = std::count(plot.pixels.begin(), plot.pixels.end(), 0x727272U);
        return std::pair{static_cast<double>(num), plot.width};
    };
    const auto [oneFrame, width] = fadedNum();
    const double side = 2.0 * 520.0 / 1.06 * 400.0 / 401.0;                  // of the points' box, in pixels of the plot
    EXPECT_NEAR(oneFrame, side * side / 32.0, 0.05 * side * side / 32.0);
    scene.image2 = scene.image1;
    EXPECT_GT(fadedNum().first, 0.2 * oneFrame);         // twice, in two smaller frames
    EXPECT_GT(fadedNum().second, width);
}

TEST(PlotTest, UnfitImagesAreNamed)
{
    const TempFolder folder;
    const struct {
        std::string path;
        const char* message;
    } CASES[] = {{folder.path("none.png"), "none.png: cannot open: No such file"},
                 {folder.path(""), "cannot read: Is a directory"},
                 {folder.write("a.jpg", "\xff\xd8\xff\xe0 and so on"), "a.jpg: a JPEG picture, expected PNG"},
                 {folder.write("a.csv", "x1,y1,x2,y2"), "a.csv: not a picture"},
                 {folder.write("empty.png", ""), "empty.png: empty"},
                 {folder.write("cut.png", renderPlot(randomScene(9), "", "affine", PlotFormat::Png).substr(0, 900)), "cut.png: damaged"}};
    for (const auto& c : CASES)
        try {
            readPng(c.path);
            ADD_FAILURE() << c.path << " was read";
        } catch (const Failure& failure) {
            EXPECT_NE(std::string(failure.what()).find(c.message), std::string::npos) << failure.what();
        }

    const Picture picture{"p.png", 1000, 500, {}};       // half of the points lie below its edge
    EXPECT_NE(pictureWarning(picture, randomScene(100).pairs, 1).find("of 100 second points lie outside"), std::string::npos);
    EXPECT_EQ(pictureWarning({"p.png", 1000, 1000, {}}, randomScene(100).pairs, 0), "");
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

// ---- Distances

TEST(HistogramTest, CountsInDecadesWithTheThresholdOnTheAxis)
{
    const double inf = std::numeric_limits<double>::infinity();
    std::vector<Residual> residuals(6);
    const double distances[] = {0.0, 0.2, 0.2, 5.0, 70.0, inf};
    for (std::size_t i = 0; i < residuals.size(); ++i)
        residuals[i].distance = distances[i];
    const Histogram h = histogramOf(residuals, {1, 1, 1, 0, 0, 0}, ThresholdRange{300.0, 300.0});
    EXPECT_EQ(h.lowDecade, -3);
    EXPECT_EQ(h.highDecade, 3);                          // 300 lies below 10^3
    ASSERT_EQ(h.bins.size(), 6u * Histogram::BINS_PER_DECADE);
    using Bin = std::array<std::int64_t, 2>;             // outliers, inliers
    EXPECT_EQ(h.bins[0], (Bin{0, 1}));                   // zero, which is below the axis
    EXPECT_TRUE(h.hasBelow);
    EXPECT_FALSE(h.hasAbove);
    EXPECT_EQ(h.bins[2 * 6 + 1], (Bin{0, 2}));           // 10^-0.70, between -1 + 1/6 and -1 + 2/6
    EXPECT_EQ(h.bins[3 * 6 + 4], (Bin{1, 0}));           // 10^0.699
    EXPECT_EQ(h.bins[4 * 6 + 5], (Bin{1, 0}));           // 10^1.845
    EXPECT_EQ(h.notCountedNum, 1);
    EXPECT_EQ(h.highest(), 2);
}

TEST(ResidualTest, ThresholdInPixelsFollowsTheDenominator)
{
    // w = 1 + x/100: 1 at the first pair, 3 at the second; the third, beyond the horizon, has no distance.
    const PointMap map{{1, 0, 0, 0, 1, 0, 0.01, 0, 1}};
    const std::vector<Residual> residuals = residualsOf({{0, 0, 3, 4}, {200, 0, 200.0 / 3, 2}, {-100, 0, 0, 0}}, map);
    EXPECT_EQ(residuals[0].distance, 5.0);
    EXPECT_DOUBLE_EQ(residuals[1].distance, 2.0);
    EXPECT_FALSE(std::isfinite(residuals[2].distance));
    const ThresholdRange range = thresholdRange(residuals, {}, 9.0);
    EXPECT_DOUBLE_EQ(range.low, 1.0);
    EXPECT_DOUBLE_EQ(range.high, 3.0);
    EXPECT_EQ(thresholdRange(residuals, {1, 0, 0}, 9.0).low, 3.0);
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

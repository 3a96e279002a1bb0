// Paths of known motions: chained, bridged, smoothed, corrected; and what the program writes about them.
#include "program.h"
#include "stabilise/trajectory.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace {

using namespace esttform::app;
using Complex = std::complex<double>;

const double DEGREE = std::acos(-1.0) / 180.0;

/// Rows of one frame: six by four points under z -> a * z + b.
std::string frameRows(int frame, Complex a, Complex b)
{
    std::ostringstream rows;
    rows.precision(17);
    for (int i = 0; i < 24; ++i) {
        const Complex z(100.0 * (i % 6), 100.0 * (i / 6)), image = a * z + b;
        rows << frame << ',' << z.real() << ',' << z.imag() << ',' << image.real() << ',' << image.imag() << '\n';
    }
    return rows.str();
}

/// The rows of a CSV text below its head, as numbers; an empty field is -1.
std::vector<std::vector<double>> numbersOf(const std::string& csv)
{
    std::vector<std::vector<double>> rows;
    std::istringstream stream(csv);
    std::string row;
    std::getline(stream, row);
    while (std::getline(stream, row)) {
        rows.emplace_back();
        std::istringstream fields(row);
        for (std::string field; std::getline(fields, field, ',');)
            rows.back().push_back(field.empty() ? -1.0 : std::stod(field));
    }
    return rows;
}

TEST(TrajectoryTest, ReducesAMapToTheSimilarityAtTheCentre)
{
    PointMap map;                                        // turns by 90 degrees about (10, 20), doubles, shifts by (3, 4)
    map.m = {0, -2, 10 + 2 * 20 + 3, 2, 0, 20 - 2 * 10 + 4, 0, 0, 1};
    const auto motion = motionOf(map, {10, 20});
    ASSERT_TRUE(motion);
    EXPECT_NEAR(std::abs(motion->t - Complex(3, 4)), 0.0, 1e-12);
    EXPECT_NEAR(motion->logA.real(), std::log(2.0), 1e-12);
    EXPECT_NEAR(motion->logA.imag(), 90 * DEGREE, 1e-12);
    map.m = {1, 0, 0, 0, 1, 0, 0.01, 0, 1};              // at (100, 0): w = 2, slopes 1/4 and 1/2
    EXPECT_NEAR(motionOf(map, {100, 0})->logA.real(), std::log(0.375), 1e-12);
    EXPECT_NEAR(motionOf(map, {100, 0})->t.real(), -50.0, 1e-12);
    map.m = {-1, 0, 0, 0, 1, 0, 0, 0, 1};
    EXPECT_FALSE(motionOf(map, {0, 0})) << "a mirror";
}

TEST(TrajectoryTest, BridgesBetweenKnownMotionsAndStandsStillBeyondThem)
{
    const Motion two{{0.0, 0.2}, {2.0, 0.0}}, eight{{0.0, 0.8}, {8.0, 6.0}};
    const auto filled = bridged({{}, two, {}, {}, eight, {}});
    const double xs[] = {0, 2, 4, 6, 8, 0}, ys[] = {0, 0, 2, 4, 6, 0}, angles[] = {0, 0.2, 0.4, 0.6, 0.8, 0};
    for (std::size_t k = 0; k < 6; ++k) {
        EXPECT_NEAR(filled[k].t.real(), xs[k], 1e-12) << k;
        EXPECT_NEAR(filled[k].t.imag(), ys[k], 1e-12) << k;
        EXPECT_NEAR(filled[k].logA.imag(), angles[k], 1e-12) << k;
    }
}

TEST(TrajectoryTest, CorrectionBringsEveryPictureOntoTheSmoothPath)
{
    const Complex centre(320, 240);
    std::vector<Motion> motions;
    for (int k = 0; k < 40; ++k)
        motions.push_back({{0.01 * std::sin(k), 0.1 * std::cos(2.0 * k) + 0.2}, {3.0 + std::sin(5.0 * k), -std::cos(3.0 * k)}});
    const auto path = chained(motions), smooth = smoothed(path, Smoothing::Gaussian, 9);
    EXPECT_GT(path.back().logA.imag(), 2 * 180 * DEGREE) << "more than one turn";
    Complex point(500, 100);                             // of the first picture, carried on motion by motion
    for (std::size_t k = 0; k <= motions.size(); ++k) {
        const auto corrected = correctionOf(path[k], smooth[k], centre).apply(point.real(), point.imag());
        const Complex expected = centre + std::exp(smooth[k].logA) * (Complex(500, 100) - centre) + smooth[k].t;
        EXPECT_NEAR(std::abs(Complex(corrected[0], corrected[1]) - expected), 0.0, 1e-9) << k;
        if (k < motions.size())
            point = centre + std::exp(motions[k].logA) * (point - centre) + motions[k].t;
    }
}

TEST(TrajectoryTest, SmoothingKeepsSteadyMotionAndDampsShaking)
{
    for (const Smoothing smoothing : {Smoothing::Gaussian, Smoothing::Average}) {
        for (const std::size_t radius : {std::size_t{0}, std::size_t{4}, std::size_t{1000}}) {
            std::vector<Motion> steady, shaken;
            for (int k = 0; k < 30; ++k) {
                steady.push_back({{0.0, 0.1 * k}, {2.0 * k, -1.0 * k}});
                shaken.push_back({{}, {k % 2 == 0 ? 5.0 : -5.0, 0.0}});
            }
            const auto same = smoothed(steady, smoothing, radius), still = smoothed(shaken, smoothing, radius);
            for (std::size_t k = 0; k < steady.size(); ++k)
                EXPECT_NEAR(std::abs(same[k].t - steady[k].t), 0.0, 1e-10) << k << ", radius " << radius;
            EXPECT_NEAR(std::abs(still[15].t.real()), radius == 0 ? 5.0 : 0.5, radius == 0 ? 0.0 : 0.5) << radius;
        }
    }
    const std::vector<Motion> impulse{{}, {}, {}, {{}, {1.0, 0.0}}, {}, {}, {}};
    EXPECT_NEAR(smoothed(impulse, Smoothing::Average, 1)[2].t.real(), 1.0 / 3.0, 1e-12);
    const auto gaussian = smoothed(impulse, Smoothing::Gaussian, 3);   // standard deviation 1
    EXPECT_NEAR(gaussian[2].t.real() / gaussian[3].t.real(), std::exp(-0.5), 1e-12);
}

TEST(StabiliseTest, WritesOneRowAPictureAndBridgesWhatIsMissing)
{
    const TempFolder folder;
    const Complex turn = std::polar(1.02, 2 * DEGREE), centre(250, 150);
    std::string text = "frame,x1,y1,x2,y2\n";
    for (const int frame : {5, 6, 9, 10, 11})            // 7 and 8 are not there, 10 has too few pairs
        text += frame == 10 ? "10,1,1,2,2\n10,5,1,6,2\n10,1,5,2,6\n" : frameRows(frame, turn, centre - turn * centre);
    const std::string path = folder.write("pairs.csv", text), plot = folder.path("path.svg");
    const ProgramRun run = runProgram({"stabilise", path, "--seed", "1", "--plot", plot});
    EXPECT_EQ(run.code, 0);
    EXPECT_NE(run.err.find("frames 7 to 8: no rows; bridged"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("frame 10: 3 inliers, expected at least 10"), std::string::npos) << run.err;
    const ProgramRun any = runProgram({"stabilise", path, "--seed", "1", "--min-inliers", "0"});
    EXPECT_NE(any.err.find("frame 10: not to be trusted: as few inliers as chance gives; bridged"), std::string::npos) << any.err;
    RunSetting stream;
    stream.input = text.substr(0, text.find("\n9,") + 1);
    for (int i = 0; i < 99; ++i)
        stream.input += frameRows(9, turn, centre - turn * centre);    // many times as large as the first frame
    const std::string grown = folder.write("grown.csv", stream.input);
    EXPECT_EQ(runProgram({"stabilise", "-", "--seed", "1"}, stream).out, runProgram({"stabilise", grown, "--seed", "1"}).out);
    const auto rows = numbersOf(run.out);
    ASSERT_EQ(rows.size(), 8u) << "motions 5 to 11";
    const double found[] = {1, 1, 0, 0, 1, 0, 1, -1};
    for (std::size_t k = 0; k < rows.size(); ++k) {
        ASSERT_EQ(rows[k].size(), 16u);
        EXPECT_EQ(rows[k][0], 5.0 + static_cast<double>(k));
        EXPECT_EQ(rows[k][1], found[k]);
        EXPECT_NEAR(rows[k][2], 0.0, 1e-9) << "the middle of the points stays";
        EXPECT_NEAR(rows[k][4], 2.0 * static_cast<double>(k), 1e-9);
        EXPECT_NEAR(rows[k][5], std::pow(1.02, static_cast<double>(k)), 1e-9);
        EXPECT_NEAR(rows[k][8], rows[k][4], 1e-9) << "steady motion stays";
        EXPECT_NEAR(rows[k][10], 1.0, 1e-9) << "nothing to correct";
    }
    const std::string svg = readFile(plot);
    EXPECT_NE(svg.find("<svg"), std::string::npos);
    EXPECT_EQ(svg.find("nan"), std::string::npos);
}

TEST(StabiliseTest, RefusesWhatIsNoSequence)
{
    const TempFolder folder;
    const std::string rows = frameRows(1, 1.0, 0.0) + frameRows(0, 1.0, 0.0);
    const ProgramRun back = runProgram({"stabilise", folder.write("back.csv", "frame,x1,y1,x2,y2\n" + rows), "-q"});
    EXPECT_EQ(back.code, 2);
    EXPECT_NE(back.err.find("frame 0 after frame 1, expected ascending numbers"), std::string::npos) << back.err;
    const ProgramRun none = runProgram({"stabilise", folder.write("pairs.csv", similarityMatches(20))});
    EXPECT_EQ(none.code, 2);
    EXPECT_NE(none.err.find("no column frame"), std::string::npos) << none.err;
    const ProgramRun few = runProgram({"stabilise", folder.write("few.csv", "frame,x1,y1,x2,y2\n0,1,1,2,2\n"), "-q"});
    EXPECT_EQ(few.code, 1) << "nothing found";
    EXPECT_EQ(numbersOf(few.out).size(), 2u);
}

}  // namespace

// 'esttform register': rendered pictures with a known transformation, and pictures that cannot be registered.
#include "picture_files.h"
#include "program.h"
#include "registering/register_pictures.h"

#include "failure.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdlib>

namespace {

constexpr int WIDTH = 480, HEIGHT = 360;
constexpr AffineMap IDENTITY{1, 0, 0, 0, 1, 0};
constexpr AffineMap SIMILARITY{0.86, -0.31, 70.0, 0.31, 0.86, -40.0};
constexpr AffineMap AFFINE{1.1, 0.12, -50.0, -0.08, 0.85, 40.0};

/// This program is linked with a loader that knows of no library, as the program is where OpenCV was not found.
TEST(RegisterTest, WithoutLibraryNamesThePackage)
{
    try {
        esttform::app::loadVision();
        FAIL() << "loaded";
    } catch (const esttform::app::Failure& failure) {
        EXPECT_NE(std::string(failure.what()).find("libopencv-dev"), std::string::npos) << failure.what();
    }
}

TEST(BlendTest, LeavesOutWhatLiesBeyondTheHorizon)
{
    using namespace esttform::app;
    const Picture first{"", 10, 1, std::vector<std::uint32_t>(10, 0x808080)}, warped{"", 10, 1, std::vector<std::uint32_t>(10, 0)};
    PointMap map;
    map.m = {1, 0, -5, 0, 1, 0, -0.3, 0, 1};             // x = 4 goes to 5, with w = -0.2
    const Picture picture = blended(first, warped, warped, map);
    EXPECT_EQ(picture.pixels, first.pixels) << "no pixel has both w > 0 and a place in the second picture";
}

#ifdef HAS_VISION

/// Largest distance between the images of the first picture's corners.
double cornerError(const nlohmann::json& tform, const AffineMap& truth)
{
    const auto row = [&tform](std::size_t r, double x, double y) {
        return tform[r][0].get<double>() * x + tform[r][1].get<double>() * y + tform[r][2].get<double>();
    };
    double error = 0.0;
    for (const double x : {0.0, WIDTH - 1.0})
        for (const double y : {0.0, HEIGHT - 1.0}) {
            const double w = tform.size() > 2 ? row(2, x, y) : 1.0;
            error = std::max(error, std::hypot(row(0, x, y) / w - (truth[0] * x + truth[1] * y + truth[2]),
                                               row(1, x, y) / w - (truth[3] * x + truth[4] * y + truth[5])));
        }
    return error;
}

struct PairCase {
    const char* name;
    AffineMap truth;
    const char* type;
    double errorMax;                     ///< pixels; measured ones are below half of it
};

class RegisterPairTest : public ::testing::TestWithParam<PairCase> {};

TEST_P(RegisterPairTest, FindsTheMap)
{
    const TempFolder folder;
    const std::string first = folder.path("first.png"), second = folder.path("second.png"), csv = folder.path("m.csv");
    writeScene(first, WIDTH, HEIGHT, IDENTITY);
    writeScene(second, WIDTH, HEIGHT, GetParam().truth);
    const std::vector<std::string> settings{"--seed", "1", "--format", "json", "--type", GetParam().type};
    std::vector<std::string> words{"register", first, second, "--matches", csv};
    for (const auto& [option, name] :
         {std::pair{"--warped", "w.png"}, {"--blended", "b.png"}, {"--plot", "p.svg"}, {"--report", "r.html"}})
        words.insert(words.end(), {option, folder.path(name)});
    words.insert(words.end(), settings.begin(), settings.end());
    const ProgramRun run = runProgram(words);
    ASSERT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(run.err, "");
    EXPECT_LT(cornerError(nlohmann::json::parse(run.out)["tform"], GetParam().truth), GetParam().errorMax);

    words = {"estimate", csv};                           // the matches give the same bits
    words.insert(words.end(), settings.begin(), settings.end());
    EXPECT_EQ(runProgram(words).out, run.out);

    // Where the second picture has something to show, its warp is the first picture, and so is the blend of both.
    const auto expected = pictureOfPng(readFile(first));
    for (const char* const name : {"w.png", "b.png"}) {
        const auto actual = pictureOfPng(readFile(folder.path(name)));
        ASSERT_EQ(actual.pixels.size(), expected.pixels.size());
        int closeNum = 0, num = 0;
        for (std::size_t i = 0; i < actual.pixels.size(); ++i)
            if (actual.pixels[i] != 0) {
                ++num;
                closeNum += std::abs(int(actual.pixels[i] >> 8 & 0xff) - int(expected.pixels[i] >> 8 & 0xff)) <= 24 ? 1 : 0;
            }
        EXPECT_GT(num, WIDTH * HEIGHT / 2) << name;
        EXPECT_GT(closeNum, 0.9 * num) << name;          // edges of the shapes are blurred
    }
    for (const char* const name : {"p.svg", "r.html"})
        EXPECT_NE(readFile(folder.path(name)).find("<image"), std::string::npos) << name;
}

const PairCase PAIRS[] = {{"similarity", SIMILARITY, "similarity", 0.4},
                          {"affine", AFFINE, "affine", 0.5},
                          {"projective", AFFINE, "projective", 0.9},
                          {"halfTurn", {-1, 0, WIDTH - 1.0, 0, -1, HEIGHT - 1.0}, "similarity", 0.15},
                          {"identical", IDENTITY, "projective", 1e-6}};
INSTANTIATE_TEST_SUITE_P(, RegisterPairTest, ::testing::ValuesIn(PAIRS),
                         [](const auto& testCase) { return std::string(testCase.param.name); });

TEST(RegisterTest, PointsOfReducedPicturesCountInTheFullOne)
{
    const TempFolder folder;
    const std::string first = folder.path("first.png"), second = folder.path("second.png");
    writeScene(first, WIDTH, HEIGHT, IDENTITY);
    writeScene(second, 7 * WIDTH, 7 * HEIGHT, {7, 0, 30, 0, 7, 50});         // 8.5 megapixels, reduced for detection
    const ProgramRun run = runProgram({"register", first, second, "--seed", "1", "--format", "json", "--threshold-px", "6"});
    ASSERT_EQ(run.code, 0) << run.err;
    EXPECT_LT(cornerError(nlohmann::json::parse(run.out)["tform"], {7, 0, 30, 0, 7, 50}), 5.0);   // 7 are one pixel of the first
}

TEST(RegisterTest, SixteenBitsAreTakenByTheirRange)
{
    const TempFolder folder;
    const std::string first = folder.path("first.png");
    writeScene(first, WIDTH, HEIGHT, IDENTITY);
    std::string dark = fmt::format("P5\n{} {}\n65535\n", WIDTH, HEIGHT);      // of ten bits, as cameras write it
    for (const std::uint32_t pixel : pictureOfPng(readFile(first)).pixels) {
        const std::uint32_t grey = (pixel & 0xff) + (pixel >> 8 & 0xff) + (pixel >> 16 & 0xff);
        dark += {static_cast<char>(grey >> 8), static_cast<char>(grey & 0xff)};
    }
    const ProgramRun run = runProgram({"register", first, folder.write("dark.pgm", dark), "--seed", "1", "--format", "json"});
    ASSERT_EQ(run.code, 0) << run.err;
    EXPECT_LT(cornerError(nlohmann::json::parse(run.out)["tform"], IDENTITY), 0.5);
}

TEST(RegisterTest, PicturesThatCannotBeRegistered)
{
    const TempFolder folder;
    const std::string scene = folder.path("scene.png"), blank = folder.path("blank.png"), dot = folder.path("dot.png");
    writeScene(scene, WIDTH, HEIGHT, IDENTITY);
    writeBlank(blank, 300, 200, 1.0);
    writeBlank(dot, 1, 1, 0.0);
    const std::string cut = folder.write("cut.png", readFile(scene).substr(0, 2000));
    const std::string warped = folder.path("warped.png");
    const struct {
        std::vector<std::string> words;
        int code;
        const char* message;
    } CASES[] = {{{folder.path("none.png"), scene}, 2, "none.png: cannot read: No such file"},
                 {{scene, folder.path("")}, 2, "cannot read: Is a directory"},
                 {{folder.write("empty.png", ""), scene}, 2, "empty.png: empty"},
                 {{scene, folder.write("text.png", "x1,y1,x2,y2\n1,2,3,4\n")}, 2, "text.png: not a picture"},
                 {{cut, scene}, 2, "cut.png: not a picture in a format that is known, or damaged"},
                 {{blank, scene}, 1, "0 features in the first picture"},
                 {{dot, dot}, 1, "0 matches; the transformation needs at least 4 matches"},
                 {{scene, scene, "--points-type", "uint8"}, 2, "expected double or single"},
                 {{scene, scene, "--warped", folder.path("warped.gif")}, 2, "ends in .png or .jpg"},
                 {{scene, scene, "--warped", warped, "--blended", warped}, 2, "both write to"}};
    for (const auto& c : CASES) {
        std::vector<std::string> words{"register", "--plot", folder.path("plot.svg")};
        words.insert(words.end(), c.words.begin(), c.words.end());
        const ProgramRun run = runProgram(words);
        EXPECT_EQ(run.code, c.code) << run.err;
        EXPECT_NE(run.err.find(c.message), std::string::npos) << run.err;
        EXPECT_EQ(run.out, "") << c.message;
        EXPECT_FALSE(std::filesystem::exists(folder.path("plot.svg"))) << c.message;
    }
}

#endif

}  // namespace

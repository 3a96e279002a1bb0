// Diagnosis: sound results raise nothing, each kind of unsound one its own warning, and no result changes.
#include "diagnosis/chance.h"
#include "diagnosis/diagnosis.h"
#include "program.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace esttform::app {
namespace {

/// A step whose outputs a test makes up: a projective TForm in columns and a mask.
struct MadeStep {
    std::vector<Pair> pairs;
    std::vector<double> tform;                           // row by row
    std::vector<std::uint8_t> mask;
};

std::vector<Pair> mappedPairs(const std::vector<double>& m, int num, double width)
{
    std::mt19937 random(3);
    std::uniform_real_distribution<double> coordinate(0.0, width);
    std::vector<Pair> pairs;
    for (int i = 0; i < num; ++i) {
        const double x = coordinate(random), y = coordinate(random), w = m[6] * x + m[7] * y + m[8];
        pairs.push_back({x, y, (m[0] * x + m[1] * y + m[2]) / w, (m[3] * x + m[4] * y + m[5]) / w});
    }
    return pairs;
}

std::string codesOf(const MadeStep& made, bool isRobust = true)
{
    std::vector<double> columns;
    for (std::size_t col = 0; col < 3; ++col)
        for (std::size_t row = 0; row < 3; ++row)
            columns.push_back(made.tform[3 * row + col]);
    StepResult result;
    result.ptsNum = static_cast<std::int32_t>(made.pairs.size());
    result.tformRows = result.tformCols = 3;
    result.tformData = columns.data();
    result.inliers = isRobust ? made.mask.data() : nullptr;
    for (const std::uint8_t inlier : made.mask)
        result.inlierNum += inlier;
    BlockOptions options;
    options.isNotRobust = !isRobust;
    return warningCodes(diagnose(made.pairs, result, Layout::Columns, resolveBlockOptions(options), "reason"));
}

/// A hundred pairs under a map, all of them inliers, over a picture of 500 pixels.
MadeStep sound(const std::vector<double>& tform)
{
    return {mappedPairs(tform, 100, 500.0), tform, std::vector<std::uint8_t>(100, 1)};
}

const std::vector<double> PLAIN{1.1, 0.1, 20, -0.1, 0.9, 5, 1e-4, 2e-4, 1};

struct DiagnosisCase {
    const char* name;
    MadeStep (*make)();
    const char* codes;
};

const DiagnosisCase CASES[] = {
    {"sound", [] { return sound(PLAIN); }, ""},
    {"halfWrong",
     [] {
         MadeStep made = sound(PLAIN);
         for (std::size_t i = 0; i < 50; ++i) {
             made.pairs[i][2] = made.pairs[99 - i][3];
             made.mask[i] = 0;
         }
         return made;
     },
     ""},
    {"oneSampleOfInliers",
     [] {
         MadeStep made = sound(PLAIN);
         for (std::size_t i = 4; i < 100; ++i) {
             made.pairs[i][2] += 200.0;
             made.mask[i] = 0;
         }
         return made;
     },
     "chance onePlace"},
    {"onePlace",
     [] {
         MadeStep made = sound(PLAIN);
         for (std::size_t i = 0; i < 100; ++i) {
             made.mask[i] = i < 40;
             if (i < 40)
                 made.pairs[i] = mappedPairs(PLAIN, 40, 14.0)[i];
             else
                 made.pairs[i][3] += 200.0;
         }
         return made;
     },
     "onePlace"},
    {"onePairOffTheLine",
     [] {
         MadeStep made = sound({1, 0, 0, 0, 1, 0, 0, 0, 1});
         for (std::size_t i = 0; i < 100; ++i) {
             made.mask[i] = i <= 40;
             if (i < 40)
                 made.pairs[i][1] = made.pairs[i][3] = 100.0 + 0.3 * made.pairs[i][0];
             else if (i > 40)
                 made.pairs[i][3] += 200.0;
         }
         made.pairs[40] = {100, 450, 100, 450};
         return made;
     },
     "onePlace"},
    {"twoWildMatches",
     [] {
         MadeStep made = sound(PLAIN);
         for (std::size_t i = 0; i < 2; ++i) {
             made.pairs[i] = {1e7, 1e7 * static_cast<double>(i), -1e7, 1e7};
             made.mask[i] = 0;
         }
         return made;
     },
     ""},
    {"noPairAgrees",
     [] {
         MadeStep made = sound(PLAIN);
         made.mask.assign(100, 0);
         return made;
     },
     "noInliers"},
    {"notFinite", [] { MadeStep made = sound(PLAIN); made.tform[4] = std::nan(""); return made; }, "notFinite"},
    {"mirrored", [] { return sound({-1, 0, 400, 0, 1, 0, 0, 0, 1}); }, "mirrored"},
    {"flattened", [] { return sound({1, 0, 0, 0, 0.01, 0, 0, 0, 1}); }, "collapsed"},
    {"horizon", [] { return sound({1, 0, 0, 0, 1, 0, -0.004, 0, 1}); }, "horizon"},
    {"inliersByAlgebraOnly",
     [] {
         MadeStep made = sound({1, 0, 0, 0, 1, 0, -0.00199, 0, 1});   // w is small at the right edge
         for (Pair& pair : made.pairs)
             pair[2] += pair[0] > 400.0 ? 9.0 : 0.0;
         return made;
     },
     "farInliers"},
    {"notFound", [] { return MadeStep{mappedPairs(PLAIN, 9, 99.0), std::vector<double>(9, 0.0), std::vector<std::uint8_t>(9, 0)}; },
     "notFound"},
};

class DiagnosisTest : public ::testing::TestWithParam<DiagnosisCase> {};

TEST_P(DiagnosisTest, NamesWhatSpeaksAgainstTheResult)
{
    EXPECT_EQ(codesOf(GetParam().make()), GetParam().codes);
}

INSTANTIATE_TEST_SUITE_P(, DiagnosisTest, ::testing::ValuesIn(CASES), [](const auto& test) { return std::string(test.param.name); });

TEST(DiagnosisOfAllPairsTest, WarnsWhenManyPairsAreFarFromTheFit)
{
    MadeStep made = sound(PLAIN);
    for (std::size_t i = 0; i < 100; ++i)
        made.pairs[i][2] += i % 2 == 0 ? 3.0 : -3.0;     // noise
    for (std::size_t i = 0; i < 9; ++i)
        made.pairs[i][3] += 100.0;
    EXPECT_EQ(codesOf(made, false), "");
    made.pairs[9][3] += 100.0, made.pairs[10][3] += 100.0;
    EXPECT_EQ(codesOf(made, false), "misfit");
    made.pairs.assign(100, Pair{7, 7, 8, 8});
    EXPECT_EQ(codesOf(made, false), "onePlace");
    MadeStep line = sound(PLAIN);
    for (Pair& pair : line.pairs)
        pair = {pair[0], 3.0 * pair[0] + 1.0, pair[0], 3.0 * pair[0]};
    line.tform = {1, 0, 0, 0, 1, -1, 0, 0, 1};
    for (const bool isRobust : {false, true})
        EXPECT_EQ(codesOf(line, isRobust), "onePlace");
}

TEST(ChanceTest, CountsResultsOfChance)
{
    EXPECT_NEAR(log10ChanceResults(4, 4, 4, 0.01), 0.0, 1e-12) << "four pairs fit whatever they are";
    EXPECT_NEAR(log10ChanceResults(10, 10, 4, 0.1), std::log10(210.0) - 6.0, 1e-9) << "all six others agree, out of 210 samples";
    EXPECT_NEAR(log10ChanceResults(5, 5, 4, 0.5), std::log10(2.5), 1e-12);
    EXPECT_LT(log10ChanceResults(25000, 7500, 2, 1e-5), -10000.0) << "no overflow";
}

TEST(DiagnoseOptionTest, WarnsOfUnrelatedPointsAndChangesNoResult)
{
    const TempFolder folder;
    std::mt19937 random(5);
    std::string text = "x1,y1,x2,y2\n";
    for (int i = 0; i < 60; ++i) {
        for (int k = 0; k < 4; ++k)
            text += (k > 0 ? "," : "") + std::to_string(random() % 640);
        text += "\n";
    }
    const std::string path = folder.write("unrelated.csv", text);
    const ProgramRun plain = runProgram({"estimate", path, "--seed", "1", "--format", "json"});
    const ProgramRun diagnosed = runProgram({"estimate", path, "--seed", "1", "--format", "json", "--diagnose"});
    EXPECT_EQ(diagnosed.out.substr(0, plain.out.size() - 2), plain.out.substr(0, plain.out.size() - 2));
    EXPECT_NE(diagnosed.out.find("\"code\":\"chance\""), std::string::npos) << diagnosed.out;
    EXPECT_EQ(plain.err, "");
    EXPECT_NE(runProgram({"estimate", path, "--seed", "1"}).err.find("not to be trusted: "), std::string::npos);
    EXPECT_EQ(runProgram({"estimate", path, "--seed", "1", "--no-diagnose"}).err, "");
}

TEST(DiagnoseOptionTest, KnowsASimilarityThatHoldsAlongALineOnly)
{
    const TempFolder folder;
    const auto codes = [&](const std::vector<double>& map, double height) {
        std::string text = "x1,y1,x2,y2\n";
        for (Pair pair : mappedPairs(map, 400, 600.0)) {
            if (pair[1] > height)
                pair[2] = 600.0 - pair[2] / 3.0;         // a wrong match
            text += fmt::format("{},{},{},{}\n", pair[0], pair[1], pair[2], pair[3]);
        }
        const std::string path = folder.write("matches.csv", text);
        const std::string line = runProgram({"estimate", path, "--type", "similarity", "--seed", "1", "--format", "csv", "--diagnose"}).out;
        return line.substr(line.rfind(',') + 1);
    };
    EXPECT_EQ(codes({-1, 0, 600, 0, 1, 0, 0, 0, 1}, 600.0), "strip\n") << "mirrored";
    EXPECT_EQ(codes({1, 0.5, 0, 0.1, 1.5, 0, 0, 0, 1}, 600.0), "strip\n") << "sheared";
    EXPECT_EQ(codes({0.9, 0.2, 7, -0.2, 0.9, 3, 0, 0, 1}, 70.0), "\n") << "right matches within a strip, as pictures overlap";
}

}  // namespace
}  // namespace esttform::app

// The points where the generated step is known to differ from the engine's: each case shows both sides.
#include "side_by_side.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>

namespace codegentest {
namespace {

using esttform::DataType;
using esttform::Method;
using esttform::Sampling;
using esttform::Settings;
using esttform::TransformType;

/// Similarities from double points, a fixed number of samplings, small enough to count.
Settings basicSettings()
{
    Settings settings;
    settings.type = TransformType::Similarity;
    settings.threshold = 1.0;
    settings.sampleNum = 20;
    settings.confidence.reset();
    return settings;
}

SideBySide makeBoth(const Settings& settings, std::size_t maxPtsNum, bool isVariable = false)
{
    return SideBySide(esttform::toParams(settings), settings.pointsType, static_cast<std::int32_t>(maxPtsNum), isVariable);
}

/// Exact matches of a shift by whole numbers; the last ones are wrong, no two of them alike.
Matches shiftedMatches(int ptsNum, int wrongNum)
{
    Matches matches;
    for (int i = 0; i < ptsNum; ++i) {
        const double x = 10 * (i % 7) + i, y = 8 * (i / 7) + i % 3;
        const double error = i < ptsNum - wrongNum ? 0.0 : 50.0 + 13 * i * (i % 2 == 0 ? 1 : -1);
        matches.push_back({x, y, x + 2.0 + error, y + 3.0 - 2.0 * error});
    }
    return matches;
}

const std::vector<double> SHIFT_TFORM = {1.0, 0.0, 0.0, 1.0, 2.0, 3.0};

void expectNear(const std::vector<double>& got, const std::vector<double>& expected, const char* what)
{
    ASSERT_EQ(got.size(), expected.size());
    for (std::size_t i = 0; i < got.size(); ++i)
        EXPECT_NEAR(got[i], expected[i], 1e-9) << what << " " << i;
}

/// Random numbers end with the test.
class DifferencesTest : public testing::Test {
protected:
    ~DifferencesTest() override { scriptRand({}); }
};

// ---- Sizes

struct SizeCase {
    const char* name;
    std::array<std::int32_t, 2> dims1, dims2;
};

TEST_F(DifferencesTest, SizesAreRefusedByStatusInsteadOfMessage)
{
    const Matches matches = shiftedMatches(6, 0);
    SideBySide both = makeBoth(basicSettings(), 6, true);
    const SizeCase cases[] = {
        {"fewer than a sample", {2, 1}, {2, 1}},   {"no points", {2, 0}, {2, 0}},
        {"lengths differ", {2, 6}, {2, 5}},        {"one coordinate", {1, 6}, {1, 6}},
        {"second set transposed", {2, 6}, {6, 2}}, {"beyond the bound", {2, 7}, {2, 7}},
        {"second beyond the bound", {2, 6}, {2, 7}}, {"negative", {2, -1}, {2, -1}},
    };
    for (const SizeCase& c : cases) {
        const Outcome before = both.generatedStep(matches);
        EXPECT_EQ(before.mask, "111111");
        EXPECT_EQ(both.model().stepOfSizes(c.dims1, c.dims2), 1) << c.name;
        EXPECT_EQ(both.model().tform(), std::vector<double>(6, 0.0)) << c.name;
        EXPECT_EQ(std::count(both.model().inliers(), both.model().inliers() + 6, true), 0) << c.name;
    }
    const Outcome one = both.engineStep(shiftedMatches(1, 0));
    EXPECT_EQ(one.messages, std::vector<std::string>{"pts1OrPts2TooSmall"});
    EXPECT_THROW(both.engineStep(shiftedMatches(7, 0)), esttform::Error);
}

// ---- Sampling

TEST_F(DifferencesTest, SampleThatStaysDuplicateEndsTheSearch)
{
    const Matches matches = randomMatches(4, 2, 8, 0.4, 0);
    SideBySide both = makeBoth(basicSettings(), matches.size());

    scriptRand({3});
    const Outcome warned = both.engineStep(matches);
    EXPECT_EQ(warned.messages, std::vector<std::string>{"invalidRandomSamples"});
    EXPECT_EQ(warned.randCalls, 20 * 11) << "one number and ten tries, each time";
    const Outcome ended = both.generatedStep(matches);
    EXPECT_EQ(ended.randCalls, 11);
    EXPECT_FALSE(ended.isFound());
    EXPECT_EQ(ended.mask, "00000000");

    // A good sample first: it is the result, without a refit. The engine goes on and fits all inliers.
    std::vector<int> numbers{0, 1};
    numbers.resize(2 + 19 * 11, 3);
    scriptRand(numbers);
    const Outcome sample = both.generatedStep(matches);
    EXPECT_EQ(sample.randCalls, 13);
    ASSERT_TRUE(sample.isFound());
    for (std::size_t i = 0; i < 2; ++i)                  // TForm, column by column, maps the sample exactly
        for (std::size_t axis = 0; axis < 2; ++axis)
            EXPECT_NEAR(sample.tform[axis] * matches[i][0] + sample.tform[2 + axis] * matches[i][1] + sample.tform[4 + axis],
                        matches[i][2 + axis], 1e-9);
    const Outcome refit = both.engineStep(matches);
    EXPECT_EQ(refit.messages, std::vector<std::string>{"invalidRandomSamples"});
    EXPECT_NE(refit.tform, sample.tform);
}

TEST_F(DifferencesTest, NumberOfSamplingsIsUnsigned)
{
    const Matches matches = shiftedMatches(12, 4);
    Settings settings = basicSettings();
    settings.sampleNum = std::numeric_limits<std::uint32_t>::max();
    settings.stopAtInliers = 60.0;
    SideBySide both = makeBoth(settings, matches.size());
    scriptRand({8, 9, 10, 11, 0, 1});                    // two wrong samples, then a right one
    const Outcome engine = both.engineStep(matches);
    EXPECT_EQ(engine.randCalls, 2);
    EXPECT_EQ(engine.mask.substr(0, 8), "00000000");
    const Outcome generated = both.generatedStep(matches);
    EXPECT_EQ(generated.randCalls, 6);
    EXPECT_EQ(generated.mask, "111111110000");
}

// ---- Ends of the search. The same sample is drawn each time, so that the numbers drawn count the samplings.

struct EndCase {
    const char* name;
    DataType type;
    int ptsNum, inlierNum;
    double confidence, percentage;
    std::uint32_t sampleNum;
    int engineSamplings, generatedSamplings;
};

/// Chosen where the last bit of a product or of a logarithm decides: 0.01 * 70 * 30 is more than 21.
const EndCase END_CASES[] = {
    {"confidenceInSingle", DataType::Single, 31, 7, 99.7, 0.0, 1000, 112, 111},
    {"confidenceInDouble", DataType::Double, 31, 7, 99.7, 0.0, 1000, 112, 112},
    {"percentage", DataType::Double, 70, 21, 0.0, 30.0, 50, 1, 50},
    {"percentageOnePairMore", DataType::Double, 70, 22, 0.0, 30.0, 50, 1, 1},
};

class EndTest : public DifferencesTest, public testing::WithParamInterface<EndCase> {};

TEST_P(EndTest, Samplings)
{
    const EndCase& c = GetParam();
    Settings settings = basicSettings();
    settings.pointsType = c.type;
    settings.tformType = c.type;
    settings.sampleNum = c.sampleNum;
    if (c.confidence > 0.0)
        settings.confidence = c.confidence;
    if (c.percentage > 0.0)
        settings.stopAtInliers = c.percentage;
    const Matches matches = shiftedMatches(c.ptsNum, c.ptsNum - c.inlierNum);
    SideBySide both = makeBoth(settings, matches.size());
    scriptRand({0, 1});
    const Outcome engine = both.engineStep(matches);
    const Outcome generated = both.generatedStep(matches);
    EXPECT_EQ(std::count(engine.mask.begin(), engine.mask.end(), '1'), c.inlierNum);
    EXPECT_EQ(generated.mask, engine.mask);
    EXPECT_EQ(engine.randCalls, 2 * c.engineSamplings);
    EXPECT_EQ(generated.randCalls, 2 * c.generatedSamplings);
}

INSTANTIATE_TEST_SUITE_P(, EndTest, testing::ValuesIn(END_CASES),
                         [](const auto& test) { return std::string(test.param.name); });

// ---- Median method

Settings medianSettings()
{
    Settings settings = basicSettings();
    settings.method = Method::Median;
    settings.sampling = Sampling::Cyclic;
    return settings;
}

TEST_F(DifferencesTest, MedianRefitsAreLimitedByTheNumberOfSamplings)
{
    const Matches matches = randomMatches(9, 2, 30, 3.0, 6);
    Settings settings = medianSettings();
    settings.sampleNum = 1;
    SideBySide iterating = makeBoth(settings, matches.size());
    settings.isRefineIteratively = false;
    SideBySide refittingOnce = makeBoth(settings, matches.size());

    const Outcome once = refittingOnce.engineStep(matches);
    ASSERT_TRUE(once.isFound());
    EXPECT_EQ(iterating.generatedStep(matches).tform, once.tform) << "one sampling, one refit";
    EXPECT_NE(iterating.engineStep(matches).tform, once.tform) << "the engine refits while the median falls";
}

TEST_F(DifferencesTest, MedianOfTheLastStepIsForgotten)
{
    const Matches noisy = randomMatches(9, 2, 12, 3.0, 0);
    Matches coincident = shiftedMatches(12, 0);          // the fit of the first sample, pairs 1 and 2, ends in a 0
    coincident[1] = {-79.0, 23.0, 11.0, 94.0};
    coincident[2] = {-79.0, 23.0, 37.0, -92.0};
    SideBySide both = makeBoth(medianSettings(), noisy.size());

    EXPECT_TRUE(both.engineStep(noisy).isFound());
    const Outcome engine = both.engineStep(coincident);
    expectNear(engine.tform, SHIFT_TFORM, "a later sample beats the median of the last step");
    EXPECT_TRUE(both.generatedStep(noisy).isFound());    // the same steps
    const Outcome generated = both.generatedStep(coincident);
    EXPECT_FALSE(generated.isFound()) << "no later sample can beat 0";
    EXPECT_EQ(generated.mask, "000000000000");
}

// ---- Parameters and work memory of the model

TEST_F(DifferencesTest, ParametersActAtTheNextStepUntilStart)
{
    const Matches matches = shiftedMatches(20, 5);
    Settings settings = basicSettings();
    settings.confidence = 99.0;
    settings.stopAtInliers = 90.0;
    settings.sampleNum = 30;
    SideBySide both = makeBoth(settings, matches.size());
    scriptRand({0, 1});
    const auto samplings = [&] { return both.generatedStep(matches).randCalls / 2; };
    ASSERT_EQ(samplings(), 6) << "log(0.01) / log(1 - 0.75^2), rounded up";

    struct Change { const char* parameter; double value; int samplings; };
    const Change changes[] = {{"SAMPLENUM_RTP", 4.0, 4}, {"CONFIDENCE_RTP", 99.9, 9}, {"BREAKPERCENTAGE_RTP", 70.0, 1}};
    for (const Change& change : changes) {
        ASSERT_TRUE(both.model().setParam(change.parameter, change.value));
        EXPECT_EQ(samplings(), change.samplings) << change.parameter;
        both.model().start();
        EXPECT_EQ(samplings(), 6) << change.parameter;
    }
    const Outcome before = both.generatedStep(matches);
    EXPECT_EQ(before.mask, std::string(15, '1') + "00000");
    ASSERT_TRUE(both.model().setParam("DIST_THR_RTP", -1.0));
    EXPECT_EQ(both.generatedStep(matches).mask, std::string(20, '0'));
    both.model().start();
    EXPECT_EQ(both.generatedStep(matches).tform, before.tform);
    both.model().start();
    EXPECT_EQ(both.model().tform(), std::vector<double>(6, 0.0)) << "outputs are cleared";
}

TEST_F(DifferencesTest, OnlyRobustModelsCarryTheMemoryOfASearch)
{
    Settings settings = basicSettings();
    for (const bool isRobust : {true, false}) {
        settings.isRobust = isRobust;
        SideBySide both = makeBoth(settings, 5);
        for (const char* const name : {"DW_DISTANCE", "DW_CONSTRT_ALL", "SAMPLENUM_RTP", "DIST_THR_RTP"})
            EXPECT_EQ(both.model().workVector(name).empty(), !isRobust) << name;
        EXPECT_EQ(both.model().workVector("DW_SAMPLEIDX").size(), 5U);
        EXPECT_EQ(both.model().inliers() != nullptr, isRobust);
    }
}

}  // namespace
}  // namespace codegentest

// The robust search on scripts: which candidate is kept, when a phase ends, what reaches the outputs. Fits and distances
// come from the script, so that every rule shows alone.
#include <gtest/gtest.h>

#include "running_block.h"
#include "szelesttform_scoring.h"
#include "szelesttform_step.h"
#include "traced_block.h"

namespace {

using namespace blocktest;
using Engine = estTForm<double, double>;

constexpr double FAR = 100.0;

/// One iteration: distances of the pairs to the candidate; none: the fit fails.
using Script = std::vector<std::vector<double>>;

/// Parts that follow a script and write down what they were asked. The candidate of iteration i has the first value i + 1.
struct ScriptedParts {
    Engine& engine;
    Script script;
    std::string log = {};
    std::size_t iteration = 0;

    void makeAllConstraints() {}
    bool drawSample()
    {
        log += 's';
        return true;
    }
    bool fitTForm(std::int32_t n)
    {
        log += engine.mIsRandomSamplingStep ? 'f' : 'r';
        if (!engine.mIsRandomSamplingStep) log += std::to_string(n);
        EXPECT_LT(iteration, script.size()) << "more iterations than expected: " << log;
        return iteration < script.size() && !script[iteration++].empty();
    }
    double computeDistances()
    {
        std::copy(script[iteration - 1].begin(), script[iteration - 1].end(), engine.distance);
        engine.tformCompact[0] = static_cast<double>(iteration);
        return sumTruncatedDistances(engine.distance, engine.ptsNum, engine.disThr);
    }
    void writeTForm(const double* compact) { log += " w" + std::to_string(static_cast<int>(compact[0])); }
};

struct SearchCase {
    const char* name;
    ParamChanges changes;       ///< of: similarity, 6 pairs, threshold 1, at most 3 samplings, iterative refinement
    Script script;
    std::string log;            ///< s drawn, f sample fitted, rN refit on N pairs, wI candidate I written
    std::string inliers;
};

class SearchTest : public testing::TestWithParam<SearchCase> {};

ParamChanges searchParams(const ParamChanges& changes)
{
    ParamChanges all = {{0, 1}, {3, 1}, {4, 1}, {7, 3}, {6, 3}};
    all.insert(all.end(), changes.begin(), changes.end());
    return all;
}

TEST_P(SearchTest, FollowsItsRules)
{
    RunningBlock running(dialogValues(searchParams(GetParam().changes)), sysobj::DT_DOUBLE, 6, false);
    Engine& engine = running.engine<double, double>();
    ScriptedParts parts{engine, GetParam().script};
    const auto ptsNum = static_cast<std::int32_t>(GetParam().inliers.size());
    engine.estimate(ptsNum, parts);
    EXPECT_EQ(parts.log, GetParam().log);
    std::string inliers;
    for (std::int32_t i = 0; i < ptsNum; ++i) inliers += engine.inlier[i] != 0 ? '1' : '0';
    EXPECT_EQ(inliers, GetParam().inliers);
}

const std::vector<double> kNone = {};                                 // the fit fails
const std::vector<double> kTwo = {0, 0, FAR, FAR, FAR, FAR};          // score 4
const std::vector<double> kThree = {0, 0, 0, FAR, FAR, FAR};          // score 3
const std::vector<double> kOtherThree = {FAR, FAR, FAR, 0, 0, 0};     // score 3
const std::vector<double> kFour = {0, 0, 0, 0, FAR, FAR};             // score 2
const std::vector<double> kFive = {0, 0, 0, 0, 0, FAR};               // score 1
const std::vector<double> kAll = {0, 0, 0, 0, 0, 0};                  // score 0
const std::vector<double> kAtThreshold = {1, 1, 0.5, FAR, FAR, FAR};  // three inliers, two at the threshold itself
const std::vector<double> kOnlyOne = {0, FAR, FAR, FAR, FAR, FAR};

const ParamChanges kOnce = {{11, 0}};                                 // one refit only
const ParamChanges kConfident = {{5, 2}, {6, 100}, {8, 99}, {11, 0}};
const ParamChanges kMedian = {{2, 2}};

const SearchCase kSearches[] = {
    {"keepsTheBest", kOnce, {kTwo, kFour, kThree, kFour}, "sfsfsfr4 w4", "111100"},
    {"equalScoreDoesNotReplace", kOnce, {kThree, kOtherThree, kTwo, kThree}, "sfsfsfr3 w4", "111000"},
    {"firstRefitAlwaysReplaces", kOnce, {kFour, kTwo, kTwo, kTwo}, "sfsfsfr4 w4", "110000"},
    {"refitsWhileItImproves", {}, {kTwo, kThree, kTwo, kThree, kFour, kFour}, "sfsfsfr3r3r4 w5", "111100"},
    {"refitsAtMostLoopNumTimes", {}, {kTwo, kTwo, kTwo, kThree, kFour, kFive}, "sfsfsfr2r3r4 w6", "111110"},
    {"failedFirstFitBlocksTheStep", {}, {kNone, kFour, kFive}, "sfsfsf", "000000"},
    {"laterFailedFitsDoNot", kOnce, {kFour, kNone, kTwo, kFour}, "sfsfsfr4 w4", "111100"},
    {"failureAtTheLimitEndsWithoutRefit", {}, {kFour, kTwo, kNone}, "sfsfsf w1", "111100"},
    {"allFitsFail", {}, {kNone, kNone, kNone}, "sfsfsf", "000000"},
    {"failedRefitDropsTheCandidate", {}, {kFour, kTwo, kTwo, kNone}, "sfsfsfr4", "000000"},
    {"tooFewInliersToRefit", {}, {kOnlyOne, kOnlyOne, kOnlyOne}, "sfsfsf", "000000"},
    {"tooFewInliersAfterRefit", kOnce, {kTwo, kTwo, kTwo, kOnlyOne}, "sfsfsfr2", "000000"},
    {"thresholdItselfIsInside", kOnce, {kAtThreshold, kTwo, kTwo, kAtThreshold}, "sfsfsfr2 w4", "111000"},
    {"zeroSamplingsDrawOne", {{7, 0}, {11, 0}}, {kFour, kFour}, "sfr4 w2", "111100"},
    {"aMinimalSetIsRefittedAtOnce", kOnce, {{0, 0}}, "r2 w1", "11"},
    {"tooFewPairsEndTheStep", {}, {}, "", "0"},
    {"stopsAtThePercentage", {{9, 1}, {10, 66}, {11, 0}}, {kThree, kFour, kFour}, "sfsfr4 w3", "111100"},
    {"percentageIsOfAllPairs", {{9, 1}, {10, 67}, {11, 0}}, {kFour, kFour, kFour, kFour}, "sfsfsfr4 w4", "111100"},
    {"confidenceShortensTheSearch", kConfident, {kFive, kTwo, kTwo, kTwo, kFive}, "sfsfsfsfr5 w5", "111110"},
    {"onlyInliersSayNothing", {{5, 2}, {6, 3}, {8, 99}, {11, 0}}, {kAll, kTwo, kTwo, kAll}, "sfsfsfr6 w4", "111111"},
    {"medianKeepsTheSmallest",
     {{2, 2}, {11, 0}},
     {{1, 2, 3, 4, 5, 6}, {6, 5, 1, 1, 1, 9}, {3.2, 3.2, 3.2, 3.2, 3.2, 3.2}, {0, 1, 2, 3, 4, 5}},
     "sfsfsfr3 w4",
     "111000"},
    {"medianRefitsWithoutLimit",
     kMedian,
     {{9, 9, 9, 9, 9, 9}, {9, 9, 9, 9, 9, 9}, {9, 9, 9, 9, 9, 9},
      {8, 8, 8, 8, 8, 8}, {7, 7, 7, 7, 7, 7}, {6, 6, 6, 6, 6, 6}, {5, 5, 5, 5, 5, 5}, {5, 5, 5, 5, 5, 5}},
     "sfsfsfr6r6r6r6r6 w7",
     "111111"},
    {"medianOfOddNumber", {{2, 2}, {11, 0}, {7, 1}}, {{5, 1, 4, 2, 3}, {5, 1, 4, 2, 3}}, "sfr3 w2", "01011"},
    {"medianIgnoresPercentageAndConfidence",
     {{2, 2}, {5, 2}, {9, 1}, {10, 1}, {11, 0}},
     {{0, 0, 0, 0, 0, 0}, {1, 1, 1, 1, 1, 1}, {1, 1, 1, 1, 1, 1}, {0, 0, 0, 0, 0, 0}},
     "sfsfsfr6 w4",
     "111111"},
};
INSTANTIATE_TEST_SUITE_P(, SearchTest, testing::ValuesIn(kSearches),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Search, CarriesTheMedianIntoTheNextStep)
{
    RunningBlock running(dialogValues(searchParams({{2, 2}, {7, 2}, {11, 0}})), sysobj::DT_DOUBLE, 6, false);
    Engine& engine = running.engine<double, double>();
    ScriptedParts first{engine, {{3, 3, 3, 3, 3, 3}, {4, 4, 4, 4, 4, 4}, {3, 3, 3, 3, 3, 3}}};
    engine.estimate(6, first);
    EXPECT_EQ(engine.disThr, 3.0);
    ScriptedParts second{engine, {{}, {2, 2, 2, 2, 2, 2}, {2, 2, 2, 2, 2, 2}}};
    engine.estimate(6, second);                          // better than the carried median: accepted after a failed fit
    EXPECT_EQ(second.log, "sfsfr6 w3");
    ScriptedParts third{engine, {{}, {2, 2, 2, 2, 2, 2}}};
    engine.estimate(6, third);                           // not better: the step stays empty
    EXPECT_EQ(third.log, "sfsf");
}

/// A draw that fails leaves later positions as the last step left them; they must be pairs of this step all the same.
TEST(Search, NeverSamplesAPairOfALongerStep)
{
    RunningBlock running(dialogValues({{0, 2}, {11, 0}}), sysobj::DT_DOUBLE, 9, true);
    Engine& engine = running.engine<double, double>();
    std::fill(engine.sampleIdx, engine.sampleIdx + 3, 8U);
    struct FailedDraw : ScriptedParts {
        bool drawSample()
        {
            EXPECT_LT(engine.sampleIdx[2], 4U);
            log += 's';
            return false;
        }
    } parts{{engine, {kFour, kFour}}};
    engine.maxSampleNum = 1;
    engine.loopNum = 1;
    engine.estimate(4, parts);
    EXPECT_EQ(parts.log.substr(0, 2), "sf");
}

TEST(Search, StartsAfreshWithEveryStep)
{
    RunningBlock running(dialogValues(searchParams(kConfident)), sysobj::DT_DOUBLE, 6, false);
    Engine& engine = running.engine<double, double>();
    for (int step = 0; step < 2; ++step) {               // the shortened loop number does not outlive the step
        ScriptedParts parts{engine, {kFive, kTwo, kTwo, kTwo, kFive}};
        engine.estimate(6, parts);
        EXPECT_EQ(parts.log, "sfsfsfsfr5 w5") << "step " << step;
    }
    ScriptedParts tooMany{engine, {}};
    engine.estimate(7, tooMany);
    EXPECT_EQ(tooMany.log, "") << "more pairs than the bound end the step";
    EXPECT_EQ(engine.inlier[0] + engine.inlier[5], 0) << "the mask is cleared, and not beyond its end";
}

}  // namespace

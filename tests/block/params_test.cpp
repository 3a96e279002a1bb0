// Dialog parameters: how values are read, which become run-time parameters and tunable, and the order of the checks.
#include <gtest/gtest.h>

#include <limits>

#include "traced_block.h"

namespace {

using namespace blocktest;
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

// ---- Run-time parameters and tunability

struct TableCase {
    const char* name;
    ParamChanges changes;
    std::vector<int> tunable;
    std::vector<std::string> registered;
};

class RunTimeTableTest : public testing::TestWithParam<TableCase> {};

TEST_P(RunTimeTableTest, DeclaresWhatTheSettingsBringAbout)
{
    TracedBlock block(GetParam().changes);
    ASSERT_EQ(block.tryOpen(), "");
    std::vector<int> tunable;
    for (int i = 0; i < 18; ++i) {
        if (block.instance().isTunable[static_cast<std::size_t>(i)]) tunable.push_back(i);
    }
    EXPECT_EQ(tunable, GetParam().tunable);
    std::vector<std::string> registered;
    for (const std::string& call : block.calls("bhRegDlgParamAsRunTimeParam"))
        registered.push_back(call.substr(28, call.size() - 29));
    EXPECT_EQ(registered, GetParam().registered);
    EXPECT_TRUE(block.called("bhSetNumRunTimeParams(" + std::to_string(registered.size()) + ") -> 1"));
}

const TableCase kTables[] = {
    {"notRobust", {{1, 0}}, {}, {}},
    {"median", {{2, 2}, {5, 2}, {9, 1}}, {7}, {"7, 0, \"SAMPLENUM_RTP\", uint32"}},
    {"specifiedProjective",
     {},
     {3, 7},
     {"7, 0, \"SAMPLENUM_RTP\", uint32", "3, 1, \"DIST_THR_RTP\", double"}},
    {"specifiedAffineSingle",
     {{0, 2}, {14, 1}},
     {4, 7},
     {"7, 0, \"SAMPLENUM_RTP\", uint32", "4, 1, \"DIST_THR_RTP\", double"}},
    {"confidence",
     {{5, 2}},
     {3, 6, 8},
     {"6, 0, \"SAMPLENUM_RTP\", uint32", "8, 1, \"CONFIDENCE_RTP\", double", "3, 2, \"DIST_THR_RTP\", double"}},
    {"specifiedWithBreak",
     {{0, 1}, {9, 1}},
     {4, 7, 10},
     {"7, 0, \"SAMPLENUM_RTP\", uint32", "4, 1, \"DIST_THR_RTP\", double", "10, 2, \"BREAKPERCENTAGE_RTP\", double"}},
    {"confidenceWithBreak",
     {{5, 2}, {9, 1}},
     {3, 6, 8, 10},
     {"6, 0, \"SAMPLENUM_RTP\", uint32", "8, 1, \"CONFIDENCE_RTP\", double", "3, 2, \"DIST_THR_RTP\", double",
      "10, 3, \"BREAKPERCENTAGE_RTP\", double"}},
};
INSTANTIATE_TEST_SUITE_P(, RunTimeTableTest, testing::ValuesIn(kTables),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(RunTimeParams, HaveTheTypeOfTForm)
{
    TracedBlock block({{5, 2}, {14, 1}}, {signalOf({8, 2}, sysobj::DT_UINT8)});
    ASSERT_EQ(block.tryOpen(), "");
    EXPECT_TRUE(block.called("bhRegDlgParamAsRunTimeParam(8, 1, \"CONFIDENCE_RTP\", single)"));
    EXPECT_TRUE(block.called("bhRegDlgParamAsRunTimeParam(6, 0, \"SAMPLENUM_RTP\", uint32)"));
}

// ---- Checks

struct CheckCase {
    const char* name;
    ParamChanges changes;
    std::vector<std::string> failed;  ///< the checks that fail, in order
};

class CheckTest : public testing::TestWithParam<CheckCase> {};

TEST_P(CheckTest, FailsWhereItShould)
{
    TracedBlock block(GetParam().changes);
    block->initializeSizes();
    block.forgetCalls();
    std::string text;
    try {
        block->checkParameters();
    } catch (const esttform::Error& error) {
        text = error.what();
    }
    std::vector<std::string> failed;
    for (const std::string& call : block.calls()) {
        const std::size_t end = call.find(" -> false");
        if (end != std::string::npos) failed.push_back(call.substr(0, end));
    }
    EXPECT_EQ(failed, GetParam().failed);
    EXPECT_EQ(text.empty(), failed.empty()) << text;
}

const CheckCase kChecks[] = {
    {"allValid", {}, {}},
    {"typeFirst", {{0, 4}, {1, 7}, {2, 9}}, {"dspIsPopupParamValid(0, 1, 3)"}},
    {"robustBeforeMethod", {{1, 2}, {2, 9}}, {"dspIsCheckboxParamValid(1)"}},
    {"method", {{2, 0}, {9, 3}}, {"dspIsPopupParamValid(2, 1, 2)"}},
    {"sourceOfThresholdMethod", {{5, 3}, {9, 3}}, {"dspIsPopupParamValid(5, 1, 2)"}},
    {"sourceOfMedianMethodIsFree", {{2, 2}, {5, 3}}, {}},
    {"sourceIsFreeWhenNotRobust", {{1, 0}, {5, 3}}, {}},
    {"flagsInOrder", {{9, 2}, {11, 2}}, {"dspIsCheckboxParamValid(9)"}},
    {"refineFlag", {{11, 0.5}, {12, 2}}, {"dspIsCheckboxParamValid(11)"}},
    {"inlierFlag", {{12, -1}, {13, 4}}, {"dspIsCheckboxParamValid(12)"}},
    {"reservedCode", {{13, 4}, {14, 3}}, {"dspIsPopupParamValid(13, 1, 3)"}},
    {"integerType", {{14, 3}, {15, 2}}, {"dspIsPopupParamValid(14, 1, 2)"}},
    {"reservedFlag", {{15, 2}, {3, -1}}, {"dspIsCheckboxParamValid(15)"}},
    {"layoutAndSamplingAreNotChecked", {{16, 77.5}, {17, -3}}, {}},
    {"thresholdOfTheType",
     {{3, -1}, {7, -1}},
     {"dspParamCheckerID::check(3, mapBlkAlgebraicDistanceThreshold, 0, 0)"}},
    {"otherThresholdIsFree", {{4, -1}}, {}},
    {"affineThreshold", {{0, 2}, {3, -1}, {4, NOT_A_NUMBER}},
     {"dspParamCheckerID::check(4, mapBlkAlgebraicDistanceThreshold, 0, 0)"}},
    {"sampleNumIsWhole", {{7, 2.5}}, {"dspParamCheckerID::check(7, mapBlkNumberOfRandomSampling, 0, 0)"}},
    {"otherSampleNumIsFree", {{6, 2.5}}, {}},
    {"sampleNumOfConfidenceMode", {{5, 2}, {6, -1}, {7, 2.5}},
     {"dspParamCheckerID::check(6, mapBlkNumberOfRandomSampling, 0, 0)"}},
    {"medianChecksSampleNumOnly", {{2, 2}, {3, -1}, {7, 1.5}, {8, 300}},
     {"dspParamCheckerID::check(7, mapBlkNumberOfRandomSampling, 0, 0)"}},
    {"confidenceFailsOnceThenPercentageIsChecked", {{5, 2}, {8, -1}, {9, 1}, {10, 101}},
     {"dspParamCheckerID::check(8, mapBlkDesiredConfidence, 0, 0)",
      "dspParamCheckerID::check(10, mapBlkInlierPercentage, 0, 0)"}},
    {"confidenceAboveHundred", {{5, 2}, {8, 140}}, {"dspParamCheckerID::check(8, mapBlkDesiredConfidence, 0, 0)"}},
    {"confidenceIsFreeWithANumber", {{8, 140}}, {}},
    {"numbersAreFreeWhenNotRobust", {{1, 0}, {3, -1}, {4, -1}, {7, 0.5}, {8, -3}, {10, 300}, {2, 2}}, {}},
};
INSTANTIATE_TEST_SUITE_P(, CheckTest, testing::ValuesIn(kChecks),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Checks, ComparesTheLowerBoundBeforeTheUpper)
{
    TracedBlock block({{5, 2}, {8, -1}});
    block->initializeSizes();
    EXPECT_THROW(block->checkParameters(), esttform::Error);
    EXPECT_TRUE(block.calls("dspParamCheckerID::setUpperBound").empty());

    TracedBlock valid({{5, 2}});
    valid->initializeSizes();
    valid->checkParameters();
    EXPECT_EQ(valid.calls("dspParamCheckerID::check(8").size(), 2U);
    EXPECT_TRUE(valid.called("dspParamCheckerID::setRangeKind(8)"));
    EXPECT_TRUE(valid.called("dspParamCheckerID::setUpperBound(100, 100)"));
    EXPECT_TRUE(valid.called("dspParamCheckerID::setNumericClass(1)"));
}

// ---- Reading

struct FlagCase {
    double value;
    bool isSet;
};

TEST(Flags, CountTheLowEightBitsOfTheTruncatedValue)
{
    const FlagCase cases[] = {{0, false}, {1, true}, {0.5, false}, {1.9, true}, {-1, true}, {-0.9, false}, {256, false},
                              {257, true}, {65536, false}, {1e300, false}, {-1e300, false}, {NOT_A_NUMBER, false},
                              {std::numeric_limits<double>::infinity(), false}};
    for (const FlagCase& flag : cases) {
        TracedBlock block({{17, flag.value}, {0, 2}});   // points in rows: TForm is 3-by-2 instead of 2-by-3
        ASSERT_EQ(block.tryOpen(), "") << flag.value;
        EXPECT_EQ(block.instance().outputs[0].dims.size(0), flag.isSet ? 3 : 2) << flag.value;
    }
}

TEST(Codes, OutOfRangeNeverSelectAnything)
{
    for (const double value : {1e300, -1e300, NOT_A_NUMBER, 4294967297.0}) {
        TracedBlock block({{0, value}, {2, value}, {5, value}, {14, value}});
        block->initializeSizes();                        // sizes are declared before the values are checked
        EXPECT_EQ(block.instance().outputs[0].dims.size(1), 2) << value;
        EXPECT_FALSE(block.instance().isTunable[3]) << value;
        EXPECT_THROW(block->checkParameters(), esttform::Error) << value;
    }
}

}  // namespace

// Life of the block: which engine is created, when a step is taken, how parameters reach it, and its exported names.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

#include "allocation_counter.h"
#include "running_block.h"
#include "traced_block.h"

namespace {

using namespace blocktest;
using namespace sysobj;

TEST(Library, ExportsTheEighteenCallbacksAndNothingElse)
{
    std::FILE* const pipe = popen(NM_COMMAND " -D --defined-only --format=posix " BLOCK_PATH, "r");
    ASSERT_NE(pipe, nullptr);
    std::vector<std::string> names;
    char line[512];
    while (std::fgets(line, sizeof line, pipe) != nullptr) names.push_back(std::string(line).substr(0, std::string(line).find(' ')));
    ASSERT_EQ(pclose(pipe), 0);
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{
        "mdlCheckParameters", "mdlInitializeSampleTimes", "mdlInitializeSizes", "mdlOutputs", "mdlProcessParameters",
        "mdlSetDefaultPortDataTypes", "mdlSetDefaultPortDimensionInfo", "mdlSetInputPortDataType",
        "mdlSetInputPortDimensionInfo", "mdlSetInputPortDimsMode", "mdlSetInputPortFrameData",
        "mdlSetOutputPortDataType", "mdlSetOutputPortDimensionInfo", "mdlSetWorkWidths", "mdlStart", "mdlTerminate",
        "mdlVektCG", "vobFunction"}));
}

/// Every pair of data types steps: a shift by (2, 3) is found exactly, in the element types of that pair.
TEST(Engines, ExistForFourteenPairsOfTypes)
{
    for (int pointType = DT_DOUBLE; pointType <= DT_UINT32; ++pointType) {
        for (const int forIntegers : {1, 2}) {
            const int tformType = pointType <= DT_SINGLE ? pointType : (forIntegers == 1 ? DT_SINGLE : DT_DOUBLE);
            withEngineTypes(pointType, tformType, [&](auto ti, auto tc) {
                using Ti = decltype(ti);
                using Tc = decltype(tc);
                RunningBlock running(dialogValues({{0, 2}, {14, double(forIntegers)}, {16, 0}}), pointType, 5, false);
                const Json pts1 = {{0, 0}, {10, 0}, {0, 10}, {10, 10}, {4, 7}};
                const Json pts2 = {{2, 3}, {12, 3}, {2, 13}, {12, 13}, {6, 10}};
                running.writePoints<Ti>(0, pts1);
                running.writePoints<Ti>(1, pts2);
                running.block().step();
                const Tc* const tform = static_cast<const Tc*>(running.block().outputData(0));
                const double expected[] = {1, 0, 2, 0, 1, 3};
                for (int i = 0; i < 6; ++i) {
                    EXPECT_NEAR(static_cast<double>(tform[i]), expected[i], 64 * static_cast<double>(std::numeric_limits<Tc>::epsilon()))
                        << "points " << pointType << ", TForm " << tformType << ", element " << i;
                }
            });
        }
    }
}

TEST(Outputs, CheckCurrentSizesOfVariableInputsOnly)
{
    const Signal variable = signalOf({9, 2}, DT_DOUBLE, DIMS_MODE_VARIABLE);
    TracedBlock block({{7, 3}}, {variable, variable});
    ASSERT_EQ(block.tryOpen(), "");
    double* const tform = static_cast<double*>(const_cast<void*>(block->outputData(0)));
    tform[0] = 42.0;
    block->setInputSize(0, {9, 2});
    block->setInputSize(1, {8, 2});
    block->step();
    ASSERT_TRUE(block->stepError());
    EXPECT_EQ(block->stepError()->id, "pts1AndPts2SizesDiffer");
    EXPECT_EQ(tform[0], 42.0) << "the engine is not called: it would have cleared TForm";

    block->setInputSize(0, {3, 2});
    block->setInputSize(1, {3, 2});
    block->step();
    ASSERT_TRUE(block->stepError());
    EXPECT_EQ(block->stepError()->id, "pts1OrPts2TooSmall");

    block->setInputSize(0, {8, 2});
    block->setInputSize(1, {8, 2});
    block->step();
    EXPECT_FALSE(block->stepError()) << "an error does not outlive its step";

    TracedBlock fixed({}, {signalOf({9, 2})});
    ASSERT_EQ(fixed.tryOpen(), "");
    fixed.forgetCalls();
    fixed->step();
    EXPECT_EQ(fixed.calls("bhGetCurrentInputPortDimensions").size(), 1U) << "the point count, and no check";
}

TEST(ProcessParameters, MakesANewSampleNumberTheLimit)
{
    RunningBlock running(dialogValues({{7, 5}, {11, 0}}), DT_DOUBLE, 6, false);
    EXPECT_EQ((running.engine<double, double>().loopNum), 5);
    running.block().setParam(7, 2);
    EXPECT_EQ((running.engine<double, double>().maxSampleNum), 2U);
    EXPECT_EQ((running.engine<double, double>().loopNum), 2);
    EXPECT_THROW(running.block().setParam(0, 1), esttform::Error) << "the type is not tunable";
}

TEST(Terminate, ReleasesTheEngineAndClearsTheUserData)
{
    TracedBlock neverStarted;
    neverStarted->initializeSizes();
    neverStarted->terminate();
    EXPECT_EQ(neverStarted.calls().back(), "bhSetUserData(null)");

    TracedBlock block({}, {signalOf({6, 2})});
    ASSERT_EQ(block.tryOpen(), "");
    EXPECT_NE(block.instance().userData, nullptr);
    block->terminate();
    EXPECT_EQ(block.instance().userData, nullptr);
}

TEST(Step, AllocatesNothingEvenWhenItWarns)
{
    for (const double type : {1.0, 2.0, 3.0}) {
        RunningBlock running(dialogValues({{0, type}, {7, 200}}), DT_DOUBLE, 5, false);
        const Json points = {{0, 0}, {9, 1}, {1, 8}, {7, 7}, {3, 5}};
        running.writePoints<double>(0, points);
        running.writePoints<double>(1, points);
        blockhost::Block& block = running.block();
        std::srand(1);                                   // with four of five points some samples stay duplicate
        const long before = allocationNum();
        ASSERT_GT(before, 0) << "allocations are not counted";
        for (int i = 0; i < 20; ++i) block.step();
        EXPECT_EQ(allocationNum(), before);
        EXPECT_EQ(block.hasWarnings(), type == 3.0);
    }
}

}  // namespace

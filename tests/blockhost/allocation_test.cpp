#include "fake_setup.h"

#include "allocation_counter.h"

// Every operator new of the process is counted, the host's and the block's too.

namespace {

/// Number of allocations of some steps after a first one.
long allocationsOf(blockhost::Block& block)
{
    block.step();
    const long before = allocationNum();
    EXPECT_GT(before, 0) << "allocations are not counted";
    for (int cols = 1; cols <= 9; ++cols) {
        block.setInputSize(0, {2, cols});
        block.step();
    }
    return allocationNum() - before;
}

TEST(AllocationTest, StepAllocatesNothing)
{
    blockhost::Block block(fake::setupOf(fake::NONE, {2, 9}, sysobj::DIMS_MODE_VARIABLE));
    block.open();
    EXPECT_EQ(allocationsOf(block), 0);
}

TEST(AllocationTest, WarningsAreKeptWithoutAllocation)
{
    blockhost::Block block(fake::setupOf(fake::WARN_TWENTY_KINDS, {2, 9}, sysobj::DIMS_MODE_VARIABLE));
    block.open();
    EXPECT_EQ(allocationsOf(block), 0);
    EXPECT_TRUE(block.hasWarnings());
}

TEST(AllocationTest, EstimatorStepAllocatesNothing)
{
    constexpr int PTS_NUM = 40;
    double points[2 * PTS_NUM];
    for (int i = 0; i < PTS_NUM; ++i) {
        points[2 * i] = i % 7;
        points[2 * i + 1] = i * i % 11;
    }
    esttform::Options options;
    options.isVariableSize = true;
    options.seed = 1;
    esttform::Settings settings;
    settings.type = esttform::TransformType::Similarity;
    esttform::Estimator estimator(settings, PTS_NUM, options);
    const long before = allocationNum();
    ASSERT_GT(before, 0) << "allocations are not counted";
    for (int ptsNum = 10; ptsNum <= PTS_NUM; ++ptsNum) {
        const esttform::StepResult& result = estimator.step(points, points, ptsNum);
        ASSERT_TRUE(result.isFound() && result.warnings.empty());
    }
    EXPECT_EQ(allocationNum() - before, 0);
}

}  // namespace

#include "fake_setup.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

// Every operator new of the process is counted, the host's and the block's too. Not inlined, so that the compiler does not
// take the pairs of malloc and delete for a mistake.

namespace {

std::atomic<long> newNum{0};

}  // namespace

[[gnu::noinline]] void* operator new(std::size_t byteNum, std::align_val_t alignment, const std::nothrow_t&) noexcept
{
    ++newNum;
    const auto step = static_cast<std::size_t>(alignment);
    return std::aligned_alloc(step, (byteNum + step) / step * step);
}

[[gnu::noinline]] void* operator new(std::size_t byteNum, const std::nothrow_t& nothrow) noexcept
{
    return operator new(byteNum, std::align_val_t{alignof(std::max_align_t)}, nothrow);
}

[[gnu::noinline]] void* operator new(std::size_t byteNum)
{
    if (void* const memory = operator new(byteNum, std::nothrow))
        return memory;
    throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void* memory) noexcept
{
    std::free(memory);
}

[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

[[gnu::noinline]] void operator delete(void* memory, std::align_val_t) noexcept
{
    std::free(memory);
}

namespace {

/// Number of allocations of some steps after a first one.
long allocationsOf(blockhost::Block& block)
{
    block.step();
    const long before = newNum;
    EXPECT_GT(before, 0) << "allocations are not counted";
    for (int cols = 1; cols <= 9; ++cols) {
        block.setInputSize(0, {2, cols});
        block.step();
    }
    return newNum - before;
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
    const long before = newNum;
    ASSERT_GT(before, 0) << "allocations are not counted";
    for (int ptsNum = 10; ptsNum <= PTS_NUM; ++ptsNum) {
        const esttform::StepResult& result = estimator.step(points, points, ptsNum);
        ASSERT_TRUE(result.isFound() && result.warnings.empty());
    }
    EXPECT_EQ(newNum - before, 0);
}

}  // namespace

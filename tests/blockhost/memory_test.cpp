#include "fake_setup.h"

#include <cstdint>

using blockhost::Block;
using blockhost::Dims;
using esttform::ErrorKind;

namespace {

struct OverwriteCase : fake::NamedCase {
    fake::Fault fault;
    const char* text;
};

const OverwriteCase OVERWRITE_CASES[] = {
    {{"beforeWorkVector"}, fake::WRITE_BEFORE_SCRATCH, "mdlOutputs wrote before the start of DW_SCRATCH"},
    {{"pastWorkVector"}, fake::WRITE_PAST_SCRATCH, "mdlOutputs wrote past the end of DW_SCRATCH"},
    {{"pastOutput"}, fake::WRITE_PAST_OUTPUT, "mdlOutputs wrote past the end of output 0"},
};

class GuardZoneTest : public ::testing::TestWithParam<OverwriteCase> {};

TEST_P(GuardZoneTest, NamesBufferCallbackAndSide)
{
    if (!blockhost::hasGuardZones())
        GTEST_SKIP() << "built without guard zones";
    Block block(fake::setupOf(GetParam().fault));
    block.open();
    EXPECT_EQ(fake::errorOf([&] { block.step(); }, ErrorKind::Internal), GetParam().text);
    EXPECT_EQ(block.state(), blockhost::State::Failed);
}

INSTANTIATE_TEST_SUITE_P(, GuardZoneTest, ::testing::ValuesIn(OVERWRITE_CASES), fake::CaseName{});

TEST(MemoryTest, BuffersAreAlignedZeroAndKeepTheirAddress)
{
    Block block(fake::setupOf(fake::NONE, {3, 5}));
    EXPECT_EQ(block.inputData(0), nullptr);
    block.open();
    const auto& instance = block.instance();
    const void* const scratch = instance.workVectors[0].buffer.data();
    const void* const buffers[] = {block.inputData(0), block.inputData(1), block.outputData(0), scratch};
    for (const void* const buffer : buffers)
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(buffer) % 64, 0U);
    for (int i = 0; i < 15; ++i)
        EXPECT_EQ(static_cast<const double*>(block.outputData(0))[i], 0.0);
    for (int i = 0; i < fake::SCRATCH_WIDTH; ++i)
        EXPECT_EQ(static_cast<const std::uint32_t*>(scratch)[i], 0U);

    for (int i = 0; i < 15; ++i)
        static_cast<double*>(block.inputData(0))[i] = i;
    block.step();
    block.step();
    EXPECT_EQ(static_cast<const double*>(block.outputData(0))[14], 42.0);
    EXPECT_EQ(block.inputData(0), buffers[0]);
    EXPECT_EQ(block.outputData(0), buffers[2]);
    EXPECT_EQ(instance.workVectors[0].buffer.data(), scratch);
    EXPECT_EQ(block.inputData(2), nullptr);
    EXPECT_EQ(block.outputData(-1), nullptr);
}

TEST(MemoryTest, CallersArrayIsReadInPlace)
{
    alignas(8) double points[6] = {1, 2, 3, 4, 5, 6};
    auto setup = fake::setupOf(fake::NONE);
    setup.inputs[0].data = points;
    Block block(setup);
    block.open();
    EXPECT_EQ(block.inputData(0), nullptr);
    points[5] = 10;
    block.step();
    EXPECT_EQ(static_cast<const double*>(block.outputData(0))[5], 30.0);

    setup.inputs[0].data = reinterpret_cast<const char*>(points) + 4;
    Block misaligned(setup);
    EXPECT_EQ(fake::errorOf([&] { misaligned.open(); }, ErrorKind::Usage),
              "input 0: the array is not aligned for double; expected a multiple of 8 bytes");

    setup.outputs.emplace_back().data = points;
    Block writing(setup);
    EXPECT_EQ(fake::errorOf([&] { writing.open(); }, ErrorKind::Usage),
              "mdlInitializeSizes stopped: output port 0: got an array, expected none; the host keeps the elements");
}

TEST(MemoryTest, CurrentSizesFollowTheInputsWithinTheirBound)
{
    Block block(fake::setupOf(fake::NONE, {2, 9}, sysobj::DIMS_MODE_VARIABLE));
    block.open();
    block.step();
    EXPECT_EQ(block.instance().outputs[0].current.text(), "2-by-9");
    block.setInputSize(0, {2, 4});
    block.setInputSize(1, {2, 5});
    block.step();
    EXPECT_EQ(block.instance().outputs[0].current.text(), "2-by-4");
    EXPECT_EQ(block.instance().inputs[1].current.text(), "2-by-5");

    EXPECT_EQ(fake::errorOf([&] { block.setInputSize(0, {2, 10}); }, ErrorKind::Usage),
              "input port 0: got size 2-by-10, expected at most 2-by-9");
    EXPECT_EQ(fake::errorOf([&] { block.setInputSize(1, {2, -1}); }, ErrorKind::Usage),
              "input port 1: got size 2-by-?, expected at most 2-by-9");
    EXPECT_TRUE(block.step()) << "a refused size must leave the block running";
    EXPECT_EQ(block.instance().outputs[0].current.text(), "2-by-4");

    Block fixed(fake::setupOf(fake::NONE, {2, 9}));
    fixed.open();
    EXPECT_EQ(fake::errorOf([&] { fixed.setInputSize(0, {2, 8}); }, ErrorKind::Usage),
              "input port 0: got size 2-by-8, expected 2-by-9");
}

}  // namespace

#include "data_types.h"
#include "fake_setup.h"

#include <cmath>
#include <limits>

using blockhost::Block;
using esttform::ErrorKind;

namespace {

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr double INFINITE = std::numeric_limits<double>::infinity();

// ---- What the checks admit

struct CheckCase : fake::NamedCase {
    int param;
    double value;
    const char* text;  ///< null: admitted
};

const CheckCase CHECK_CASES[] = {
    {{"percentZero"}, fake::GAIN_PARAM, 0.0, nullptr},
    {{"percentHundred"}, fake::GAIN_PARAM, 100.0, nullptr},
    {{"percentAbove"}, fake::GAIN_PARAM, 140.0, "gain: got 140, expected a percentage from 0 to 100"},
    {{"percentBelow"}, fake::GAIN_PARAM, -0.5, "gain: got -0.5, expected a percentage from 0 to 100"},
    {{"percentNaN"}, fake::GAIN_PARAM, NOT_A_NUMBER, "gain: got nan, expected a percentage from 0 to 100"},
    {{"countZero"}, fake::COUNT_PARAM, 0.0, nullptr},
    {{"countBeyondUint32"}, fake::COUNT_PARAM, 1e300, nullptr},
    {{"countFraction"}, fake::COUNT_PARAM, 1.5, "count: got 1.5, expected a whole number of 0 or more"},
    {{"countInfinite"}, fake::COUNT_PARAM, INFINITE, "count: got inf, expected a whole number of 0 or more"},
    {{"countNaN"}, fake::COUNT_PARAM, NOT_A_NUMBER, "count: got nan, expected a whole number of 0 or more"},
    {{"checkboxOne"}, fake::CHECKBOX_PARAM, 1.0, nullptr},
    {{"checkboxHalf"}, fake::CHECKBOX_PARAM, 0.5, "box: got 0.5, expected 0 or 1"},
    {{"checkboxNaN"}, fake::CHECKBOX_PARAM, NOT_A_NUMBER, "box: got nan, expected 0 or 1"},
    {{"popupHighest"}, fake::FAULT_PARAM, 99.0, nullptr},
    {{"popupAbove"}, fake::FAULT_PARAM, 100.0, "fault: got 100, expected a whole number from 0 to 99"},
    {{"popupFraction"}, fake::FAULT_PARAM, 98.5, "fault: got 98.5, expected a whole number from 0 to 99"},
};

class CheckTest : public ::testing::TestWithParam<CheckCase> {};

TEST_P(CheckTest, AdmitsBoundsAndNamesTheParameter)
{
    const CheckCase& c = GetParam();
    Block block(fake::setupOf(fake::NONE));
    block.setParam(c.param, c.value);
    block.initializeSizes();
    if (c.text == nullptr)
        EXPECT_NO_THROW(block.checkParameters());
    else
        EXPECT_EQ(fake::errorOf([&] { block.checkParameters(); }, ErrorKind::Usage), c.text);
}

INSTANTIATE_TEST_SUITE_P(, CheckTest, ::testing::ValuesIn(CHECK_CASES), fake::CaseName{});

// ---- Changes while running

double gainOf(Block& block)
{
    static_cast<double*>(block.inputData(0))[0] = 1.0;
    block.step();
    return static_cast<const double*>(block.outputData(0))[0];
}

TEST(TunableTest, ChangeReachesTheNextStep)
{
    Block block(fake::setupOf(fake::NONE));
    block.open();
    EXPECT_EQ(gainOf(block), 3.0);
    EXPECT_TRUE(block.setParam(fake::GAIN_PARAM, 5.0));
    EXPECT_EQ(gainOf(block), 5.0);
}

TEST(TunableTest, RefusedValueIsTakenBack)
{
    Block block(fake::setupOf(fake::NONE));
    block.open();
    EXPECT_EQ(fake::errorOf([&] { block.setParam(fake::GAIN_PARAM, 101.0); }, ErrorKind::Usage),
              "gain: got 101, expected a percentage from 0 to 100");
    EXPECT_EQ(block.param(fake::GAIN_PARAM), 3.0);
    EXPECT_EQ(gainOf(block), 3.0);
}

TEST(TunableTest, OthersAreRefusedWithWhatToDo)
{
    Block block(fake::setupOf(fake::NONE));
    block.open();
    EXPECT_EQ(fake::errorOf([&] { block.setParam(fake::FAULT_PARAM, 1.0); }, ErrorKind::Usage),
              "fault: cannot change while the block runs (not tunable); open the block anew with it");
    EXPECT_EQ(fake::errorOf([&] { block.setParam(fake::CHECKBOX_PARAM, 0.0); }, ErrorKind::Usage),
              "box: cannot change while the block runs (tunable only when the moon is full); open the block anew with it");
    EXPECT_EQ(fake::errorOf([&] { block.setParam(4, 0.0); }, ErrorKind::Usage), "parameter 4: the block has 4");
    EXPECT_EQ(fake::errorOf([&] { block.param(-1); }, ErrorKind::Usage), "parameter -1: the block has 4");
    EXPECT_EQ(block.param(fake::CHECKBOX_PARAM), 1.0);
    EXPECT_EQ(gainOf(block), 3.0);
}

TEST(TunableTest, ValuesThatDeclaredThePortsStayUntilStart)
{
    Block block(fake::setupOf(fake::NONE));
    block.initializeSizes();
    EXPECT_EQ(fake::errorOf([&] { block.setParam(fake::CHECKBOX_PARAM, 0.0); }, ErrorKind::Usage),
              "mdlProcessParameters called before mdlStart (state: sized); call start() first");
    block.checkParameters();
    EXPECT_EQ(fake::errorOf([&] { block.setParam(fake::GAIN_PARAM, -1.0); }, ErrorKind::Usage),
              "mdlProcessParameters called before mdlStart (state: checked); call start() first");
    EXPECT_EQ(block.param(fake::GAIN_PARAM), 3.0);
}

// ---- Dialog value to run-time parameter

struct ConversionCase : fake::NamedCase {
    double value;
    std::uint32_t stored;
};

const ConversionCase CONVERSION_CASES[] = {
    {{"whole"}, 12.0, 12U},          {{"truncated"}, 12.9, 12U},          {{"largest"}, 4294967295.0, 4294967295U},
    {{"fractionAboveLargest"}, 4294967295.9, 4294967295U}, {{"justAbove"}, 4294967296.0, 4294967295U},
    {{"huge"}, 1e300, 4294967295U},  {{"infinite"}, INFINITE, 4294967295U}, {{"negative"}, -7.0, 0U},
    {{"minusInfinite"}, -INFINITE, 0U}, {{"smallNegative"}, -0.9, 0U},       {{"notANumber"}, NOT_A_NUMBER, 0U},
};

class ConversionTest : public ::testing::TestWithParam<ConversionCase> {};

/// The fake block's own check would refuse some of these, so they are set after it and read by mdlStart.
TEST_P(ConversionTest, RealToUint32IsTruncatedAndClamped)
{
    Block block(fake::setupOf(fake::NONE));
    block.initializeSizes();
    block.checkParameters();
    block.initializeSampleTimes();
    block.propagate();
    block.setWorkWidths();
    const_cast<sysobj::SysObjAdaptorSFun&>(block.instance()).params[fake::COUNT_PARAM].value = GetParam().value;
    block.start();
    const auto& param = block.instance().runTimeParams[1];
    EXPECT_EQ(param.name, "COUNT_RTP");
    EXPECT_EQ(*static_cast<const std::uint32_t*>(param.buffer.data()), GetParam().stored);
}

INSTANTIATE_TEST_SUITE_P(, ConversionTest, ::testing::ValuesIn(CONVERSION_CASES), fake::CaseName{});

TEST(ConversionTypeTest, EveryWidthClampsAndTruncates)
{
    using blockhost::toInteger;
    EXPECT_EQ(toInteger<std::int8_t>(-128.9), -128);
    EXPECT_EQ(toInteger<std::int8_t>(-129.0), -128);
    EXPECT_EQ(toInteger<std::int8_t>(127.9), 127);
    EXPECT_EQ(toInteger<std::int32_t>(NOT_A_NUMBER), 0);
    EXPECT_EQ(toInteger<std::int32_t>(-2147483648.0), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(toInteger<std::int64_t>(NOT_A_NUMBER), 0);
    EXPECT_EQ(toInteger<std::int64_t>(0x1p63), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(toInteger<std::int64_t>(9223372036854774784.0), 9223372036854774784);
}

TEST(ConversionTypeTest, RealParameterIsStoredInTheOutputsPrecision)
{
    auto setup = fake::setupOf(fake::NONE);
    setup.params[fake::GAIN_PARAM] = 0.1;
    setup.inputs[0].typeId = setup.inputs[1].typeId = sysobj::DT_SINGLE;
    Block block(setup);
    block.open();
    EXPECT_EQ(*static_cast<const float*>(block.instance().runTimeParams[0].buffer.data()), 0.1F);
}

}  // namespace

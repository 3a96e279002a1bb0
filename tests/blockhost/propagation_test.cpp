#include "fake_setup.h"

using blockhost::Attribute;
using blockhost::Block;
using blockhost::Dims;
using blockhost::Direction;
using blockhost::Offer;
using blockhost::Port;
using blockhost::Signal;
using esttform::ErrorKind;
using sysobj::DIMS_MODE_FIXED;
using sysobj::DIMS_MODE_VARIABLE;
using sysobj::DT_DOUBLE;
using sysobj::DT_INT8;
using sysobj::DT_SINGLE;

namespace {

constexpr std::nullopt_t OPEN = std::nullopt;

Signal signalOf(std::optional<Dims> dims, std::optional<int> typeId, std::optional<int> mode)
{
    Signal signal;
    signal.dims = dims;
    signal.typeId = typeId;
    signal.mode = mode;
    return signal;
}

/// Sets the block up to the end of propagation.
void settle(Block& block)
{
    block.initializeSizes();
    block.checkParameters();
    block.propagate();
}

struct SettleCase : fake::NamedCase {
    Signal inputs[2];
    Signal output;
    const char* size;
    int typeId;
    int mode;
};

const Signal NOTHING;

const SettleCase SETTLE_CASES[] = {
    {{"everythingFromBothInputs"},
     {signalOf(Dims{2, 9}, DT_SINGLE, DIMS_MODE_VARIABLE), signalOf(Dims{2, 9}, DT_SINGLE, DIMS_MODE_VARIABLE)},
     NOTHING, "2-by-9", DT_SINGLE, DIMS_MODE_VARIABLE},
    {{"sizeFromSecondInput"}, {NOTHING, signalOf(Dims{4, 5}, OPEN, OPEN)}, NOTHING, "4-by-5", DT_DOUBLE, DIMS_MODE_FIXED},
    {{"sizeFromOutput"}, {NOTHING, NOTHING}, signalOf(Dims{7, 1}, OPEN, OPEN), "7-by-1", DT_DOUBLE, DIMS_MODE_FIXED},
    {{"typeFromOutput"}, {NOTHING, NOTHING}, signalOf(OPEN, DT_SINGLE, OPEN), "2-by-3", DT_SINGLE, DIMS_MODE_FIXED},
    {{"nothingConnected"}, {NOTHING, NOTHING}, NOTHING, "2-by-3", DT_DOUBLE, DIMS_MODE_FIXED},
    {{"partlyKnownOutput"}, {signalOf(Dims{2, 8}, OPEN, OPEN), NOTHING}, signalOf(Dims{2, -1}, OPEN, OPEN), "2-by-8",
     DT_DOUBLE, DIMS_MODE_FIXED},
};

class SettleTest : public ::testing::TestWithParam<SettleCase> {};

TEST_P(SettleTest, SameResultInEveryOrder)
{
    const SettleCase& c = GetParam();
    const std::vector<Offer> orders[] = {
        {},
        {{Direction::In, 1, Attribute::Size}, {Direction::In, 1, Attribute::Mode}, {Direction::In, 1, Attribute::DataType}},
        {{Direction::Out, 0, Attribute::DataType}, {Direction::In, 1, Attribute::Mode}, {Direction::Out, 0, Attribute::Size}},
    };
    for (const std::vector<Offer>& order : orders) {
        auto setup = fake::setupOf(fake::NONE);
        setup.inputs = {c.inputs[0], c.inputs[1]};
        setup.outputs = {c.output};
        setup.offerOrder = order;
        Block block(setup);
        settle(block);
        for (const Port& port : {std::cref(block.instance().inputs[0]), std::cref(block.instance().inputs[1])}) {
            EXPECT_EQ(port.dims.text(), c.size);
            EXPECT_EQ(port.typeId, c.typeId);
            EXPECT_EQ(port.mode, c.mode);
        }
        const Port& output = block.instance().outputs[0];
        EXPECT_TRUE(output.dims.isKnown() && output.dims.agreesWith(block.instance().inputs[0].dims)) << output.dims.text();
        EXPECT_EQ(output.typeId, c.typeId);
        EXPECT_EQ(output.mode, c.mode);
    }
}

INSTANTIATE_TEST_SUITE_P(, SettleTest, ::testing::ValuesIn(SETTLE_CASES), fake::CaseName{});

struct ClashCase : fake::NamedCase {
    fake::Fault fault;
    Signal inputs[2];
    Signal output;
    const char* text;
};

const ClashCase CLASH_CASES[] = {
    {{"sizesDiffer"}, fake::NONE, {signalOf(Dims{8, 2}, OPEN, OPEN), signalOf(Dims{9, 2}, OPEN, OPEN)}, NOTHING,
     "propagation stopped: input port 1: 8-by-2 refused: connected signal is 9-by-2"},
    {{"typesDiffer"}, fake::NONE, {signalOf(OPEN, DT_DOUBLE, OPEN), signalOf(OPEN, DT_SINGLE, OPEN)}, NOTHING,
     "propagation stopped: input port 1: data type double refused: connected signal is single"},
    {{"modesDiffer"}, fake::NONE, {signalOf(OPEN, OPEN, DIMS_MODE_FIXED), signalOf(OPEN, OPEN, DIMS_MODE_VARIABLE)}, NOTHING,
     "output port 0: dimensions mode is still open; input port 0 is fixed, input port 1 is variable; both must have one mode"},
    {{"typeNotSupported"}, fake::NONE, {signalOf(OPEN, DT_INT8, OPEN), NOTHING}, NOTHING,
     "In: got data type int8, expected one of double, single"},
    {{"outputWantsAnotherSize"}, fake::NONE, {signalOf(Dims{8, 2}, OPEN, OPEN), NOTHING}, signalOf(Dims{9, 2}, OPEN, OPEN),
     "propagation stopped: output port 0: 8-by-2 refused: connected signal is 9-by-2"},
    {{"sizeLeftOpen"}, fake::LEAVE_SIZE_OPEN, {signalOf(Dims{8, 2}, OPEN, OPEN), NOTHING}, NOTHING,
     "input port 0: size is still open; the connected signal is 8-by-2"},
    {{"typeLeftOpen"}, fake::LEAVE_TYPE_OPEN, {NOTHING, NOTHING}, NOTHING,
     "input port 0: data type is still open; connect a signal that has it"},
};

class ClashTest : public ::testing::TestWithParam<ClashCase> {};

TEST_P(ClashTest, IsReportedWithPortAndAttribute)
{
    auto setup = fake::setupOf(GetParam().fault);
    setup.inputs = {GetParam().inputs[0], GetParam().inputs[1]};
    setup.outputs = {GetParam().output};
    Block block(setup);
    EXPECT_EQ(fake::errorOf([&] { settle(block); }, ErrorKind::Usage), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(, ClashTest, ::testing::ValuesIn(CLASH_CASES), fake::CaseName{});

TEST(PropagationTest, VectorAgreesWithAColumnAndNotWithAMatrix)
{
    auto setup = fake::setupOf(fake::NONE, {7, 1});
    setup.outputs = {signalOf(Dims{7}, OPEN, OPEN)};
    Block block(setup);
    settle(block);
    EXPECT_EQ(block.instance().outputs[0].dims.text(), "7-by-1");

    setup.outputs[0].dims = Dims{8};
    Block shorter(setup);
    EXPECT_EQ(fake::errorOf([&] { settle(shorter); }, ErrorKind::Usage),
              "propagation stopped: output port 0: 7-by-1 refused: connected signal is vector of 8");
}

TEST(PropagationTest, HostSetsModesWithoutTheBlocksCallback)
{
    Block block(fake::setupOf(fake::NO_MODE_CALLBACK, {2, 3}, DIMS_MODE_VARIABLE));
    settle(block);
    EXPECT_EQ(block.instance().inputs[1].mode, DIMS_MODE_VARIABLE);
    EXPECT_EQ(block.instance().outputs[0].mode, DIMS_MODE_VARIABLE);
}

TEST(PropagationTest, OffersAreRepeatedAfterTheDefaults)
{
    auto setup = fake::setupOf(fake::SIZE_AFTER_TYPE, {4, 6});
    setup.inputs[0].typeId = setup.inputs[1].typeId = OPEN;
    Block block(setup);
    settle(block);
    EXPECT_EQ(block.instance().inputs[0].dims.text(), "4-by-6");
}

TEST(PropagationTest, MoreSignalsThanPortsAreRefused)
{
    auto setup = fake::setupOf(fake::NONE);
    setup.inputs.emplace_back();
    Block block(setup);
    EXPECT_EQ(fake::errorOf([&] { block.initializeSizes(); }, ErrorKind::Usage),
              "mdlInitializeSizes stopped: 2 input ports declared, but signals are connected to 3");
}

}  // namespace

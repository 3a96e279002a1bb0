#include "fake_setup.h"

using blockhost::Block;
using blockhost::State;
using esttform::ErrorKind;

namespace {

using Method = bool (Block::*)();

const Method ORDER[] = {&Block::initializeSizes, &Block::checkParameters, &Block::initializeSampleTimes,
                        &Block::propagate,       &Block::setWorkWidths,   &Block::start};

bool callAt(Block& block, int idx)
{
    const Method method = ORDER[idx];
    return (block.*method)();
}

// ---- Calls out of order

struct OrderCase : fake::NamedCase {
    int callNum;  ///< calls of the order made before
    Method method;
    const char* text;
};

const OrderCase ORDER_CASES[] = {
    {{"checkFirst"}, 0, &Block::checkParameters,
     "mdlCheckParameters called before mdlInitializeSizes (state: created); call initializeSizes() first"},
    {{"propagateUnchecked"}, 1, &Block::propagate,
     "propagation called before mdlCheckParameters (state: sized); call checkParameters() first"},
    {{"sampleTimesFirst"}, 0, &Block::initializeSampleTimes,
     "mdlInitializeSampleTimes called before mdlInitializeSizes (state: created); call initializeSizes() first"},
    {{"widthsUnsettled"}, 3, &Block::setWorkWidths,
     "mdlSetWorkWidths called before propagation (state: checked); call propagate() first"},
    {{"startWithoutWidths"}, 4, &Block::start,
     "mdlStart called before mdlSetWorkWidths (state: settled); call setWorkWidths() first"},
    {{"stepWithoutStart"}, 1, &Block::step, "mdlOutputs called before mdlStart (state: sized); call start() first"},
    {{"stepPrepared"}, 5, &Block::step, "mdlOutputs called before mdlStart (state: prepared); call start() first"},
    {{"sizesTwice"}, 1, &Block::initializeSizes,
     "mdlInitializeSizes called again (state: sized); a block is set up once, open another block"},
    {{"sampleTimesTwice"}, 4, &Block::initializeSampleTimes,
     "mdlInitializeSampleTimes called again (state: settled); a block is set up once, open another block"},
    {{"startTwice"}, 6, &Block::start, "mdlStart called again (state: running); a block is set up once, open another block"},
    {{"terminateFirst"}, 0, &Block::terminate,
     "mdlTerminate called before mdlInitializeSizes (state: created); call initializeSizes() first"},
};

class OrderTest : public ::testing::TestWithParam<OrderCase> {};

TEST_P(OrderTest, IsRefusedWithTheMissingCallAndReportedOnce)
{
    auto setup = fake::setupOf(fake::NONE);
    std::string trace;
    fake::traceTo(setup, trace);
    Block block(setup);
    for (int i = 0; i < GetParam().callNum; ++i)
        callAt(block, i);
    const State state = block.state();
    trace.clear();

    EXPECT_EQ(fake::errorOf([&] { (block.*GetParam().method)(); }, ErrorKind::Usage), GetParam().text);
    EXPECT_FALSE((block.*GetParam().method)());
    EXPECT_EQ(trace, "") << "the block was called";
    EXPECT_EQ(block.state(), state);
    for (int i = GetParam().callNum; i < 6; ++i)
        EXPECT_TRUE(callAt(block, i)) << "call " << i << " after the mistake";
    EXPECT_TRUE(block.step());
}

INSTANTIATE_TEST_SUITE_P(, OrderTest, ::testing::ValuesIn(ORDER_CASES), fake::CaseName{});

TEST(LifecycleTest, SampleTimesMayComeLateButBeforeStart)
{
    Block block(fake::setupOf(fake::NONE));
    block.initializeSizes();
    block.checkParameters();
    block.propagate();
    block.setWorkWidths();
    EXPECT_EQ(fake::errorOf([&] { block.start(); }, ErrorKind::Usage),
              "mdlStart called before mdlInitializeSampleTimes (state: prepared); call initializeSampleTimes() first");
    block.initializeSampleTimes();
    EXPECT_TRUE(block.start());
}

TEST(LifecycleTest, NothingFollowsTerminateAndNobodyOpensTwice)
{
    Block block(fake::setupOf(fake::NONE));
    block.open();
    EXPECT_THROW(block.open(), esttform::Error);
    EXPECT_EQ(fake::errorOf([&] { block.open(); }, ErrorKind::Usage),
              "open called again (state: running); a block is set up once, open another block");
    EXPECT_TRUE(block.terminate());
    EXPECT_EQ(fake::errorOf([&] { block.step(); }, ErrorKind::Usage),
              "mdlOutputs called after mdlTerminate (state: terminated); open another block");
    EXPECT_EQ(fake::errorOf([&] { block.terminate(); }, ErrorKind::Usage),
              "mdlTerminate called again (state: terminated); open another block");
}

// ---- Errors that the block reports

struct ErrorCase : fake::NamedCase {
    fake::Fault fault;
    const char* text;
    const char* next;  ///< the callback after the failing one
};

const ErrorCase ERROR_CASES[] = {
    {{"sizes"}, fake::ERROR_IN_SIZES, "fakeError: 1", "mdlCheckParameters"},
    {{"check"}, fake::ERROR_IN_CHECK, "fakeError: 2", "mdlInitializeSampleTimes"},
    {{"sampleTimes"}, fake::ERROR_IN_SAMPLE_TIMES, "fakeError: 3", "mdlSetInputPortDimensionInfo"},
    {{"propagation"}, fake::ERROR_IN_PROPAGATION, "fakeError: 4", "mdlSetWorkWidths"},
    {{"workWidths"}, fake::ERROR_IN_WORK_WIDTHS, "fakeError: 5", "mdlStart"},
    {{"start"}, fake::ERROR_IN_START, "fakeError: 6", "mdlOutputs"},
};

class SetUpErrorTest : public ::testing::TestWithParam<ErrorCase> {};

TEST_P(SetUpErrorTest, FirstErrorStopsTheSetUpAndTheBlockIsTerminated)
{
    auto setup = fake::setupOf(GetParam().fault);
    std::string trace;
    fake::traceTo(setup, trace);
    {
        Block block(setup);
        EXPECT_EQ(fake::errorOf([&] { block.open(); }, ErrorKind::Usage), GetParam().text);
        EXPECT_EQ(trace.find(GetParam().next), std::string::npos);
        const std::string later = fake::errorOf([&] { block.step(); }, ErrorKind::Usage);
        EXPECT_NE(later.find("failed (state: failed); call terminate()"), std::string::npos) << later;
    }
    EXPECT_NE(trace.find("mdlTerminate()"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(, SetUpErrorTest, ::testing::ValuesIn(ERROR_CASES), fake::CaseName{});

TEST(LifecycleTest, ErrorOfAStepIsItsValueAndLaterStepsRun)
{
    Block block(fake::setupOf(fake::ERROR_IN_OUTPUTS));
    block.open();
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(block.step());
        ASSERT_TRUE(block.stepError().has_value());
        EXPECT_EQ(block.stepError()->id, "fakeError");
        EXPECT_EQ(block.stepError()->text, "fakeError: 7");
    }
}

TEST(LifecycleTest, LoadedButNeverSizedBlockIsNotTerminated)
{
    auto setup = fake::setupOf(fake::NONE);
    std::string trace;
    fake::traceTo(setup, trace);
    Block(std::move(setup));
    EXPECT_EQ(trace, "");
}

}  // namespace

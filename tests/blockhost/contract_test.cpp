#include "fake_setup.h"

using blockhost::Block;
using esttform::ErrorKind;

namespace {

struct BreachCase : fake::NamedCase {
    fake::Fault fault;
    ErrorKind kind;
    const char* text;
};

const BreachCase BREACH_CASES[] = {
    {{"otherParamNum"}, fake::DECLARE_17_PARAMS, ErrorKind::Usage,
     "mdlInitializeSizes stopped: the block declares 17 parameters, but 4 values were given; give 17 values"},
    {{"noPorts"}, fake::NO_INPUT_PORTS, ErrorKind::Internal,
     "mdlInitializeSizes did not declare parameters, inputs and outputs"},
    {{"noWorkWidth"}, fake::NO_WORK_WIDTH, ErrorKind::Internal,
     "DW_SCRATCH: declared with width -1 and data type uint32, expected both"},
    {{"noWorkNum"}, fake::NO_WORK_NUM, ErrorKind::Internal,
     "the number of work vectors was announced and not declared in mdlSetWorkWidths"},
    {{"noRegistration"}, fake::NO_RTP_REGISTRATION, ErrorKind::Internal,
     "run-time parameter 1 was declared and not registered"},
    {{"missingParam"}, fake::READ_MISSING_PARAM, ErrorKind::Internal,
     "bhGetSFcnParam: parameter 99 does not exist; the block has 4"},
    {{"missingPort"}, fake::READ_MISSING_PORT, ErrorKind::Internal,
     "bhGetInputPortDimensionSize: input port 2 does not exist; the block has 2"},
    {{"missingRunTimeParam"}, fake::READ_MISSING_RTP, ErrorKind::Internal,
     "GetRTPDataPtr: run-time parameter 7 does not exist; the block has 2"},
    {{"bufferTooEarly"}, fake::BUFFER_TOO_EARLY, ErrorKind::Internal,
     "bhGetDWork called in mdlInitializeSizes, expected in mdlStart, size rules, mdlOutputs, mdlProcessParameters, "
     "mdlTerminate"},
    {{"portsTooLate"}, fake::PORTS_TOO_LATE, ErrorKind::Internal,
     "bhSetNumInputPorts called in mdlStart, expected in mdlInitializeSizes"},
    {{"ruleWithoutList"}, fake::RULE_WITHOUT_LIST, ErrorKind::Internal,
     "bhAddOutputDimsDependencyRule: the rule of output port 0 depends on 2 input ports and has no list of them"},
    {{"ruleOfMinusOne"}, fake::RULE_OF_MINUS_ONE, ErrorKind::Internal,
     "bhAddOutputDimsDependencyRule: the rule of output port 0 depends on -1 input ports, expected 0 or more"},
    {{"exceptionOut"}, fake::THROW_IN_START, ErrorKind::Internal, "mdlStart let an exception out: out of ideas"},
};

class ContractTest : public ::testing::TestWithParam<BreachCase> {};

TEST_P(ContractTest, BreachEndsTheSetUpWithItsReason)
{
    Block block(fake::setupOf(GetParam().fault));
    EXPECT_EQ(fake::errorOf([&] { block.open(); }, GetParam().kind), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(, ContractTest, ::testing::ValuesIn(BREACH_CASES), fake::CaseName{});

TEST(ContractRunTest, SizeRuleBeyondTheBoundFailsTheStep)
{
    Block block(fake::setupOf(fake::SIZE_BEYOND_BOUND, {2, 9}, sysobj::DIMS_MODE_VARIABLE));
    block.open();
    EXPECT_EQ(fake::errorOf([&] { block.step(); }, ErrorKind::Internal),
              "bhSetCurrentOutputPortDimensions: output port 0: current size 3 along dimension 0 does not fit 2-by-9 "
              "(variable)");
}

struct RefusalCase : fake::NamedCase {
    const char* function;
    int n;
    const char* text;
};

const RefusalCase REFUSAL_CASES[] = {
    {{"register"}, "registerSFunctionParams", 1, "mdlInitializeSizes stopped: registerSFunctionParams refused on request"},
    {{"outputNum"}, "bhSetNumOutputPorts", 1, "mdlInitializeSizes stopped: bhSetNumOutputPorts refused on request"},
    {{"secondInput"}, "bhSetInputPortDimensionInfo", 2, "propagation stopped: bhSetInputPortDimensionInfo refused on request"},
    {{"runTimeParams"}, "bhSetNumRunTimeParams", 1,
     "the run-time parameters could not be set up: the host refused their number (bhSetNumRunTimeParams refused on request)"},
    {{"workNumSecondCall"}, "bhSetNumDWork", 2, "mdlSetWorkWidths stopped: bhSetNumDWork refused on request"},
};

class RefusalTest : public ::testing::TestWithParam<RefusalCase> {};

TEST_P(RefusalTest, NthCallIsRefusedAndTheTraceShowsIt)
{
    auto setup = fake::setupOf(fake::NONE);
    std::string trace;
    fake::traceTo(setup, trace);
    Block block(setup);
    block.refuseCall(GetParam().function, GetParam().n);
    EXPECT_EQ(fake::errorOf([&] { block.open(); }, ErrorKind::Usage), GetParam().text);
    EXPECT_EQ(block.refusals().size(), 1U);
    EXPECT_TRUE(trace.find("-> 0\n") != std::string::npos || trace.find("-> false\n") != std::string::npos) << trace;
}

INSTANTIATE_TEST_SUITE_P(, RefusalTest, ::testing::ValuesIn(REFUSAL_CASES), fake::CaseName{});

TEST(WarningTest, EqualOnesAreCountedAndTakenOnce)
{
    Block block(fake::setupOf(fake::WARN_THREE_TIMES));
    block.open();
    EXPECT_FALSE(block.hasWarnings());
    block.step();
    const auto warnings = block.takeWarnings();
    ASSERT_EQ(warnings.size(), 1U);
    EXPECT_EQ(warnings[0].id, "invalidRandomSamples");
    EXPECT_EQ(warnings[0].count, 3U);
    EXPECT_EQ(warnings[0].text, "no sample of distinct pairs after 10 draws; the last one was fitted");
    EXPECT_FALSE(block.hasWarnings());
    EXPECT_FALSE(block.stepError().has_value());
}

TEST(WarningTest, FullTableStillCountsEveryWarning)
{
    Block block(fake::setupOf(fake::WARN_TWENTY_KINDS));
    block.open();
    block.step();
    const auto warnings = block.takeWarnings();
    ASSERT_EQ(warnings.size(), 16U);
    EXPECT_EQ(warnings[14].text, "kind: 14");
    EXPECT_EQ(warnings[15].id, "otherWarnings");
    EXPECT_EQ(warnings[15].count, 5U);
}

}  // namespace

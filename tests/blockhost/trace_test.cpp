#include "fake_setup.h"

using blockhost::Block;

namespace {

/// Runs a block from end to end and gives the trace.
std::string traceOf(fake::Fault fault, int mode)
{
    auto setup = fake::setupOf(fault, {2, 3}, mode);
    std::string trace;
    fake::traceTo(setup, trace);
    {
        Block block(setup);
        block.open();
        block.step();
        block.terminate();
    }
    return trace;
}

/// The lines from a callback to the next one.
std::string callbackIn(const std::string& trace, const std::string& callback)
{
    const std::size_t first = trace.find("\n" + callback + "(") + 1;
    std::size_t last = trace.find('\n', first) + 1;
    while (last < trace.size() && trace[last] == ' ')
        last = trace.find('\n', last) + 1;
    return trace.substr(first, last - first);
}

TEST(TraceTest, ShowsCallsArgumentsAndResults)
{
    const std::string trace = traceOf(fake::NONE, sysobj::DIMS_MODE_VARIABLE);
    EXPECT_EQ(trace.substr(0, trace.find("mdlCheckParameters")),
              "mdlInitializeSizes()\n"
              "  bhGetSFcnParam(0) -> fault\n"
              "  bhGetArrayReal(fault) -> 0\n"
              "  registerSFunctionParams(4) -> true\n"
              "  bhGetSFcnParam(0) -> fault\n"
              "  bhGetArrayReal(fault) -> 0\n"
              "  bhSetSFcnParamTunable(1, 1)\n"
              "  bhSetSFcnParamTunable(3, 1)\n"
              "  bhGetSFcnParam(0) -> fault\n"
              "  bhGetArrayReal(fault) -> 0\n"
              "  bhSetNumInputPorts(2) -> 1\n"
              "  bhSetNumOutputPorts(1) -> 1\n"
              "  bhGetSFcnParam(0) -> fault\n"
              "  bhGetArrayReal(fault) -> 0\n"
              "  bhRegMdlSetInputPortDimensionsModeFcn(mdlSetInputPortDimsMode)\n"
              "  bhSetNumDWork(-1) -> true\n"
              "  bhSetNumSampleTimes(1)\n"
              "  bhSetOptions(0x21)\n"
              "  bhGetSFcnParam(0) -> fault\n"
              "  bhGetArrayReal(fault) -> 0\n");
    EXPECT_EQ(callbackIn(trace, "mdlSetInputPortDimsMode"),
              "mdlSetInputPortDimsMode(0, variable)\n"
              "  bhSetInputPortDimensionsMode(0, variable) -> 1\n"
              "  bhGetInputPortDimensionsMode(0) -> variable\n"
              "  bhGetInputPortDimensionsMode(1) -> unset\n");
    EXPECT_EQ(callbackIn(trace, "mdlSetInputPortDataType"),
              "mdlSetInputPortDataType(0, double)\n"
              "  dspIsDataTypeSupported(double, 1, 0, \"In\", 0x3, 0) -> true\n"
              "  bhGetSFcnParam(0) -> fault\n"
              "  bhGetArrayReal(fault) -> 0\n"
              "  bhSetInputPortDataType(0, double) -> 1\n"
              "  bhSetInputPortDataType(1, double) -> 1\n"
              "  bhSetOutputPortDataType(0, double) -> 1\n");
    EXPECT_EQ(callbackIn(trace, "sizeRule"),
              "sizeRule(0)\n"
              "  bhGetSFcnParam(0) -> fault\n"
              "  bhGetArrayReal(fault) -> 0\n"
              "  bhGetCurrentInputPortDimensions(0, 0) -> 2\n"
              "  bhSetCurrentOutputPortDimensions(0, 0, 2)\n"
              "  bhGetCurrentInputPortDimensions(0, 1) -> 3\n"
              "  bhSetCurrentOutputPortDimensions(0, 1, 3)\n");
    EXPECT_EQ(callbackIn(trace, "mdlTerminate"), "mdlTerminate()\n  bhSetUserData(null)\n");
}

TEST(TraceTest, NamesBuffersErrorsAndWarnings)
{
    const std::string outputs = callbackIn(traceOf(fake::WARN_THREE_TIMES, sysobj::DIMS_MODE_FIXED), "mdlOutputs");
    for (const char* const line :
         {"  bhGetErrorStatus() -> null\n", "  dspWarning(invalidRandomSamples)\n", "  bhGetDWork(0) -> DW_SCRATCH\n",
          "  bhGetInputPortSignal(0) -> input 0\n", "  bhGetOutputPortSignal(0) -> output 0\n",
          "  GetRTPDataPtr(0) -> GAIN_RTP\n"})
        EXPECT_NE(outputs.find(line), std::string::npos) << line << outputs;
    const std::string error = callbackIn(traceOf(fake::ERROR_IN_OUTPUTS, sysobj::DIMS_MODE_FIXED), "mdlOutputs");
    EXPECT_NE(error.find("  dspError(fakeError 7)\n"), std::string::npos) << error;
    EXPECT_NE(error.find("  bhGetErrorStatus() -> \"fakeError: 7\"\n"), std::string::npos) << error;
}

TEST(TraceTest, SameRunGivesTheSameText)
{
    EXPECT_EQ(traceOf(fake::NONE, sysobj::DIMS_MODE_VARIABLE), traceOf(fake::NONE, sysobj::DIMS_MODE_VARIABLE));
}

TEST(TraceTest, FailingSinkBecomesAnErrorAndTheCallGoesOn)
{
    for (const char* const failing : {"mdlInitializeSizes()", "bhSetNumInputPorts(2)"}) {
        auto setup = fake::setupOf(fake::NONE);
        setup.trace = [failing](std::string_view line) {
            if (line.find(failing) != std::string_view::npos)
                throw std::runtime_error("disk is full");
        };
        Block block(setup);
        EXPECT_EQ(fake::errorOf([&] { block.initializeSizes(); }, esttform::ErrorKind::Internal),
                  "trace sink failed: disk is full");
        EXPECT_EQ(block.instance().outputs.size(), 1U) << "the block was not given its result after " << failing;
    }
}

}  // namespace

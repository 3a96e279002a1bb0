// A small block for the tests of the host: output 0 is input 0 times a gain, and parameter 0 asks for a fault.
// Built three times: as it is, without mdlStart (FAKE_WITHOUT_START), and needing a function that no host has
// (FAKE_UNDEFINED_SYMBOL).
#include "fake_block.h"

#include "block_messages.h"
#include "block_ports.h"
#include "block_run.h"
#include "block_setup.h"
#include "block_work.h"
#include "callbacks.h"
#include "orbsimcommon.h"

#include <stdexcept>

#define FAKE_EXPORT __attribute__((visibility("default")))

using namespace sysobj;
using namespace OrbSimCommon;
using resource_core::BaseMsgID;

namespace {

constexpr int GAIN_RTP = 0;
constexpr int COUNT_RTP = 1;
constexpr int PORT_DIM_NUM = 2;

double param(SysObjAdaptorSFun* S, int idx)
{
    return *bhGetArrayReal(bhGetSFcnParam(S, idx));
}

bool isAsked(SysObjAdaptorSFun* S, fake::Fault fault)
{
    return static_cast<int>(param(S, fake::FAULT_PARAM)) == fault;
}

void errorIfAsked(SysObjAdaptorSFun* S, fake::Fault fault)
{
    if (isAsked(S, fault)) {
        dspError(S, BaseMsgID("fakeError", fault));
        dspError(S, BaseMsgID("secondError"));
    }
}

/// Gives both inputs and the output the same size.
void setSizes(SysObjAdaptorSFun* S, const DimsInfo_tag* dims)
{
    if (bhSetInputPortDimensionInfo(S, 0, dims) == 0 || bhSetInputPortDimensionInfo(S, 1, dims) == 0)
        return;
    bhSetOutputPortDimensionInfo(S, 0, dims);
}

void setTypes(SysObjAdaptorSFun* S, int typeId)
{
    if (bhSetInputPortDataType(S, 0, typeId) == 0 || bhSetInputPortDataType(S, 1, typeId) == 0)
        return;
    bhSetOutputPortDataType(S, 0, typeId);
}

void setOutputSize(SysObjAdaptorSFun* S, int outputPort)
{
    const int extra = isAsked(S, fake::SIZE_BEYOND_BOUND) ? 1 : 0;
    for (int dim = 0; dim < PORT_DIM_NUM; ++dim)
        bhSetCurrentOutputPortDimensions(S, outputPort, dim, bhGetCurrentInputPortDimensions(S, 0, dim) + extra);
}

void warn(SysObjAdaptorSFun* S)
{
    for (int i = 0; i < 3 && isAsked(S, fake::WARN_THREE_TIMES); ++i)
        dspWarning(catalog::invalidRandomSamples());
    for (int i = 0; i < 20 && isAsked(S, fake::WARN_TWENTY_KINDS); ++i)
        dspWarning(BaseMsgID("kind", i));
}

void overwrite(SysObjAdaptorSFun* S, int elementNum)
{
    auto* const scratch = static_cast<std::uint32_t*>(bhGetDWork(S, 0));
    if (isAsked(S, fake::WRITE_BEFORE_SCRATCH))
        scratch[-1] = 1;
    if (isAsked(S, fake::WRITE_PAST_SCRATCH))
        scratch[fake::SCRATCH_WIDTH] = 1;
    if (isAsked(S, fake::WRITE_PAST_OUTPUT))
        static_cast<double*>(bhGetOutputPortSignal(S, 0))[elementNum] = 1.0;
}

}  // namespace

#ifdef FAKE_UNDEFINED_SYMBOL
extern "C" void bhNoHostHasThis(SysObjAdaptorSFun* S);
#endif

extern "C" {

FAKE_EXPORT void mdlSetInputPortDimsMode(SysObjAdaptorSFun* S, int port, int mode)
{
    if (bhSetInputPortDimensionsMode(S, port, mode) == 0)
        return;
    if (bhGetInputPortDimensionsMode(S, 0) == bhGetInputPortDimensionsMode(S, 1))
        bhSetOutputPortDimensionsMode(S, 0, mode);
}

FAKE_EXPORT void mdlInitializeSizes(SysObjAdaptorSFun* S)
{
    if (!registerSFunctionParams(S, isAsked(S, fake::DECLARE_17_PARAMS) ? 17 : fake::PARAM_NUM))
        return;
    errorIfAsked(S, fake::ERROR_IN_SIZES);
    bhSetSFcnParamTunable(S, fake::GAIN_PARAM, 1);
    bhSetSFcnParamTunable(S, fake::COUNT_PARAM, 1);
    if (isAsked(S, fake::NO_INPUT_PORTS) || bhSetNumInputPorts(S, 2) == 0 || bhSetNumOutputPorts(S, 1) == 0)
        return;
    if (!isAsked(S, fake::NO_MODE_CALLBACK))
        bhRegMdlSetInputPortDimensionsModeFcn(S, mdlSetInputPortDimsMode);
    bhSetNumDWork(S, DIMS_UNKNOWN);
    bhSetNumSampleTimes(S, 1);
    bhSetOptions(S, 0x21U);
    if (isAsked(S, fake::BUFFER_TOO_EARLY))
        bhGetDWork(S, 0);
}

FAKE_EXPORT void mdlCheckParameters(SysObjAdaptorSFun* S)
{
    errorIfAsked(S, fake::ERROR_IN_CHECK);
    if (!dspIsPopupParamValid(S, fake::FAULT_PARAM, 0, 99) || !dspIsCheckboxParamValid(S, fake::CHECKBOX_PARAM))
        return;
    dspParamCheckerID checker(PRODUCT_BLOCKS);
    checker.setRangeKind(dspParamCheckerID::AT_LEAST_LOWER);
    checker.setLowerBound(0, 0.0);
    checker.setNumericClass(dspParamCheckerID::WHOLE_NUMBERS);
    if (!checker.check(S, fake::COUNT_PARAM, catalog::mapBlkNumberOfRandomSampling(), 0, 0))
        return;
    checker.setNumericClass(dspParamCheckerID::REAL_NUMBERS);
    checker.setRangeKind(dspParamCheckerID::BETWEEN_LOWER_AND_UPPER);
    checker.setUpperBound(100, 100.0);
    checker.check(S, fake::GAIN_PARAM, catalog::mapBlkDesiredConfidence(), 0, 0);
}

FAKE_EXPORT void mdlInitializeSampleTimes(SysObjAdaptorSFun* S)
{
    errorIfAsked(S, fake::ERROR_IN_SAMPLE_TIMES);
    bhSetSampleTime(S, 0, -1.0);
}

FAKE_EXPORT void mdlSetInputPortDimensionInfo(SysObjAdaptorSFun* S, int, const DimsInfo_tag* dims)
{
    errorIfAsked(S, fake::ERROR_IN_PROPAGATION);
    const bool isTooEarly = isAsked(S, fake::SIZE_AFTER_TYPE) && isInputDynamicallyTyped(S, 0);
    if (!isAsked(S, fake::LEAVE_SIZE_OPEN) && !isTooEarly)
        setSizes(S, dims);
}

FAKE_EXPORT void mdlSetOutputPortDimensionInfo(SysObjAdaptorSFun* S, int, const DimsInfo_tag* dims)
{
    if (!isAsked(S, fake::LEAVE_SIZE_OPEN))
        setSizes(S, dims);
}

FAKE_EXPORT void mdlSetDefaultPortDimensionInfo(SysObjAdaptorSFun* S)
{
    const int sizes[PORT_DIM_NUM] = {2, 3};
    const DimsInfo_tag dims{6, PORT_DIM_NUM, sizes};
    const bool isLeftOpen = isAsked(S, fake::LEAVE_SIZE_OPEN) || isAsked(S, fake::SIZE_AFTER_TYPE);
    if (isInputDynamicallySized(S, 0) && !isLeftOpen)
        setSizes(S, &dims);
}

FAKE_EXPORT void mdlSetInputPortFrameData(SysObjAdaptorSFun* S, int port, int frameData)
{
    bhSetInputPortFrameData(S, port, frameData);
}

FAKE_EXPORT void mdlSetInputPortDataType(SysObjAdaptorSFun* S, int, int typeId)
{
    if (dspIsDataTypeSupported(S, typeId, PRODUCT_BLOCKS, PORT_IN, "In", 0x3U, 0) && !isAsked(S, fake::LEAVE_TYPE_OPEN))
        setTypes(S, typeId);
}

FAKE_EXPORT void mdlSetOutputPortDataType(SysObjAdaptorSFun* S, int, int typeId)
{
    setTypes(S, typeId);
}

FAKE_EXPORT void mdlSetDefaultPortDataTypes(SysObjAdaptorSFun* S)
{
    if (!isAsked(S, fake::LEAVE_TYPE_OPEN))
        setTypes(S, DT_DOUBLE);
}

FAKE_EXPORT void mdlSetWorkWidths(SysObjAdaptorSFun* S)
{
    errorIfAsked(S, fake::ERROR_IN_WORK_WIDTHS);
    if (bhSetNumRunTimeParams(S, 2) == 0)
        return dspError(S, catalog::rtpAllocFailed());
    bhRegDlgParamAsRunTimeParam(S, fake::GAIN_PARAM, GAIN_RTP, "GAIN_RTP", bhGetOutputPortDataType(S, 0));
    if (!isAsked(S, fake::NO_RTP_REGISTRATION))
        bhRegDlgParamAsRunTimeParam(S, fake::COUNT_PARAM, COUNT_RTP, "COUNT_RTP", DT_UINT32);
    if (isAsked(S, fake::NO_WORK_NUM) || !bhSetNumDWork(S, 1))
        return;
    bhSetDWorkName(S, 0, "DW_SCRATCH");
    bhSetDWorkDataType(S, 0, DT_UINT32);
    if (!isAsked(S, fake::NO_WORK_WIDTH))
        bhSetDWorkWidth(S, 0, fake::SCRATCH_WIDTH);
    const int inputPorts[] = {0, 1};
    const bool hasList = !isAsked(S, fake::RULE_WITHOUT_LIST);
    const bool isNegative = isAsked(S, fake::RULE_OF_MINUS_ONE);
    const DimsDependInfo_T rule{hasList ? inputPorts : nullptr, isNegative ? -1 : 2, setOutputSize, nullptr};
    if (bhGetInputPortDimensionsMode(S, 0) == DIMS_MODE_VARIABLE || !hasList || isNegative)
        bhAddOutputDimsDependencyRule(S, 0, &rule);
}

#ifndef FAKE_WITHOUT_START
FAKE_EXPORT void mdlStart(SysObjAdaptorSFun* S)
{
#ifdef FAKE_UNDEFINED_SYMBOL
    bhNoHostHasThis(S);
#endif
    errorIfAsked(S, fake::ERROR_IN_START);
    if (isAsked(S, fake::THROW_IN_START))
        throw std::runtime_error("out of ideas");
    if (isAsked(S, fake::PORTS_TOO_LATE))
        bhSetNumInputPorts(S, 3);
    if (isAsked(S, fake::READ_MISSING_PARAM))
        param(S, 99);
    if (isAsked(S, fake::READ_MISSING_PORT))
        bhGetInputPortDimensionSize(S, 2, 0);
    if (isAsked(S, fake::READ_MISSING_RTP))
        bhSetUserData(S, const_cast<void*>(GetRTPDataPtr(S, 7)));
    bhUpdateDlgParamAsRunTimeParam(S, GAIN_RTP);
    bhUpdateDlgParamAsRunTimeParam(S, COUNT_RTP);
}
#endif

FAKE_EXPORT void mdlOutputs(SysObjAdaptorSFun* S)
{
    errorIfAsked(S, fake::ERROR_IN_OUTPUTS);
    if (bhGetErrorStatus(S) != nullptr)
        return;
    warn(S);
    const int elementNum = bhGetCurrentInputPortDimensions(S, 0, 0) * bhGetCurrentInputPortDimensions(S, 0, 1);
    overwrite(S, elementNum);
    if (bhGetOutputPortDataType(S, 0) != DT_DOUBLE)
        return;
    const auto* const in = static_cast<const double*>(bhGetInputPortSignal(S, 0));
    auto* const out = static_cast<double*>(bhGetOutputPortSignal(S, 0));
    const double gain = *static_cast<const double*>(GetRTPDataPtr(S, GAIN_RTP));
    for (int i = 0; i < elementNum; ++i)
        out[i] = gain * in[i];
}

FAKE_EXPORT void mdlProcessParameters(SysObjAdaptorSFun* S)
{
    errorIfAsked(S, fake::ERROR_IN_PROCESS);
    bhUpdateDlgParamAsRunTimeParam(S, GAIN_RTP);
    bhUpdateDlgParamAsRunTimeParam(S, COUNT_RTP);
}

FAKE_EXPORT void mdlTerminate(SysObjAdaptorSFun* S)
{
    bhSetUserData(S, nullptr);
}

FAKE_EXPORT void mdlVektCG(SysObjAdaptorSFun*, CGIR_Block_IF*) {}
FAKE_EXPORT void vobFunction(SysObjAdaptorSFun*) {}

}  // extern "C"

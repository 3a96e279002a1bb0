#include "szelesttform_work.h"

#include <limits>

#include "block_ports.h"
#include "block_run.h"
#include "callbacks.h"
#include "codegen_block_if.h"
#include "orbsimcommon.h"
#include "szelesttform_ports.h"

using namespace sysobj;
using namespace OrbSimCommon;

namespace {

constexpr int SCRATCH = 2;
constexpr const char* RTP_NAME[RTP_NUM] = {"SAMPLENUM_RTP", "CONFIDENCE_RTP", "DIST_THR_RTP", "BREAKPERCENTAGE_RTP"};

void registerRunTimeParams(SysObjAdaptorSFun* S, int tformType)
{
    for (int kind = 0; kind < RTP_NUM; ++kind) {
        const auto rtp = static_cast<RunTimeParam>(kind);
        const int idx = rtpIndex(S, rtp);
        if (idx == NONE) continue;
        const int typeId = rtp == SAMPLENUM_RTP ? int(DT_UINT32) : tformType;
        bhRegDlgParamAsRunTimeParam(S, dialogParamOf(S, rtp), idx, RTP_NAME[kind], typeId);
    }
}

/// False when the host refuses the number of work vectors, or when a width has no 32-bit count.
bool declareWorkVectors(SysObjAdaptorSFun* S, int tformType)
{
    const int maxPtsNum = bhGetInputPortDimensionSize(S, 0, pointAxis(S));
    const int valuesPerPair = 2 * (2 * readSampleSize(S) + 1);
    if (maxPtsNum < 0 || maxPtsNum > std::numeric_limits<int>::max() / valuesPerPair) return false;
    const int constraintWidth = valuesPerPair * maxPtsNum;

    const bool isRobust = readFlag(S, EXCLUDE_OUTLIERS);
    const int workVectorNum = isRobust ? WORK_VECTOR_NUM : WORK_VECTOR_NUM_NOT_ROBUST;
    if (!bhSetNumDWork(S, workVectorNum)) return false;

    for (int idx = 0; idx < workVectorNum; ++idx) {
        const bool isIndexVector = idx == DW_SAMPLEIDX || idx == DW_BEST_SAMPLE;
        bhSetDWorkComplexSignal(S, idx, 0);
        bhSetDWorkUsageType(S, idx, SCRATCH);
        bhSetDWorkDataType(S, idx, isIndexVector ? int(DT_UINT32) : tformType);
    }

    const auto declare = [S](WorkVector idx, const char* name, int width) {
        bhSetDWorkName(S, idx, name);
        bhSetDWorkWidth(S, idx, width);
    };
    declare(DW_PTSNORM1, "DW_PTSNORM1", 2 * maxPtsNum);
    declare(DW_PTSNORM2, "DW_PTSNORM2", 2 * maxPtsNum);
    declare(DW_CONSTRAINT, "DW_CONSTRAINT", constraintWidth);
    if (isRobust) declare(DW_CONSTRT_ALL, "DW_CONSTRT_ALL", constraintWidth);
    declare(DW_FACTOR, "DW_FACTOR", constraintWidth);
    if (isRobust) declare(DW_DISTANCE, "DW_DISTANCE", readCode(S, METHOD) == 1 ? maxPtsNum : maxPtsNum + 1);
    declare(DW_SAMPLEIDX, "DW_SAMPLEIDX", maxPtsNum);
    declare(DW_BEST_SAMPLE, "DW_BEST_SAMPLE", maxPtsNum);
    return true;
}

void declareInlierSizeRule(SysObjAdaptorSFun* S)
{
    const int inlierPort = outputPortIndex(S, INLIER_PORT);
    if (inlierPort == NONE || bhGetInputPortDimensionsMode(S, 0) != DIMS_MODE_VARIABLE) return;
    constexpr int INPUT_PORTS[] = {0, 1};
    const DimsDependInfo_T rule = {INPUT_PORTS, POINT_PORT_NUM, inlierDimsFromInput, inlierDimsFromInputCG};
    bhSetSignalSizesComputeType(S, 0);
    bhAddVariableSizeSignalsRuntimeChecker(S, 0);
    bhAddOutputDimsDependencyRule(S, inlierPort, &rule);
}

}  // namespace

/// Registers the run-time parameters and declares the work vectors and the size rule of a variable-size inlier output.
void mdlSetWorkWidths(SysObjAdaptorSFun* S)
{
    if (!bhSetNumRunTimeParams(S, rtpIndex(S, RTP_NUM))) {
        dspError(S, catalog::rtpAllocFailed());
        return;
    }
    const int tformType = bhGetOutputPortDataType(S, outputPortIndex(S, TFORM_PORT));
    registerRunTimeParams(S, tformType);
    if (!declareWorkVectors(S, tformType)) {
        dspError(S, catalog::memoryAllocationFailed());
        return;
    }
    declareInlierSizeRule(S);
}

void inlierDimsFromInput(SysObjAdaptorSFun* S, int outputPort)
{
    const int axis = pointAxis(S);
    const int ptsNum = bhGetCurrentInputPortDimensions(S, 0, axis);
    bhSetCurrentOutputPortDimensions(S, outputPort, 1 - axis, 1);
    bhSetCurrentOutputPortDimensions(S, outputPort, axis, ptsNum);
}

void inlierDimsFromInputCG(SysObjAdaptorSFun* S, CGIR_Block_IF* blockInterface, int outputPort, const int* inputPorts)
{
    const int axis = pointAxis(S);
    blockInterface->SetCurrentOutputDim(outputPort, 1 - axis, blockInterface->CreateConst(1));
    blockInterface->SetCurrentOutputDim(outputPort, axis, blockInterface->GetCurrentInputDim(inputPorts[0], axis));
}

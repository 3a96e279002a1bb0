// mdlInitializeSizes and mdlInitializeSampleTimes: what the block declares before anything is known about its signals.
#include "block_ports.h"
#include "block_run.h"
#include "block_setup.h"
#include "block_work.h"
#include "callbacks.h"
#include "orbsimcommon.h"
#include "szelesttform_params.h"
#include "szelesttform_ports.h"

using namespace sysobj;

namespace {

constexpr int FRAME_UNSET = -1;
constexpr int NOT_FRAME = 0;
constexpr int REAL_SIGNAL = 0;
constexpr std::uint32_t REUSABLE = 1;
constexpr std::uint32_t BLOCK_OPTIONS = 0x21280002;

void declareTunability(SysObjAdaptorSFun* S)
{
    constexpr DialogParam FIXED[] = {TRANSFORM_TYPE, EXCLUDE_OUTLIERS, METHOD, SAMPLE_NUM_SOURCE, BREAK_BY_PERCENTAGE,
                                     REFINE_ITERATIVELY, OUTPUT_INLIERS, RESERVED_CODE, TFORM_TYPE_FOR_INTEGERS,
                                     RESERVED_FLAG, RANDOM_SAMPLING, POINTS_IN_ROWS};
    constexpr DialogParam SOMETIMES_TUNABLE[] = {DIS_THR_AFFINE, DIS_THR_PROJECTIVE, MAX_RANDOM_SAMPLING,
                                                 NUM_RANDOM_SAMPLING, DESIRED_CONFIDENCE, INLIER_PERCENTAGE};
    for (const DialogParam idx : FIXED) bhSetSFcnParamTunable(S, idx, 0);
    for (const DialogParam idx : SOMETIMES_TUNABLE) bhSetSFcnParamTunable(S, idx, isTunable(S, idx) ? 1 : 0);
}

bool declareInputs(SysObjAdaptorSFun* S)
{
    if (!bhSetNumInputPorts(S, POINT_PORT_NUM)) return false;
    const DimsInfo_tag dynamicSize = getDefaultDimensionInfo();
    for (int port = 0; port < POINT_PORT_NUM; ++port) {
        if (!bhSetInputPortDimensionInfo(S, port, &dynamicSize)) return false;
        if (!bhSetInputPortFrameData(S, port, FRAME_UNSET)) return false;
        if (!bhSetInputPortDataType(S, port, DT_UNSET)) return false;
        bhSetInputPortComplexSignal(S, port, REAL_SIGNAL);
        bhSetInputPortOptimOpts(S, port, REUSABLE);
        bhSetInputPortDirectFeedThrough(S, port, 1);
        bhSetInputPortOverWritable(S, port, 0);
        bhSetInputPortRequiredContiguous(S, port, 1);
        if (!bhSetInputPortDimensionsMode(S, port, DIMS_MODE_UNSET)) return false;
    }
    return true;
}

bool declareOutput(SysObjAdaptorSFun* S, int port, DataTypeId typeId, DimensionsMode mode)
{
    if (!bhSetOutputPortFrameData(S, port, NOT_FRAME)) return false;
    bhSetOutputPortComplexSignal(S, port, REAL_SIGNAL);
    bhSetOutputPortOptimOpts(S, port, REUSABLE);
    return bhSetOutputPortDataType(S, port, typeId) && bhSetOutputPortDimensionsMode(S, port, mode);
}

/// TForm is 3-by-2 or 3-by-3 for points in rows, 2-by-3 or 3-by-3 for points in columns.
bool declareOutputs(SysObjAdaptorSFun* S)
{
    if (!bhSetNumOutputPorts(S, outputPortIndex(S, OUTPUT_PORT_NUM))) return false;

    const bool isInRows = readFlag(S, POINTS_IN_ROWS);
    const int shorterSide = readCode(S, TRANSFORM_TYPE) == 3 ? 3 : 2;
    const int tformPort = outputPortIndex(S, TFORM_PORT);
    if (!bhSetOutputPortMatrixDimensions(S, tformPort, isInRows ? 3 : shorterSide, isInRows ? shorterSide : 3)) {
        return false;
    }
    if (!declareOutput(S, tformPort, DT_UNSET, DIMS_MODE_FIXED)) return false;

    const int inlierPort = outputPortIndex(S, INLIER_PORT);
    if (inlierPort == NONE) return true;
    const DimsInfo_tag dynamicSize = getDefaultDimensionInfo();
    if (!bhSetOutputPortDimensionInfo(S, inlierPort, &dynamicSize)) return false;
    return declareOutput(S, inlierPort, DT_BOOLEAN, DIMS_MODE_UNSET);
}

}  // namespace

/// Declares parameters, ports, options and an empty user data; stops at the first refusal.
void mdlInitializeSizes(SysObjAdaptorSFun* S)
{
    if (!OrbSimCommon::registerSFunctionParams(S, DIALOG_PARAM_NUM)) return;
    bhSetModelReferenceSampleTimeInheritanceRule(S, 1);
    declareTunability(S);
    if (!declareInputs(S)) return;
    if (!declareOutputs(S)) return;
    bhRegMdlSetInputPortDimensionsModeFcn(S, mdlSetInputPortDimsMode);
    if (!bhSetNumDWork(S, -1)) return;                   // mdlSetWorkWidths says how many
    bhSetVektCG(S, 1);
    bhSetUserData(S, nullptr);
    bhSetModelReferenceNormalModeSupport(S, 2);
    bhSetNumSampleTimes(S, 1);
    bhSetSimStateCompliance(S, 1);
    bhSetOptions(S, BLOCK_OPTIONS);
}

/// One sample time, inherited from what drives the block.
void mdlInitializeSampleTimes(SysObjAdaptorSFun* S)
{
    bhSetSampleTime(S, 0, -1.0);
    bhSetOffsetTime(S, 0, 0.0);
}

#include "szelesttform_ports.h"

#include "block_ports.h"
#include "callbacks.h"
#include "orbsimcommon.h"
#include "szelesttform_params.h"

using namespace sysobj;
using namespace OrbSimCommon;

int outputPortIndex(SysObjAdaptorSFun* S, OutputPort kind)
{
    const bool hasInlierPort = hasInlierOutput(S);
    switch (kind) {
    case TFORM_PORT: return 0;
    case INLIER_PORT: return hasInlierPort ? 1 : NONE;
    default: return hasInlierPort ? 2 : 1;
    }
}

// ---- Sizes

void checkPtsSizes(SysObjAdaptorSFun* S, int r1, int c1, int r2, int c2)
{
    const bool isInRows = readFlag(S, POINTS_IN_ROWS);
    const int sampleSize = readSampleSize(S);
    const int coordNum1 = isInRows ? c1 : r1;
    const int coordNum2 = isInRows ? c2 : r2;
    const int ptsNum1 = isInRows ? r1 : c1;
    const int ptsNum2 = isInRows ? r2 : c2;

    if (coordNum1 != 2 || coordNum2 != 2) {
        dspError(S, isInRows ? catalog::pts1Pts2NotMx2() : catalog::pts1Pts2Not2xN());
    } else if (ptsNum1 < sampleSize) {
        dspError(S, catalog::pts1OrPts2TooSmall(sampleSize));
    } else if (ptsNum1 != ptsNum2) {
        dspError(S, catalog::pts1AndPts2SizesDiffer());
    }
}

void setPortSizes(SysObjAdaptorSFun* S, int ptsNum, const DimsInfo_tag* record)
{
    const bool isInRows = readFlag(S, POINTS_IN_ROWS);
    for (int port = 0; port < POINT_PORT_NUM; ++port) {
        if (!bhSetInputPortMatrixDimensions(S, port, isInRows ? ptsNum : 2, isInRows ? 2 : ptsNum)) return;
    }
    const int inlierPort = outputPortIndex(S, INLIER_PORT);
    if (inlierPort == NONE) return;
    if (record != nullptr) {
        bhSetOutputPortDimensionInfo(S, inlierPort, record);
    } else {
        bhSetOutputPortMatrixDimensions(S, inlierPort, isInRows ? ptsNum : 1, isInRows ? 1 : ptsNum);
    }
}

namespace {

bool isFullySized(SysObjAdaptorSFun* S, int port)
{
    const int numDims = bhGetInputPortNumDimensions(S, port);
    if (numDims < 0) return false;
    for (int dim = 0; dim < numDims; ++dim) {
        if (bhGetInputPortDimensionSize(S, port, dim) == DIMS_UNKNOWN) return false;
    }
    return true;
}

bool isVector(const DimsInfo_tag& record)
{
    return record.numDims == 1 || (record.numDims == 2 && (record.dims[0] == 1 || record.dims[1] == 1));
}

}  // namespace

/// Takes a size offered to a point input: checks it against the other point input, then sizes all ports by it.
/// The ports are sized whatever the check reported.
void mdlSetInputPortDimensionInfo(SysObjAdaptorSFun* S, int port, const DimsInfo_tag* record)
{
    if (record->numDims != 2) {
        dspError(S, catalog::pts1Pts2Not2xN());
        return;
    }
    const int rows = record->dims[0];
    const int cols = record->dims[1];
    const int otherPort = 1 - port;
    if (isFullySized(S, otherPort)) {
        checkPtsSizes(S, rows, cols, bhGetInputPortDimensionSize(S, otherPort, 0),
                      bhGetInputPortDimensionSize(S, otherPort, 1));
    } else {
        checkPtsSizes(S, rows, cols, rows, cols);
    }
    setPortSizes(S, readFlag(S, POINTS_IN_ROWS) ? rows : cols, nullptr);
}

/// Takes a size offered to the inlier output: a vector of at least one minimal sample sizes the point inputs too.
/// TForm has its size from the start; an offer for it is ignored.
void mdlSetOutputPortDimensionInfo(SysObjAdaptorSFun* S, int port, const DimsInfo_tag* record)
{
    if (port != outputPortIndex(S, INLIER_PORT)) return;
    if (!isVector(*record)) {
        dspError(S, catalog::inlierOutNotVector());
        return;
    }
    const int sampleSize = readSampleSize(S);
    if (record->width < sampleSize) {
        dspError(S, catalog::inlierOutSzTooSmall(sampleSize));
        return;
    }
    setPortSizes(S, record->width, record);
}

/// Sizes that nothing determines: the smallest valid point count.
void mdlSetDefaultPortDimensionInfo(SysObjAdaptorSFun* S)
{
    if (isInputDynamicallySized(S, 0)) setPortSizes(S, readSampleSize(S), nullptr);
}

// ---- Dimensions modes and frames

/// Both point inputs must have one mode; the inlier output gets it once both are offered the same. Different offers
/// leave the mode open, which the host reports.
void mdlSetInputPortDimsMode(SysObjAdaptorSFun* S, int port, int mode)
{
    const int otherMode = bhGetInputPortDimensionsMode(S, 1 - port);
    if (otherMode == DIMS_MODE_UNSET) {
        bhSetInputPortDimensionsMode(S, port, mode);
    } else if (otherMode == mode) {
        if (!bhSetInputPortDimensionsMode(S, port, mode)) return;
        const int inlierPort = outputPortIndex(S, INLIER_PORT);
        if (inlierPort != NONE) bhSetOutputPortDimensionsMode(S, inlierPort, mode);
    }
}

/// Takes the frame setting as it is offered.
void mdlSetInputPortFrameData(SysObjAdaptorSFun* S, int port, int frameData)
{
    bhSetInputPortFrameData(S, port, frameData);
}

// ---- Data types

namespace {

constexpr std::uint32_t POINT_TYPES = 0xFF;  // ids 0 to 7
constexpr std::uint32_t TFORM_TYPES = 0x03;  // double and single

/// Type of TForm for a type of the points: the same for real points, else as parameter 14 says.
int tformTypeFor(SysObjAdaptorSFun* S, int pointType)
{
    if (pointType == DT_DOUBLE || pointType == DT_SINGLE) return pointType;
    return readCode(S, TFORM_TYPE_FOR_INTEGERS) == 1 ? DT_SINGLE : DT_DOUBLE;
}

bool setPointTypes(SysObjAdaptorSFun* S, int typeId)
{
    for (int port = 0; port < POINT_PORT_NUM; ++port) {
        if (!bhSetInputPortDataType(S, port, typeId)) return false;
    }
    return true;
}

}  // namespace

/// Takes a type offered to a point input: both inputs get it, and TForm the type that follows from it.
void mdlSetInputPortDataType(SysObjAdaptorSFun* S, int port, int typeId)
{
    const char* const name = port == 0 ? "Pts1" : "Pts2";
    if (!dspIsDataTypeSupported(S, typeId, PRODUCT_BLOCKS, PORT_IN, name, POINT_TYPES, 0)) return;
    if (!setPointTypes(S, typeId)) return;
    bhSetOutputPortDataType(S, outputPortIndex(S, TFORM_PORT), tformTypeFor(S, typeId));
}

/// Takes a type offered to TForm; the inlier output is Boolean from the start.
void mdlSetOutputPortDataType(SysObjAdaptorSFun* S, int port, int typeId)
{
    if (port != outputPortIndex(S, TFORM_PORT)) return;
    if (!dspIsDataTypeSupported(S, typeId, PRODUCT_BLOCKS, PORT_OUT, "TForm", TFORM_TYPES, 0)) return;
    bhSetOutputPortDataType(S, port, typeId);
}

/// Types that nothing determines: double, or the points as TForm.
void mdlSetDefaultPortDataTypes(SysObjAdaptorSFun* S)
{
    if (!isInputDynamicallyTyped(S, 0)) return;
    const int tformPort = outputPortIndex(S, TFORM_PORT);
    if (isOutputDynamicallyTyped(S, tformPort)) {
        if (!bhSetOutputPortDataType(S, tformPort, DT_DOUBLE)) return;
    }
    setPointTypes(S, bhGetOutputPortDataType(S, tformPort));
}

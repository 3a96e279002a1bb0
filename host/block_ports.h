// What a block calls to settle its ports: sizes, data types, dimensions modes.
// Setters give 0 when the host refuses: an attribute that contradicts what is settled already. The refusal is recorded
// by the host; the block returns from its callback at once and reports nothing.
#pragma once

#include "block_types.h"

namespace sysobj {

extern "C" {

/// A fully dynamic dimension record: width and dimension count DIMS_UNKNOWN, no sizes.
DimsInfo_tag getDefaultDimensionInfo() noexcept;

// ---- Setters  [in mdlInitializeSizes and the propagation callbacks; host thread]

int bhSetInputPortDimensionInfo(SysObjAdaptorSFun* S, int port, const DimsInfo_tag* dims) noexcept;
int bhSetOutputPortDimensionInfo(SysObjAdaptorSFun* S, int port, const DimsInfo_tag* dims) noexcept;
/// Makes the port a rows-by-cols matrix.
int bhSetInputPortMatrixDimensions(SysObjAdaptorSFun* S, int port, int rows, int cols) noexcept;
int bhSetOutputPortMatrixDimensions(SysObjAdaptorSFun* S, int port, int rows, int cols) noexcept;
int bhSetInputPortDataType(SysObjAdaptorSFun* S, int port, int typeId) noexcept;
int bhSetOutputPortDataType(SysObjAdaptorSFun* S, int port, int typeId) noexcept;
int bhSetInputPortDimensionsMode(SysObjAdaptorSFun* S, int port, int mode) noexcept;
int bhSetOutputPortDimensionsMode(SysObjAdaptorSFun* S, int port, int mode) noexcept;
/// Frame setting: 1 frame-based, 0 sample-based, -1 settled by propagation.
int bhSetInputPortFrameData(SysObjAdaptorSFun* S, int port, int frameData) noexcept;
int bhSetOutputPortFrameData(SysObjAdaptorSFun* S, int port, int frameData) noexcept;

// ---- Getters  [after the port counts are set; host thread]

/// Number of dimensions, DIMS_UNKNOWN while the port is fully dynamic.
int bhGetInputPortNumDimensions(SysObjAdaptorSFun* S, int port) noexcept;
/// Size along dimension dim (0 rows, 1 columns), DIMS_UNKNOWN while not known. For a variable-size port its upper
/// bound. A one-dimensional port has size 1 along dimension 1.
int bhGetInputPortDimensionSize(SysObjAdaptorSFun* S, int port, int dim) noexcept;
int bhGetInputPortDataType(SysObjAdaptorSFun* S, int port) noexcept;
int bhGetOutputPortDataType(SysObjAdaptorSFun* S, int port) noexcept;
int bhGetInputPortDimensionsMode(SysObjAdaptorSFun* S, int port) noexcept;
int bhGetOutputPortDimensionsMode(SysObjAdaptorSFun* S, int port) noexcept;

}  // extern "C"

}  // namespace sysobj

// The eighteen entry points that a block exports and its host calls, with the order that both rely on.
//
// 1. mdlInitializeSizes, then mdlCheckParameters: later callbacks read only values that it let pass.
// 2. Propagation, in any order and as often as needed, until every size, type and dimensions mode is known.
//    mdlInitializeSampleTimes at any point after 1.
// 3. mdlSetWorkWidths.
// 4. mdlStart.
// 5. mdlOutputs once per step; mdlProcessParameters after a tunable parameter changed and passed mdlCheckParameters.
// 6. mdlTerminate; also after a failure in 1 to 4.
// mdlVektCG takes the place of 4 to 5 when code is generated.
//
// A callback reports through the host (dspError, dspWarning) and returns nothing. All run on the host's thread.
#pragma once

#include "block_types.h"

class CGIR_Block_IF;

#pragma GCC visibility push(default)  // the entry points are exported whatever the library's default

extern "C" {

// ---- Set-up
void mdlInitializeSizes(sysobj::SysObjAdaptorSFun* S);
void mdlCheckParameters(sysobj::SysObjAdaptorSFun* S);
void mdlInitializeSampleTimes(sysobj::SysObjAdaptorSFun* S);

// ---- Propagation: the host offers an attribute, the block settles its ports by the setters of block_ports.h
void mdlSetInputPortDimensionInfo(sysobj::SysObjAdaptorSFun* S, int port, const sysobj::DimsInfo_tag* dims);
void mdlSetOutputPortDimensionInfo(sysobj::SysObjAdaptorSFun* S, int port, const sysobj::DimsInfo_tag* dims);
void mdlSetDefaultPortDimensionInfo(sysobj::SysObjAdaptorSFun* S);
void mdlSetInputPortDimsMode(sysobj::SysObjAdaptorSFun* S, int port, int mode);
void mdlSetInputPortFrameData(sysobj::SysObjAdaptorSFun* S, int port, int frameData);
void mdlSetInputPortDataType(sysobj::SysObjAdaptorSFun* S, int port, int typeId);
void mdlSetOutputPortDataType(sysobj::SysObjAdaptorSFun* S, int port, int typeId);
void mdlSetDefaultPortDataTypes(sysobj::SysObjAdaptorSFun* S);

// ---- Run
void mdlSetWorkWidths(sysobj::SysObjAdaptorSFun* S);
void mdlStart(sysobj::SysObjAdaptorSFun* S);
void mdlOutputs(sysobj::SysObjAdaptorSFun* S);
void mdlProcessParameters(sysobj::SysObjAdaptorSFun* S);
void mdlTerminate(sysobj::SysObjAdaptorSFun* S);

// ---- Code generation
void mdlVektCG(sysobj::SysObjAdaptorSFun* S, CGIR_Block_IF* blockInterface);

// ---- Gateway of the library: does nothing
void vobFunction(sysobj::SysObjAdaptorSFun* S);

}  // extern "C"

#pragma GCC visibility pop

// What a block calls to declare itself: parameters, ports, options.
// Setters of the first group give 0 or false when the host refuses; the block then returns from its callback at once.
#pragma once

#include "block_types.h"

namespace sysobj {

/// Offers an input port's dimensions mode to the block; registered because it is optional for a block.
using SetInputPortDimsModeFcn = void (*)(SysObjAdaptorSFun* S, int port, int mode);

extern "C" {

// ---- Port and parameter counts  [in mdlInitializeSizes; host thread]

/// Declares how many input ports the block has. The ports start without attributes.
/// @return 0 if the host refuses (negative count, or called twice)
int bhSetNumInputPorts(SysObjAdaptorSFun* S, int num) noexcept;
/// As bhSetNumInputPorts, for output ports.
int bhSetNumOutputPorts(SysObjAdaptorSFun* S, int num) noexcept;
/// Says whether dialog parameter idx may be changed between start and terminate (1) or not (0).
void bhSetSFcnParamTunable(SysObjAdaptorSFun* S, int idx, int isTunable) noexcept;

// ---- Port attributes that do not propagate  [in mdlInitializeSizes, after the port count; host thread]

/// 1: the signal is complex, 0: real, -1: either.
void bhSetInputPortComplexSignal(SysObjAdaptorSFun* S, int port, int isComplex) noexcept;
void bhSetOutputPortComplexSignal(SysObjAdaptorSFun* S, int port, int isComplex) noexcept;
/// Buffer reuse the block allows: 0 none, 1 the host may reuse the buffer when the signal is no longer read.
void bhSetInputPortOptimOpts(SysObjAdaptorSFun* S, int port, std::uint32_t options) noexcept;
void bhSetOutputPortOptimOpts(SysObjAdaptorSFun* S, int port, std::uint32_t options) noexcept;
/// 1: mdlOutputs reads this input, so the host orders the producer first.
void bhSetInputPortDirectFeedThrough(SysObjAdaptorSFun* S, int port, int hasFeedThrough) noexcept;
/// 1: an output may share the input's buffer.
void bhSetInputPortOverWritable(SysObjAdaptorSFun* S, int port, int isOverWritable) noexcept;
/// 1: the signal must be one contiguous buffer.
void bhSetInputPortRequiredContiguous(SysObjAdaptorSFun* S, int port, int isRequired) noexcept;

// ---- Instance-wide settings  [in mdlInitializeSizes; host thread]

/// Registers the callback that is offered an input port's dimensions mode.
void bhRegMdlSetInputPortDimensionsModeFcn(SysObjAdaptorSFun* S, SetInputPortDimsModeFcn fcn) noexcept;
/// 1: the block can describe itself to the code generator (mdlVektCG).
void bhSetVektCG(SysObjAdaptorSFun* S, int hasVektCG) noexcept;
void bhSetNumSampleTimes(SysObjAdaptorSFun* S, int num) noexcept;
/// Option bits of the block; the stand-in host records them.
void bhSetOptions(SysObjAdaptorSFun* S, std::uint32_t options) noexcept;
/// How the block behaves inside a referenced model; the stand-in host records these three.
void bhSetModelReferenceSampleTimeInheritanceRule(SysObjAdaptorSFun* S, int rule) noexcept;
void bhSetModelReferenceNormalModeSupport(SysObjAdaptorSFun* S, int support) noexcept;
void bhSetSimStateCompliance(SysObjAdaptorSFun* S, int compliance) noexcept;

// ---- Sample times  [in mdlInitializeSampleTimes; host thread]

/// Period of sample time idx in seconds; -1 inherits the period of what drives the block.
void bhSetSampleTime(SysObjAdaptorSFun* S, int idx, double period) noexcept;
void bhSetOffsetTime(SysObjAdaptorSFun* S, int idx, double offset) noexcept;

// ---- Dialog parameters  [any callback; host thread]

/// Current value of dialog parameter idx. Never null for a registered index; read it afresh on every use.
const yrArray* bhGetSFcnParam(SysObjAdaptorSFun* S, int idx) noexcept;
/// Real data of a parameter value, column by column; at least one element.
const double* bhGetArrayReal(const yrArray* value) noexcept;

}  // extern "C"

}  // namespace sysobj

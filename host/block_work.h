// What a block calls to get memory from its host: run-time parameters, work vectors, and the size rule of an output.
// All of it is declared once, in mdlSetWorkWidths, and exists from start to terminate.
#pragma once

#include "block_types.h"

class CGIR_Block_IF;

namespace sysobj {

/// How the current size of an output port follows the current sizes of inputs.
/// Both functions stay callable until terminate; the arrays are copied by the host.
struct DimsDependInfo_T {
    const int* inputPorts;  ///< input ports that the output's size depends on; null only for none
    int inputPortNum;       ///< number of entries of inputPorts
    /// Sets the current dimensions of outputPort from the current dimensions of the inputs.
    /// Called before every mdlOutputs once the input sizes are known.
    void (*setOutputDims)(SysObjAdaptorSFun* S, int outputPort);
    /// States the same rule to the code generator; inputPorts is the list above.
    void (*setOutputDimsCG)(SysObjAdaptorSFun* S, CGIR_Block_IF* blockInterface, int outputPort, const int* inputPorts);
};

extern "C" {

// ---- Run-time parameters: dialog parameters in the type and memory that the step reads

/// Declares the number of run-time parameters.  [in mdlSetWorkWidths]
/// @return 0 if the host refuses
int bhSetNumRunTimeParams(SysObjAdaptorSFun* S, int num) noexcept;
/// Makes dialog parameter dlgIdx the run-time parameter rtpIdx, stored as typeId. The name is copied.  [in mdlSetWorkWidths]
void bhRegDlgParamAsRunTimeParam(SysObjAdaptorSFun* S, int dlgIdx, int rtpIdx, const char* name, int typeId) noexcept;
/// Converts the dialog parameter's current value to the registered type and stores it.  [after start's set-up; host thread]
/// Real to integer: truncated toward zero, clamped to the type's range, NaN gives 0.
void bhUpdateDlgParamAsRunTimeParam(SysObjAdaptorSFun* S, int rtpIdx) noexcept;
/// Address of the run-time parameter's value in its registered type; fixed from start to terminate.
const void* GetRTPDataPtr(SysObjAdaptorSFun* S, int rtpIdx) noexcept;

// ---- Work vectors

/// Declares the number of work vectors; -1 (in mdlInitializeSizes): said later.  [mdlInitializeSizes, mdlSetWorkWidths]
/// @return false if the host refuses
bool bhSetNumDWork(SysObjAdaptorSFun* S, int num) noexcept;
void bhSetDWorkName(SysObjAdaptorSFun* S, int idx, const char* name) noexcept;
/// Element count of work vector idx.
void bhSetDWorkWidth(SysObjAdaptorSFun* S, int idx, int width) noexcept;
void bhSetDWorkDataType(SysObjAdaptorSFun* S, int idx, int typeId) noexcept;
void bhSetDWorkComplexSignal(SysObjAdaptorSFun* S, int idx, int isComplex) noexcept;
/// What the vector is for: 2 is scratch that need not be saved with the simulation state.
void bhSetDWorkUsageType(SysObjAdaptorSFun* S, int idx, int usage) noexcept;

// ---- Sizes of variable-size outputs  [in mdlSetWorkWidths]

/// When the host computes signal sizes: 0 at every step, from the registered rules.
void bhSetSignalSizesComputeType(SysObjAdaptorSFun* S, int type) noexcept;
/// Asks the host to check the input's current size against its bound at every step.
void bhAddVariableSizeSignalsRuntimeChecker(SysObjAdaptorSFun* S, int port) noexcept;
/// Registers the size rule of an output port. The record is copied.
void bhAddOutputDimsDependencyRule(SysObjAdaptorSFun* S, int outputPort, const DimsDependInfo_T* rule) noexcept;

}  // extern "C"

}  // namespace sysobj

// What a block calls while it runs: signals, work vectors, current sizes, its own pointer, pending errors.
// Every buffer is contiguous, stored column by column, 64-byte aligned (an input that the host reads in place from an array
// of its own only for an element), and keeps its address from start to terminate.
#pragma once

#include "block_types.h"

namespace sysobj {

extern "C" {

// ---- Buffers  [from mdlStart to mdlTerminate; host thread]
// An index that does not exist, or a call at another time, gives null and is a fault: the host ends the block after the
// callback.

/// Elements of input port `port` in the port's data type; the block only reads them.
const void* bhGetInputPortSignal(SysObjAdaptorSFun* S, int port) noexcept;
/// Elements of output port `port` in the port's data type; the block writes them in mdlOutputs.
void* bhGetOutputPortSignal(SysObjAdaptorSFun* S, int port) noexcept;
/// Elements of work vector idx in its data type. All zero at start; the host leaves them alone until terminate.
void* bhGetDWork(SysObjAdaptorSFun* S, int idx) noexcept;

// ---- Current sizes of variable-size signals  [from mdlStart to mdlTerminate; host thread]

/// Current size along dim; for a fixed-size port its size.
int bhGetCurrentInputPortDimensions(SysObjAdaptorSFun* S, int port, int dim) noexcept;
/// Sets the current size of a variable-size output; called from a size rule. A size beyond the port's bound is an error.
void bhSetCurrentOutputPortDimensions(SysObjAdaptorSFun* S, int port, int dim, int size) noexcept;

// ---- Instance state  [any callback; host thread]

/// One pointer per instance that belongs to the block; null until the block sets it.
void* bhGetUserData(SysObjAdaptorSFun* S) noexcept;
void bhSetUserData(SysObjAdaptorSFun* S, void* userData) noexcept;
/// Text of the pending error, null when there is none. Valid until the next host call.
const char* bhGetErrorStatus(SysObjAdaptorSFun* S) noexcept;

}  // extern "C"

}  // namespace sysobj

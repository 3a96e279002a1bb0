// The memory of a block: signals, work vectors and run-time parameters, allocated before start as the block declared them.
// Every buffer keeps its address until the instance goes.
#pragma once

#include "block_instance.h"

namespace blockhost {

/// Allocates and zeroes every buffer; an input whose signal has data of its own gets none.
///
/// @throws Error  Internal: a work vector or run-time parameter was declared incompletely; Usage: no memory, or data of
///                an input that is not aligned for its type
void allocateMemory(sysobj::SysObjAdaptorSFun& S);

}  // namespace blockhost

// Propagation: settles sizes, data types and dimensions modes of a block's ports by offering what is connected to them,
// then the block's defaults, until nothing changes.
#pragma once

#include "block_instance.h"
#include "block_library.h"

#include <vector>

namespace blockhost {

/// Settles every attribute of every port.
///
/// @param order  offers to make first, in this order; the others follow by attribute (size, type, mode, frame), inputs
///               before outputs, ports ascending
/// @throws Error (Usage)  an error that the block reports; a refused setting; an attribute that stays open or differs
///                        from what the connected signal has. The text names port and attribute.
///         Error (Internal)  a fault during a callback
void propagate(sysobj::SysObjAdaptorSFun& S, const Callbacks& callbacks, const std::vector<Offer>& order);

}  // namespace blockhost

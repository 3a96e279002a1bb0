// From a prepared block to its code in a model: the signals that its code refers to, then what the block describes.
#pragma once

#include "../block_instance.h"
#include "model.h"

#include <functional>
#include <string>
#include <vector>

namespace blockhost::ir {

/// Names of a block's ports and parameters in generated code; a port beyond the list is called "input2", "output1", ...
struct SignalNames {
    std::vector<std::string> inputs;
    std::vector<std::string> outputs;
};

/// Adds a block to a model.
///
/// @param S         a prepared instance; its phase is the caller's to set
/// @param describe  calls the block's mdlVektCG with the interface
/// @return the block's code; it is not yet verified
BlockCode& addBlock(Model& model, sysobj::SysObjAdaptorSFun& S, const SignalNames& names,
                    const std::function<void(CGIR_Block_IF*)>& describe);

}  // namespace blockhost::ir

// From a prepared block to its code in a model: the signals that its code refers to, then what the block describes.
#pragma once

#include "../block_instance.h"
#include "model.h"

#include <functional>
#include <string>
#include <vector>

namespace blockhost::ir {

/// What generated code calls a port, and what it says about it beside its size.
struct PortLabel {
    std::string name;
    std::string note;                   ///< may be empty
};

/// What a reader of generated code is told about a block; a port beyond the lists is called "input2", "output1", ...
struct BlockLabels {
    std::vector<PortLabel> inputs;
    std::vector<PortLabel> outputs;
    std::vector<std::string> settings;  ///< one line each
};

/// Adds a block to a model.
///
/// @param S         a prepared instance; its phase is the caller's to set
/// @param describe  calls the block's mdlVektCG with the interface
/// @return the block's code; it is not yet verified
BlockCode& addBlock(Model& model, sysobj::SysObjAdaptorSFun& S, const BlockLabels& labels,
                    const std::function<void(CGIR_Block_IF*)>& describe);

}  // namespace blockhost::ir

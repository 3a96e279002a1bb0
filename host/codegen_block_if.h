// CGIR_Block_IF: what the code generator offers a block about its own ports while it describes itself.
// The host owns every IR object; a block holds a pointer only for the duration of a callback.
#pragma once

#include <cstdint>

namespace CG {

/// A node of the intermediate representation, owned by the host.
class Node;

}  // namespace CG

/// Code-generation interface of one block.  [in mdlVektCG and in the code-generation function of a size rule; host thread]
class CGIR_Block_IF {
public:
    virtual ~CGIR_Block_IF() = default;

    /// An integer constant as an expression.
    virtual CG::Node* CreateConst(std::int32_t value) = 0;
    /// Current size of an input port along a dimension, as an expression evaluated when the generated step runs.
    virtual CG::Node* GetCurrentInputDim(int port, int dim) = 0;
    /// Sets the current size of an output port along a dimension to an expression.
    virtual void SetCurrentOutputDim(int port, int dim, CG::Node* size) = 0;
};

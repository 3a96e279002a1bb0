// CGIR_Block_IF: what the code generator offers a block about itself while it describes itself: its signals, their current
// sizes, and what its code needs when it is built.
#pragma once

#include "codegen_nodes.h"

namespace OrbSimCommon {

/// The headers and sources that generated code is built with. Opaque: pass it to modifyBuildInfo.
class BuildInfo;

}  // namespace OrbSimCommon

/// Code-generation interface of one block.  [in mdlVektCG and in the code-generation function of a size rule; host thread]
/// A port, dimension or index that the block does not have gives null.
class CGIR_Block_IF {
public:
    virtual ~CGIR_Block_IF() = default;

    // ---- Expressions
    /// An int32 constant.
    virtual CG::Node* CreateConst(std::int32_t value) = 0;
    /// Current size of an input port along a dimension, an int32 read when the generated step runs.
    virtual CG::Node* GetCurrentInputDim(int port, int dim) = 0;
    /// Sets the current size of an output port along a dimension to an expression.
    virtual void SetCurrentOutputDim(int port, int dim, CG::Node* size) = 0;

    // ---- Signals: arrays, and parameters as scalars
    virtual CG::Node* getInputRef(int port) = 0;
    virtual CG::Node* getOutputVar(int port) = 0;
    virtual CG::Node* getParamRef(int rtpIdx) = 0;
    virtual CG::Node* getDWorkRef(int idx) = 0;

    // ---- The generated code as a whole
    /// Body that is being described.
    virtual CG::Cfg* GetCfg() = 0;
    /// Includes a header: a standard one in angle brackets and with its extension, any other by its file name.
    virtual void AddHeader(const char* header) = 0;
    /// Extensions of generated files, without a dot.
    virtual const char* headerExtension() const = 0;
    virtual const char* sourceExtension() const = 0;
    virtual OrbSimCommon::BuildInfo* GetBuildInfo() = 0;
    /// Ends the step with cleared outputs and a status when two sizes, int32 or Boolean, differ at run time.
    virtual void insertSizeEqCheck1D(CG::Node* size1, CG::Node* size2, CG::SourceLoc loc = CG::SourceLoc::here()) = 0;
};

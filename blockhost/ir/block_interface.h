// BlockInterface: the host's side of CGIR_Block_IF for one block that describes itself into a model.
#pragma once

#include "model.h"

namespace blockhost::ir {

class ESTTFORM_API BlockInterface : public CGIR_Block_IF {
public:
    /// @param code  of a model, with its ports, parameters and work vectors filled in
    explicit BlockInterface(CG::Module& module, BlockCode& code) : mModule(module), mCode(code), mCurrent(&code.output) {}

    CG::Node* CreateConst(std::int32_t value) override;
    CG::Node* GetCurrentInputDim(int port, int dim) override;
    void SetCurrentOutputDim(int port, int dim, CG::Node* size) override;
    CG::Node* getInputRef(int port) override;
    CG::Node* getOutputVar(int port) override;
    CG::Node* getParamRef(int rtpIdx) override;
    CG::Node* getDWorkRef(int idx) override;
    CG::Cfg* GetCfg() override { return mCurrent; }
    void AddHeader(const char* header) override;
    const char* headerExtension() const override { return "h"; }
    const char* sourceExtension() const override { return "c"; }
    OrbSimCommon::BuildInfo* GetBuildInfo() override;
    void insertSizeEqCheck1D(CG::Node* size1, CG::Node* size2, CG::SourceLoc loc) override;

    BlockCode& code() noexcept { return mCode; }
    void setCurrent(CG::Cfg& body) noexcept { mCurrent = &body; }

private:
    CG::Node* reference(CG::Var* var);

    CG::Module& mModule;
    BlockCode& mCode;
    CG::Cfg* mCurrent;
};

}  // namespace blockhost::ir

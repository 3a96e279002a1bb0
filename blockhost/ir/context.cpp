// The context of a block: what host/codegen_context.h declares, and the functions of the target's own library.
#include "block_interface.h"
#include "tree.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>

namespace VektCG {

using blockhost::ir::BlockInterface;

namespace {

/// The host hands out its own implementation only.
BlockInterface& hostSide(CGIR_Block_IF* blockInterface) noexcept
{
    return static_cast<BlockInterface&>(*blockInterface);
}

struct TargetFcn {
    const char* name;
    int inputNum;
};

constexpr TargetFcn TARGET_FCNS[] = {{"rand", 0}, {"pow", 2}, {"log", 1}, {"ceil", 1}};

}  // namespace

VektCGCtx::VektCGCtx(CGIR_Block_IF* blockInterface, fxpModeRounding_tag rounding, fxpModeOverflow_tag overflow)
    : CG::StatementBuilder(&hostSide(blockInterface).code().output), mBlockInterface(blockInterface), mRounding(rounding),
      mOverflow(overflow)
{
}

VektCGCtx::~VektCGCtx() = default;

void VektCGCtx::start() {}
void VektCGCtx::virtualOutportStart() {}
void VektCGCtx::initialize() {}
void VektCGCtx::output() {}
void VektCGCtx::update() {}
void VektCGCtx::derivative() {}
void VektCGCtx::projection() {}
void VektCGCtx::forcingFunction() {}
void VektCGCtx::massMatrix() {}
void VektCGCtx::zerocrossings() {}
void VektCGCtx::enable() {}
void VektCGCtx::disable() {}
void VektCGCtx::setAllDims() {}
void VektCGCtx::setDims() {}
void VektCGCtx::terminate() {}
void VektCGCtx::testInterface() {}

CG::Node* VektCGCtx::getTargetLibFcnCallCGNode(const char* name, const CG::Type* type)
{
    CG::Node* const call = getTargetLibFcnCallCGNodeIfExist(name, type);
    return call != nullptr ? call : mCfg->module.invalid(fmt::format("the target's library has no function \"{}\"", name));
}

CG::Node* VektCGCtx::getTargetLibFcnCallCGNodeIfExist(const char* name, const CG::Type* type)
{
    const auto* const found = std::find_if(std::begin(TARGET_FCNS), std::end(TARGET_FCNS),
                                           [name](const TargetFcn& fcn) { return std::strcmp(fcn.name, name) == 0; });
    if (found == std::end(TARGET_FCNS))
        return nullptr;
    CG::Node* const call = mCfg->module.newNode(CG::Node::Kind::Call, type);
    call->callee = CG::Node::Callee::Target;
    call->name = name;
    call->in.resize(static_cast<std::size_t>(found->inputNum));
    return call;
}

/// This host has a body for the start phase and one for the output phase; code of the other phases would have nowhere to
/// go, so declaring one is a mistake.
void VektCGCtx::constructCode()
{
    constexpr int START = 0;
    constexpr int OUTPUT = 3;
    BlockInterface& host = hostSide(mBlockInterface);
    declarePhases();
    for (int phase = 0; phase < PHASE_NUM; ++phase)
        if (mIsPhaseEmitted[phase] && phase != START && phase != OUTPUT)
            host.code().output.mistakes.push_back(
                {fmt::format("phase {} was declared; this host generates the phases start (0) and output (3)", phase),
                 CG::SourceLoc::here()});
    const auto run = [&](int phase, CG::Cfg& body, void (VektCGCtx::*emit)()) {
        if (!mIsPhaseEmitted[phase])
            return;
        mCfg = &body;
        host.setCurrent(body);
        (this->*emit)();
    };
    run(START, host.code().start, &VektCGCtx::start);
    run(OUTPUT, host.code().output, &VektCGCtx::output);
}

}  // namespace VektCG

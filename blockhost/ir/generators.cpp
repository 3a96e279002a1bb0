// Library functions: what host/codegen_generators.h declares.
#include "model.h"

#include <fmt/format.h>

#include <algorithm>

namespace DSPCG {

using CG::Node;
using CG::Var;

// ---- ConstructionFacade

ConstructionFacade::ConstructionFacade(CG::Fcn* fcn) noexcept : CG::StatementBuilder(&fcn->cfg), mFcn(fcn) {}

IdxVal ConstructionFacade::localIdxVar(const char* name, const char* use, CG::SourceLoc loc)
{
    return createLocal(name, CG::int32T(), 0, use, loc);
}

NumVal ConstructionFacade::localNumVar(const char* name, const CG::Type* type, const char* use, CG::SourceLoc loc)
{
    return createLocal(name, type, 0, use, loc);
}

NumVal ConstructionFacade::getInputNumRef(int idx)
{
    if (idx < 0 || static_cast<std::size_t>(idx) >= mFcn->inputs.size())
        return mCfg->module.invalid(fmt::format("input {} of {}, which has {}", idx, mFcn->name, mFcn->inputs.size()));
    Var* const var = mFcn->inputs[static_cast<std::size_t>(idx)];
    Node* const node = mCfg->module.newNode(Node::Kind::Variable, var->type);
    node->var = var;
    return node;
}

IdxVal ConstructionFacade::getInputIdxRef(int idx)
{
    return getInputNumRef(idx);
}

void ConstructionFacade::callOutlineNumVal(LibGenerator& generator, const CG::Expr* arguments, int num, CG::SourceLoc loc)
{
    Node* const call = CG::cg_node_create_fcn_call_with_aux_in(generator.findOrCreateFcn());
    for (int i = 0; i < num; ++i)
        CG::cg_node_set_in_data(call, i + 1, arguments[i].node());
    AppendStatement(call, loc);
}

void ConstructionFacade::describe(const char* purpose, const char* generator)
{
    mFcn->purpose = purpose;
    mFcn->generator = generator;
}

void ConstructionFacade::describeInput(int idx, const char* text)
{
    const auto position = static_cast<std::size_t>(idx);
    if (position >= mFcn->inputTexts.size())
        mFcn->inputTexts.resize(position + 1);
    mFcn->inputTexts[position] = text;
}

// ---- LibGenerator

LibGenerator::~LibGenerator() = default;

UtilityFcnScope LibGenerator::getDefaultUtilityFcnScope() const noexcept { return UtilityFcnScope(); }
void LibGenerator::setDefaultUtilityFcnScope(UtilityFcnScope) noexcept {}
UtilityFcnScope LibGenerator::getUtilityFcnScope() const noexcept { return mScope; }
UtilityFcnPostProcessor* LibGenerator::getUtilityFcnPostProcessor() const noexcept { return nullptr; }
void LibGenerator::setFcnName(const char*) noexcept {}
void LibGenerator::setInput(int, const CG::Type*) noexcept {}
void LibGenerator::setInput(int, const char*) noexcept {}
void LibGenerator::setOutput(int, const CG::Type*) noexcept {}
void LibGenerator::setOutput(int, const char*) noexcept {}

/// A function is listed once its body is complete, after those that its body asked for. Another block of the model that asks
/// for it describes its body again, to be compared: one name must mean one function.
CG::Fcn* LibGenerator::findOrCreateFcn()
{
    CG::Module& module = mOwner->module;
    const std::string name = fcnName();
    CG::Fcn* const known = module.find(name);
    if (known != nullptr && known->blockNum == module.blockNum)
        return known;
    if (std::find(module.beingBuilt.begin(), module.beingBuilt.end(), name) != module.beingBuilt.end()) {
        mOwner->mistakes.push_back({fmt::format("{} asks for itself; recursion is not generated", name), CG::SourceLoc::here()});
        return nullptr;
    }
    module.beingBuilt.push_back(name);
    auto fcn = std::make_unique<CG::Fcn>(module, name);
    fcn->blockNum = module.blockNum;
    for (int i = 0; i < getNumInputs(); ++i)
        fcn->inputs.push_back(module.newVar(getInputName(i), Var::Storage::FcnInput, getInputType(i), 0, ""));
    ConstructionFacade facade(fcn.get());
    constructBody(facade);
    module.beingBuilt.pop_back();
    if (known == nullptr) {
        module.fcns.push_back(std::move(fcn));
        return module.fcns.back().get();
    }
    known->blockNum = module.blockNum;
    if (blockhost::ir::dump(*known) != blockhost::ir::dump(*fcn))
        mOwner->mistakes.push_back({fmt::format("{} does something else here than for an earlier block of the model; generate the "
                                                "blocks as models of their own", name), CG::SourceLoc::here()});
    return known;
}

}  // namespace DSPCG

#include "block_interface.h"

#include <algorithm>

namespace blockhost::ir {

namespace {

template <typename Items>
auto* itemAt(Items& items, int idx) noexcept
{
    const bool isInRange = idx >= 0 && static_cast<std::size_t>(idx) < items.size();
    return isInRange ? &items[static_cast<std::size_t>(idx)] : nullptr;
}

/// Adds the texts of a list that ends with null, each unless it is there already.
void addEach(std::vector<std::string>& texts, const char* const* list)
{
    for (; list != nullptr && *list != nullptr; ++list)
        if (std::find(texts.begin(), texts.end(), *list) == texts.end())
            texts.emplace_back(*list);
}

}  // namespace

CG::Node* BlockInterface::reference(CG::Var* var)
{
    CG::Node* const node = mModule.newNode(CG::Node::Kind::Variable,
                                           var->width > 0 ? CG::staticUnknownMatrixT(var->type) : var->type);
    node->var = var;
    return node;
}

CG::Node* BlockInterface::CreateConst(std::int32_t value)
{
    return CG::constant(mModule, CG::int32T(), value);
}

CG::Node* BlockInterface::GetCurrentInputDim(int port, int dim)
{
    const PortInfo* const info = itemAt(mCode.inputs, port);
    if (info == nullptr || dim < 0 || dim >= info->dims.num())
        return nullptr;
    if (!info->isVariable)
        return CreateConst(info->dims.size(dim));
    CG::Node* const node = mModule.newNode(CG::Node::Kind::InputDim, CG::int32T());
    node->port = port;
    node->dim = dim;
    node->var = info->var;
    return node;
}

void BlockInterface::SetCurrentOutputDim(int port, int dim, CG::Node* size)
{
    mCode.sizeRules.root.stmts.emplace_back();
    CG::Stmt& stmt = mCode.sizeRules.root.stmts.back();
    stmt.kind = CG::Stmt::Kind::SetOutputDim;
    stmt.port = port;
    stmt.dim = dim;
    stmt.value = size != nullptr ? size : mModule.invalid("a size is missing");
}

CG::Node* BlockInterface::getInputRef(int port)
{
    const PortInfo* const info = itemAt(mCode.inputs, port);
    return info != nullptr ? reference(info->var) : nullptr;
}

CG::Node* BlockInterface::getOutputVar(int port)
{
    const PortInfo* const info = itemAt(mCode.outputs, port);
    return info != nullptr ? reference(info->var) : nullptr;
}

CG::Node* BlockInterface::getParamRef(int rtpIdx)
{
    const ParamInfo* const info = itemAt(mCode.params, rtpIdx);
    return info != nullptr ? reference(info->var) : nullptr;
}

CG::Node* BlockInterface::getDWorkRef(int idx)
{
    CG::Var* const* const var = itemAt(mCode.workVectors, idx);
    return var != nullptr ? reference(*var) : nullptr;
}

void BlockInterface::AddHeader(const char* header)
{
    const char* const list[] = {header, nullptr};
    addEach(mModule.headers, list);
}

/// The handle is the module itself, as the block sees it.
OrbSimCommon::BuildInfo* BlockInterface::GetBuildInfo()
{
    return reinterpret_cast<OrbSimCommon::BuildInfo*>(&mModule);
}

void BlockInterface::insertSizeEqCheck1D(CG::Node* size1, CG::Node* size2, CG::SourceLoc loc)
{
    mCurrent->innermost().stmts.emplace_back();
    CG::Stmt& stmt = mCurrent->innermost().stmts.back();
    stmt.kind = CG::Stmt::Kind::SizeCheck;
    stmt.place = loc;
    stmt.value = size1 != nullptr ? size1 : mModule.invalid("a size is missing");
    stmt.condition = size2 != nullptr ? size2 : mModule.invalid("a size is missing");
}

}  // namespace blockhost::ir

namespace OrbSimCommon {

void modifyBuildInfo(BuildInfo* info, const char* group, const char* module, const char* const* headers,
                     const char* const* sources, const char* const*, const char* const*) noexcept
{
    auto& modules = reinterpret_cast<CG::Module*>(info)->buildModules;
    auto known = std::find_if(modules.begin(), modules.end(), [&](const CG::BuildModule& candidate) {
        return candidate.group == group && candidate.name == module;
    });
    if (known == modules.end())
        known = modules.insert(modules.end(), {group, module, {}, {}});
    blockhost::ir::addEach(known->headers, headers);
    blockhost::ir::addEach(known->sources, sources);
}

}  // namespace OrbSimCommon

#include "stack_need.h"

#include "c_type.h"

#include <algorithm>
#include <map>

namespace blockhost::c99 {

namespace {

/// Bytes of a pointer or of a scalar with its padding.
constexpr std::size_t WORD = 8;

std::size_t localsOf(const CG::Block& block, const BodyUsage& usage)
{
    std::size_t byteNum = 0;
    for (const CG::Var* const var : block.locals)
        if (usage.isNamed(var))
            byteNum += var->width > 0 ? (static_cast<std::size_t>(var->width) * byteNumOf(var->type) + WORD - 1) / WORD * WORD
                                      : std::max(WORD, byteNumOf(var->type));
    for (const CG::Stmt& stmt : block.stmts) {
        if (usage.isDropped(stmt))
            continue;
        if (stmt.body)
            byteNum += localsOf(*stmt.body, usage);
        if (stmt.elseBody)
            byteNum += localsOf(*stmt.elseBody, usage);
    }
    return byteNum;
}

}  // namespace

std::size_t stackNeed(const CG::Module& module, const std::vector<const CG::Block*>& bodies, const BodyUsage& usage,
                      std::size_t scalarNum)
{
    std::map<const CG::Fcn*, std::size_t> needs;         // a function's callees stand before it
    const auto deepest = [&](const BodyUsage& caller) {
        std::size_t need = caller.externals().empty() ? 0 : RUNTIME_STACK;
        for (const auto& [fcn, fcnNeed] : needs)
            need = caller.isCalled(fcn) ? std::max(need, fcnNeed) : need;
        return need;
    };
    for (const auto& fcn : module.fcns) {
        const BodyUsage fcnUsage(fcn->cfg.root);
        needs[fcn.get()] = localsOf(fcn->cfg.root, fcnUsage) + fcn->inputs.size() * WORD + FRAME_ALLOWANCE + deepest(fcnUsage);
    }
    std::size_t need = scalarNum * WORD + FRAME_ALLOWANCE + deepest(usage);
    for (const CG::Block* const body : bodies)
        need += localsOf(*body, usage);
    return need;
}

}  // namespace blockhost::c99

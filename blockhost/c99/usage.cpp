#include "usage.h"

#include "../ir/known_fcns.h"

#include <algorithm>

namespace blockhost::c99 {

using CG::Node;
using CG::Stmt;
using CG::Var;

bool hasSideEffects(const Node* node)
{
    if (node->kind == Node::Kind::Call && ir::isCallWithSideEffects(*node))
        return true;
    return std::any_of(node->in.begin(), node->in.end(), hasSideEffects);
}

const Var* targetVar(const Node* target)
{
    while (target->kind == Node::Kind::Index || target->kind == Node::Kind::Real || target->kind == Node::Kind::Imag)
        target = target->in[0];
    return target->kind == Node::Kind::Variable ? target->var : nullptr;
}

const Var* passedByAddress(const Node* call, std::size_t argumentIdx)
{
    const Node* const argument = call->in[argumentIdx];
    if (argument->kind != Node::Kind::Index && argument->kind != Node::Kind::Variable)
        return nullptr;
    return ir::isPointerArgument(*call, argumentIdx) ? targetVar(argument) : nullptr;
}

BodyUsage::BodyUsage(const CG::Block& root) : BodyUsage(std::vector<const CG::Block*>{&root}) {}

BodyUsage::BodyUsage(std::vector<const CG::Block*> roots)
{
    for (bool isStable = false; !isStable;) {
        mReadNow.clear();
        mNamed.clear();
        mSizesRead.clear();
        mCalled.clear();
        mExternals.clear();
        for (const CG::Block* const root : roots)
            visit(*root);
        isStable = !mIsFirstRound && mReadNow == mRead;
        mRead.swap(mReadNow);
        mIsFirstRound = false;
    }
}

bool BodyUsage::isUnread(const Var* var) const
{
    return !mIsFirstRound && var != nullptr && var->storage == Var::Storage::Local && mRead.count(var) == 0;
}

bool BodyUsage::isAllDropped(const CG::Block& block) const
{
    return std::all_of(block.stmts.begin(), block.stmts.end(),
                       [this](const Stmt& stmt) { return stmt.kind == Stmt::Kind::Comment || isDropped(stmt); });
}

bool BodyUsage::isDropped(const Stmt& stmt) const
{
    switch (stmt.kind) {
    case Stmt::Kind::Assign:
        return isUnread(targetVar(stmt.target)) && !hasSideEffects(stmt.value) && !hasSideEffects(stmt.target);
    case Stmt::Kind::Increment:
    case Stmt::Kind::Decrement:
        return isUnread(targetVar(stmt.target)) && !hasSideEffects(stmt.target);
    case Stmt::Kind::If:
        return !hasSideEffects(stmt.condition) && isAllDropped(*stmt.body)
               && (!stmt.elseBody || isAllDropped(*stmt.elseBody));
    case Stmt::Kind::Scope:
        return isAllDropped(*stmt.body);
    default:
        return false;
    }
}

void BodyUsage::visit(const CG::Block& block)
{
    for (const Stmt& stmt : block.stmts)
        if (!isDropped(stmt))
            visit(stmt);
}

void BodyUsage::visit(const Stmt& stmt)
{
    switch (stmt.kind) {
    case Stmt::Kind::Assign:
        visitTarget(stmt.target);
        visit(stmt.value, targetVar(stmt.target));       // x = x + 1 does not make x useful
        if (hasSideEffects(stmt.value) || hasSideEffects(stmt.target))
            mReadNow.insert(targetVar(stmt.target));     // kept for the call's sake
        break;
    case Stmt::Kind::Increment:
    case Stmt::Kind::Decrement:
        visitTarget(stmt.target);
        break;
    case Stmt::Kind::For:
    case Stmt::Kind::CFor:
        visit(stmt.target);
        [[fallthrough]];
    default:
        if (stmt.value != nullptr)
            visit(stmt.value);
        if (stmt.condition != nullptr)
            visit(stmt.condition);
        break;
    }
    if (stmt.body)
        visit(*stmt.body);
    if (stmt.elseBody)
        visit(*stmt.elseBody);
}

/// The variable is named, but only what its indices read is read.
void BodyUsage::visitTarget(const Node* target)
{
    if (target->kind == Node::Kind::Variable) {
        mNamed.insert(target->var);
        return;
    }
    visitTarget(target->in[0]);
    if (target->kind == Node::Kind::Index)
        visit(target->in[1]);
}

void BodyUsage::visit(const Node* node, const Var* except)
{
    if (node->kind == Node::Kind::Variable) {
        mNamed.insert(node->var);
        if (node->var != except)
            mReadNow.insert(node->var);
    }
    if (node->kind == Node::Kind::InputDim)
        mSizesRead.insert(node->var);
    if (node->kind == Node::Kind::Call && node->fcn != nullptr)
        mCalled.insert(node->fcn);
    if (node->kind == Node::Kind::Call && node->callee == Node::Callee::External)
        mExternals.insert(node->name);
    for (const Node* const operand : node->in)
        visit(operand, except);
}

}  // namespace blockhost::c99

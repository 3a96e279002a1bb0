#include "definite.h"

#include "c_type.h"

#include "../ir/known_fcns.h"

#include <algorithm>

namespace blockhost::c99 {

using CG::Node;
using CG::Stmt;
using CG::Var;

namespace {

enum class First { Nothing, Read, Written };

class Search {
public:
    Search(const Var* var, const BodyUsage& usage) : mVar(var), mUsage(usage), mIsArray(var->width > 0) {}

    First in(const CG::Block& block) const
    {
        for (const Stmt& stmt : block.stmts) {
            const First first = mUsage.isDropped(stmt) ? First::Nothing : in(stmt);
            if (first != First::Nothing)
                return first;
        }
        return First::Nothing;
    }

private:
    First in(const Stmt& stmt) const;
    First in(const Node* node) const;
    First inLoop(const Stmt& stmt) const;
    First inBranches(const Stmt& stmt) const;
    First inTarget(const Node* target) const;
    First inAll(std::initializer_list<const Node*> nodes) const;

    const Var* mVar;
    const BodyUsage& mUsage;
    bool mIsArray;
};

First Search::inAll(std::initializer_list<const Node*> nodes) const
{
    for (const Node* const node : nodes)
        if (node != nullptr && in(node) != First::Nothing)
            return in(node);
    return First::Nothing;
}

First Search::in(const Node* node) const
{
    if (node->kind == Node::Kind::Variable)
        return node->var == mVar ? First::Read : First::Nothing;
    First result = First::Nothing;
    for (std::size_t i = 0; i < node->in.size() && result != First::Read; ++i) {
        const bool isCall = node->kind == Node::Kind::Call;
        const bool isFilled = isCall && mIsArray && passedByAddress(node, i) == mVar
                              && !isReadOnlyTarget(ir::inputTypesOf(*node)[i]);
        const First first = isFilled ? First::Written : in(node->in[i]);
        result = first != First::Nothing ? first : result;
    }
    return result;
}

/// What an assignment's target reads and writes.
First Search::inTarget(const Node* target) const
{
    if (target->kind == Node::Kind::Variable)
        return target->var == mVar ? First::Written : First::Nothing;
    if (target->kind == Node::Kind::Index && in(target->in[1]) != First::Nothing)
        return First::Read;
    const First first = inTarget(target->in[0]);
    const bool isPart = target->kind == Node::Kind::Real || target->kind == Node::Kind::Imag;
    return first == First::Written && isPart && !mIsArray ? First::Read : first;
}

First Search::inLoop(const Stmt& stmt) const
{
    const bool isCounted = stmt.kind != Stmt::Kind::While;
    if (stmt.value != nullptr && in(stmt.value) != First::Nothing)
        return First::Read;
    if (isCounted && inTarget(stmt.target) != First::Nothing)
        return inTarget(stmt.target);
    if (stmt.condition != nullptr && in(stmt.condition) != First::Nothing)
        return First::Read;
    const First first = in(*stmt.body);
    return first == First::Written && !(mIsArray && isCounted) ? First::Nothing : first;
}

First Search::inBranches(const Stmt& stmt) const
{
    if (in(stmt.condition) != First::Nothing)
        return First::Read;
    const First first = in(*stmt.body);
    const First second = stmt.elseBody ? in(*stmt.elseBody) : First::Nothing;
    if (first == First::Read || second == First::Read)
        return First::Read;
    return first == second ? first : First::Nothing;
}

First Search::in(const Stmt& stmt) const
{
    switch (stmt.kind) {
    case Stmt::Kind::Comment: return First::Nothing;
    case Stmt::Kind::Assign: {
        const First value = in(stmt.value);
        return value != First::Nothing ? value : inTarget(stmt.target);
    }
    case Stmt::Kind::Increment:
    case Stmt::Kind::Decrement: return in(stmt.target);
    case Stmt::Kind::For:
    case Stmt::Kind::CFor:
    case Stmt::Kind::While: return inLoop(stmt);
    case Stmt::Kind::If: return inBranches(stmt);
    case Stmt::Kind::Scope: return in(*stmt.body);
    case Stmt::Kind::Call:
    case Stmt::Kind::SizeCheck:
    case Stmt::Kind::SetOutputDim: return inAll({stmt.value, stmt.condition});
    }
    return First::Nothing;
}

}  // namespace

bool isReadBeforeWritten(const Var* var, const CG::Block& block, const BodyUsage& usage)
{
    return Search(var, usage).in(block) == First::Read;
}

}  // namespace blockhost::c99

// BodyUsage: what a body of the tree does with its variables, and which of its statements do nothing.
#pragma once

#include "../ir/tree.h"

#include <set>
#include <string>
#include <vector>

namespace blockhost::c99 {

/// True for an expression that does more than give a value.
bool hasSideEffects(const CG::Node* node);
/// The variable that an assignment's target lies in: of a, a[i], a.re; null when there is none.
const CG::Var* targetVar(const CG::Node* target);
/// The variable whose address an argument of a call passes; null for an argument passed by value.
const CG::Var* passedByAddress(const CG::Node* call, std::size_t argumentIdx);

/// Locals that are only assigned, and assignments to them, are left out of generated code; so is an if or a scope in which
/// nothing remains. Found repeatedly, until nothing more falls away.
class BodyUsage {
public:
    explicit BodyUsage(const CG::Block& root);
    /// Of several bodies that run one after the other in one function.
    explicit BodyUsage(std::vector<const CG::Block*> roots);

    bool isDropped(const CG::Stmt& stmt) const;
    /// Whether statements remain that name the variable.
    bool isNamed(const CG::Var* var) const { return mNamed.count(var) != 0; }
    /// Whether the current size of an input port's signal is read.
    bool isSizeRead(const CG::Var* var) const { return mSizesRead.count(var) != 0; }
    /// Library functions that the remaining statements call.
    bool isCalled(const CG::Fcn* fcn) const { return mCalled.count(fcn) != 0; }
    /// Functions that they call and that the generated code does not define.
    const std::set<std::string>& externals() const noexcept { return mExternals; }

private:
    void visit(const CG::Block& block);
    void visit(const CG::Stmt& stmt);
    void visit(const CG::Node* node, const CG::Var* except = nullptr);
    void visitTarget(const CG::Node* target);
    bool isAllDropped(const CG::Block& block) const;
    bool isUnread(const CG::Var* var) const;

    bool mIsFirstRound = true;           ///< nothing is known yet: every local counts as read
    std::set<const CG::Var*> mRead;      ///< by the statements that the round before left
    std::set<const CG::Var*> mReadNow;
    std::set<const CG::Var*> mNamed;
    std::set<const CG::Var*> mSizesRead;
    std::set<const CG::Fcn*> mCalled;
    std::set<std::string> mExternals;
};

}  // namespace blockhost::c99

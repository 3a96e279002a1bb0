// Parts of the verification of a tree.
#pragma once

#include "model.h"

#include <functional>
#include <set>

namespace blockhost::ir {

/// Takes a violation, without the place where it is.
using Report = std::function<void(const std::string& text)>;

/// Rules of an expression and of the expressions in it: nodes that could be made, operands of the types that operators
/// take, arguments of calls.
///
/// @param seen  calls with side effects met so far; each may stand in the tree once
void verifyExpression(const CG::Node* node, std::set<const CG::Node*>& seen, const Report& report);

/// As verifyExpression, for the call of a statement whose result nobody takes.
void verifyCallStatement(const CG::Node* node, std::set<const CG::Node*>& seen, const Report& report);

/// An expression and the expressions in it, in the order of the text.
void visitNodes(const CG::Node* node, const std::function<void(const CG::Node&)>& visit);

}  // namespace blockhost::ir

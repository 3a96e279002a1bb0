// Expressions of the tree as C text. The tree's association is kept; parentheses stand where precedence or a warning asks.
#pragma once

#include "unit.h"

namespace blockhost::c99 {

/// @param unit  knows the names of every variable in the expression; learns what the text uses
std::string expressionText(const CG::Node* node, Unit& unit);

}  // namespace blockhost::c99

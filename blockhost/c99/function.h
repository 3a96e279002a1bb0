// Library functions of a module in C, and what the step needs of the stack.
#pragma once

#include "unit.h"
#include "usage.h"

#include <vector>

namespace blockhost::c99 {

/// Library functions that bodies reach, directly or through others; in the module's order, callees first.
std::vector<const CG::Fcn*> reachedFcns(const CG::Module& module, const std::vector<const CG::Block*>& bodies);

/// "static void name(const double* a, uint32_t n)" without the storage class.
std::string prototype(const CG::Fcn& fcn, Unit& unit);

/// A function with its comment.
///
/// @param storage  "static " or empty; the function's name stands in the unit
Lines functionText(const CG::Fcn& fcn, const std::string& storage, Unit& unit);

}  // namespace blockhost::c99

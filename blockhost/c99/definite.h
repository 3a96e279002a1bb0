// Definite assignment: which locals a C compiler would call perhaps uninitialized.
#pragma once

#include "usage.h"

namespace blockhost::c99 {

/// True unless every way through the block writes the variable before it reads it.
///
/// @param var  local of the block. A scalar counts as written by an assignment; an array already by one of an element, by
///             a counted loop over elements, and by a call that is given its address
bool isReadBeforeWritten(const CG::Var* var, const CG::Block& block, const BodyUsage& usage);

}  // namespace blockhost::c99

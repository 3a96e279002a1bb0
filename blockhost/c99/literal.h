// Constants of generated C.
#pragma once

#include "../estimator.h"
#include "../ir/type.h"

#include <string>

namespace blockhost::c99 {

/// A value of a scalar type as C text: the shortest that reads back to the same value, whatever the locale; with a point or
/// an exponent, F for single, U for unsigned, the sign of zero kept. Infinity and NaN by their names in <math.h>.
ESTTFORM_API std::string literalText(const CG::Type* type, double value);

/// True for values whose text needs <math.h>.
bool needsMathHeader(const CG::Type* type, double value);

}  // namespace blockhost::c99

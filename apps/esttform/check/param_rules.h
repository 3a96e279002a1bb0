// What the documentation says about the dialog values: which are admitted and which a running block takes over.
#pragma once

#include "blockhost/estimator.h"

#include <array>

namespace esttform::check {

/// Odd values for any dialog parameter.
extern const std::array<double, 22> ODD_VALUES;

/// A value as a flag: truncated, of the integer the low 8 bits; what no 64-bit integer holds is clear.
bool isFlagSet(double value) noexcept;

/// True when the values put parameter idx to use, so that it is checked, and tunable if it is a number.
bool isInUse(int idx, const Params& params) noexcept;

/// True when mdlCheckParameters is to admit parameter idx among the values: what is not in use may be anything.
bool isAdmitted(int idx, const Params& params) noexcept;

/// True when parameter idx may change between steps.
bool isTunable(int idx, const Params& params) noexcept;

}  // namespace esttform::check

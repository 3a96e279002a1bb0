// The set-up of a block with two point inputs, shared by simulation and code generation.
#pragma once

#include "block.h"
#include "estimator.h"

namespace blockhost {

/// Reads a flag as the block does: truncated, of the 64-bit integer the low 8 bits.
bool isFlagSet(double value) noexcept;

/// Layout of the points that the dialog values ask for.
esttform::Layout layoutOf(const esttform::Params& params) noexcept;

/// Size of a point input of ptsNum points.
Dims sizeOfPoints(esttform::Layout layout, std::int32_t ptsNum) noexcept;

/// Everything that is decided about the block before its first callback.
///
/// @param maxPtsNum       point pairs of a step; with variable size, the bound
/// @param blockPath       as Options::blockPath
/// @throws Error  Usage: a data type or a number of pairs that no block takes; Load: the block is not found
ESTTFORM_API BlockSetup pointBlockSetup(const esttform::Params& params, esttform::DataType pointsType, std::int32_t maxPtsNum,
                                        bool isVariableSize, const std::string& blockPath);

}  // namespace blockhost

// Why a step found no transformation, in plain words and as far as a caller of the block can see.
#pragma once

#include "matches/points.h"
#include "options/block_settings.h"

#include <string>
#include <vector>

namespace esttform::app {

/// One sentence without a full stop: what is wrong with the pairs, or else what to try.
///
/// @param pairs  of a step whose TForm is all zero
std::string reasonNotFound(const std::vector<Pair>& pairs, const BlockSetup& setup,
                           OptionSpelling spelling = commandLineOption);

}  // namespace esttform::app

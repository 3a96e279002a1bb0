// Why a step found no transformation, in plain words and as far as a caller of the block can see.
#pragma once

#include "matches/match_reader.h"
#include "options/block_settings.h"

#include <string>

namespace esttform::app {

/// One sentence without a full stop: what is wrong with the pairs, or else what to try.
///
/// @param frame  the pairs of a step whose TForm is all zero
std::string reasonNotFound(const MatchFrame& frame, const BlockSetup& setup);

}  // namespace esttform::app

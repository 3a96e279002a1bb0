// Opens the block for an input and runs steps of it: what 'estimate' and 'trace' have in common.
#pragma once

#include "estimate/reopening.h"
#include "matches/frame_source.h"
#include "options/block_settings.h"

#include <functional>
#include <string_view>

namespace esttform::app {

/// Opens the block for the steps of a source.
///
/// @param trace  receives the calls between host and block; empty: no trace
/// @throws Error  the block cannot be loaded or refuses the set-up
Estimator openEstimator(const BlockSetup& setup, const FrameSource& source,
                        std::function<void(std::string_view)> trace = {});

/// One step over a frame's pairs, with more room than before if it has more. The result stays valid until the next step.
///
/// @param trace  as of openEstimator
const StepResult& runStep(Estimator& estimator, const BlockSetup& setup, const MatchFrame& frame,
                          std::function<void(std::string_view)> trace = {});

}  // namespace esttform::app

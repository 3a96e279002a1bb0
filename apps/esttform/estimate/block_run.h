// Opens the block for an input and runs steps of it: what 'estimate' and 'trace' have in common.
#pragma once

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

/// Room for a step of ptsNum pairs, more than the room there is: twice that, or ptsNum, within what the block can count.
std::int32_t grownPtsNum(std::int32_t room, std::int32_t ptsNum) noexcept;

/// Makes room for a step with more pairs than any before it: opens the block again, so that a stream has the results of a file.
void growEstimator(Estimator& estimator, const BlockSetup& setup, std::int32_t ptsNum,
                   std::function<void(std::string_view)> trace = {});

/// Opens the block again for steps of up to maxPtsNum pairs, whatever the number now. The random numbers go on as if it had
/// been open all the time.
void reopenEstimator(Estimator& estimator, const BlockSetup& setup, std::int32_t maxPtsNum,
                     std::function<void(std::string_view)> trace = {});

/// One step over a frame's pairs. The result stays valid until the next step.
const StepResult& runStep(Estimator& estimator, const MatchFrame& frame);

}  // namespace esttform::app

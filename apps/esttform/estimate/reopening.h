// Opens a running block again, with more room, without a trace in the results.
#pragma once

#include "options/block_settings.h"

#include <functional>
#include <string_view>

namespace esttform::app {

/// Room for a step of ptsNum pairs, more than the room there is: twice that, or ptsNum, within what the block can count.
std::int32_t grownPtsNum(std::int32_t room, std::int32_t ptsNum) noexcept;

/// Makes room for a step with more pairs than any before it: opens the block again, so that a stream has the results of a file.
void growEstimator(Estimator& estimator, const BlockSetup& setup, std::int32_t ptsNum,
                   std::function<void(std::string_view)> trace = {});

/// Opens the block again for steps of up to maxPtsNum pairs, whatever the number now. The random numbers go on as if it had
/// been open all the time.
void reopenEstimator(Estimator& estimator, const BlockSetup& setup, std::int32_t maxPtsNum,
                     std::function<void(std::string_view)> trace = {});

}  // namespace esttform::app

// What commands that draw have in common: the scene of a step, and images that fit its points.
#pragma once

#include "matches/match_reader.h"
#include "options/block_settings.h"
#include "plot/plot.h"

#include <memory>
#include <string>
#include <vector>

namespace esttform::app {

/// The scene of a step, without images.
PlotScene sceneOf(const StepLabel& label, const std::vector<Pair>& pairs, const StepResult& result, Layout layout,
                  const BlockSetup& setup);

/// What is odd about an image: "12 of 123 first points lie outside the picture of 324 x 223 pixels; ..."; empty if all is well.
///
/// @param setIdx  0: the first points lie on it, 1: the second
std::string pictureWarning(const Picture& picture, const std::vector<Pair>& pairs, int setIdx);

}  // namespace esttform::app

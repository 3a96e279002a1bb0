// Picture of a trajectory: x, y, angle and scale over the frames, before and after smoothing, bridged frames marked.
#pragma once

#include "plot/plot.h"
#include "stabilise/trajectory_writer.h"

#include <string>

namespace esttform::app {

/// Draws the four values one below the other. The path itself is thin, the smooth one thick, so that they differ without
/// colour, too.
///
/// @param inputName  of the matches, for the title
/// @return the file's bytes
/// @throws Failure (OurFault) if the drawing library fails
std::string renderTrajectory(const StabilisedPath& stabilised, const std::string& inputName, PlotFormat format);

}  // namespace esttform::app

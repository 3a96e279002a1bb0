// Pictures of a step: both point sets in one frame, lines between the points of a pair, the transformation as an outline.
// Inliers and outliers differ by marker and line style as well as by colour, in colours that colour-blind people tell apart.
#pragma once

#include "point_map.h"
#include "points.h"
#include "result_writer.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace esttform::app {

enum class PlotFormat { Svg, Png, Pdf };

/// The format that a file name's extension stands for.
///
/// @throws Failure  another extension
PlotFormat plotFormatOf(const std::string& path);

/// What is drawn.
struct PlotScene {
    std::vector<Pair> pairs;
    std::vector<std::uint8_t> inliers;  ///< 0 or 1 per pair; empty without inlier output
    std::optional<PointMap> map;        ///< empty if no transformation was found
    StepLabel step;
};

/// Draws a step, coordinates in point units with y down.
///
/// Of many pairs only some lines are drawn, which the legend says; every point is. Pairs that are not finite or far from
/// all others are left out and counted.
///
/// @param inputName  of the matches, for the title
/// @param typeText   "similarity", "affine" or "projective"
/// @return the file's bytes
/// @throws Failure (OurFault) if the drawing library fails
std::string renderPlot(const PlotScene& scene, const std::string& inputName, const std::string& typeText, PlotFormat format);

}  // namespace esttform::app

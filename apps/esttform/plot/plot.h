// Pictures of a step: the matches, over the images where given, with the transformation as an outline; below them the
// residual vectors and the histogram of the distances with the threshold.
// Inliers and outliers differ by marker and line style as well as by colour, in colours that colour-blind people tell apart.
#pragma once

#include "estimate/result_writer.h"
#include "geometry/point_map.h"
#include "matches/points.h"
#include "plot/picture.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace esttform::app {

enum class PlotFormat { Svg, Png, Pdf };

/// ".png" for "a.PNG"; empty without an extension.
std::string extensionOf(const std::string& path);

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
    std::optional<double> threshold;    ///< squared, as the block takes it; empty if the inliers do not follow from one
    std::shared_ptr<const Picture> image1, image2;   ///< null if not given
};

/// Draws a step, coordinates in pixels with y down: with both images side by side, else in one frame.
///
/// Of many pairs only some lines and residual vectors are drawn, which the legend says; every point is. Pairs that are not
/// finite or far from all others are left out and counted. Images are grey and faded, so that marks of every colour show.
///
/// @param inputName  of the matches, for the title; empty: none
/// @param typeText   "similarity", "affine" or "projective"
/// @return the file's bytes
/// @throws Failure (OurFault) if the drawing library fails
std::string renderPlot(const PlotScene& scene, const std::string& inputName, const std::string& typeText, PlotFormat format);

}  // namespace esttform::app

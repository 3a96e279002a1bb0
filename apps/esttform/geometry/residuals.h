// Residuals: how far the second point of each pair lies from where TForm maps the first one, in pixels.
#pragma once

#include "geometry/point_map.h"
#include "matches/points.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace esttform::app {

/// Where a first point is mapped, and how far from there its partner is.
struct Residual {
    double x = 0.0, y = 0.0;             ///< the first point, mapped
    double dx = 0.0, dy = 0.0;           ///< from there to the second point
    double distance = 0.0;               ///< length of (dx, dy); not finite: the pair has none
    double w = 1.0;                      ///< the mapped point's denominator
};

/// One residual a pair, in their order.
std::vector<Residual> residualsOf(const std::vector<Pair>& pairs, const PointMap& map);

/// Quantiles of the distances of pairs, in pixels.
struct DistanceQuantiles {
    double median = 0.0, ninetyPercent = 0.0, largest = 0.0;
};

/// A distance that is not finite counts as infinite. Empty without residuals.
std::optional<DistanceQuantiles> quantilesOf(const std::vector<Residual>& residuals);

/// Below this a distance is only said to be.
constexpr double SHOWN_MIN_DISTANCE = 1e-3;

/// "0.213 px", "less than 0.001 px".
std::string distanceText(double distance);

/// The distances at which pairs turn from inliers to outliers.
struct ThresholdRange {
    double low = 0.0, high = 0.0;
};

/// The block's threshold, which holds for algebraic distances, in pixels.
///
/// A projective distance is |w| times the one in pixels, so the threshold in pixels differs from place to place: the range
/// over the pairs, with a fiftieth of them left out at either end.
///
/// @param threshold  squared, as the block takes it
ThresholdRange thresholdRange(const std::vector<Residual>& residuals, const std::vector<std::uint8_t>& inliers, double threshold);

}  // namespace esttform::app

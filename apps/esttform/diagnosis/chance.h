// Chance: how many inliers wrong matches would give a transformation, and how likely as many as were found are.
#pragma once

#include "geometry/point_map.h"
#include "matches/points.h"

#include <cstdint>
#include <vector>

namespace esttform::app {

/// Probability that a wrong match counts as an inlier of the map, estimated from the pairs themselves: each first point beside
/// second points of other pairs. A map that crowds points into one place, or a projective one whose denominator is small
/// there, so gets the high probability that it deserves. At least one in the number of trials.
///
/// @param threshold  squared algebraic distance of an inlier
double chanceOfInlier(const std::vector<Pair>& pairs, const PointMap& map, double threshold);

/// Squared algebraic distance of a pair: that of the block, in double precision.
double algebraicDistance(const Pair& pair, const PointMap& map) noexcept;

/// Decimal logarithm of the number of results with as many inliers that unrelated pairs would be expected to give, over all
/// samples of the pairs (an a-contrario test: Moisan and Stival, IJCV 57, 2004).
///
/// @param pairNum     pairs, at least sampleSize
/// @param inlierNum   pairs that agree, the sample included
/// @param sampleSize  pairs that any transformation fits
/// @param chance      probability that a wrong match agrees, in (0, 1]
double log10ChanceResults(std::int64_t pairNum, std::int64_t inlierNum, std::int64_t sampleSize, double chance);

}  // namespace esttform::app

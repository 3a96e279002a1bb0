// Extent: how far points reach, and how many places they are at.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace esttform::app {

using Points = std::vector<std::array<double, 2>>;

/// Standard deviations of points.
struct Extent {
    double narrow = 0.0;                 ///< across their longest direction
    double whole = 0.0;                  ///< from their middle
};

Extent extentOf(Points points);

/// The points with wild ones moved in, so that a few far away do not count as extent: along each axis the range without a
/// twentieth at either end is taken, and what lies beyond it by more than its length is moved to there. Points of a picture
/// stay where they are.
Points withoutWildOnes(Points points);

/// Places that points are at, those nearer than a distance taken for one.
std::int64_t placeNumOf(const Points& points, double distance);

std::array<double, 2> middleOf(const Points& points);

}  // namespace esttform::app

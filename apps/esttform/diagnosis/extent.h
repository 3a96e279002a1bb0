// Extent: how far points reach, and how many places they are at.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace esttform::app {

using Points = std::vector<std::array<double, 2>>;

/// Standard deviations of points.
struct Extent {
    double narrow = 0.0;                 ///< across their longest direction
    double whole = 0.0;                  ///< from their middle
};

Extent extentOf(const Points& points);

/// How many points innerExtentOf leaves out of so many: one, and one more in fifty.
std::size_t outermostNumOf(std::size_t pointNum) noexcept;

/// The extents without the few points that reach farthest, from the line along the longest direction and from the middle: what
/// a transformation rests on when these are wrong matches, which it was drawn through.
Extent innerExtentOf(const Points& points);

/// The points with wild ones moved in, so that a few far away do not count as extent: along each axis the range without a
/// twentieth at either end is taken, and what lies beyond it by more than its length is moved to there. Points of a picture
/// stay where they are.
Points withoutWildOnes(Points points);

/// Places that points are at, those nearer than a distance taken for one.
std::int64_t placeNumOf(const Points& points, double distance);

std::array<double, 2> middleOf(const Points& points);

}  // namespace esttform::app

// The geometry of a picture, free of any drawing library: what part of the plane is shown, outlines, ticks.
#pragma once

#include "geometry/point_map.h"
#include "matches/points.h"

#include <array>
#include <vector>

namespace esttform::app {

using PlotPoint = std::array<double, 2>;
using Polyline = std::vector<PlotPoint>;

/// A rectangle in point units.
struct PlotBox {
    double left = 0.0, top = 0.0, right = 0.0, bottom = 0.0;

    double width() const noexcept { return right - left; }
    double height() const noexcept { return bottom - top; }
    bool contains(double x, double y) const noexcept { return x >= left && x <= right && y >= top && y <= bottom; }
};

/// The box of one set's points that are finite and not far from the others.
///
/// Far is beyond three times the spread between the 2nd and the 98th percentile from either, so that one wild
/// coordinate does not shrink the picture to a dot. Never empty: a single place gets a box of one unit around it.
///
/// @param setIdx  0: first points, 1: second
PlotBox boxOfSet(const std::vector<Pair>& pairs, int setIdx);

/// The smallest box around two.
PlotBox united(const PlotBox& a, const PlotBox& b) noexcept;

/// The box's edges as a closed polyline.
Polyline outlineOf(const PlotBox& box);

/// The image of a box's edges under a map: one closed polyline, or several open ones where the horizon cuts the box.
/// Parts beyond the horizon, seen from the box's centre, are left out.
std::vector<Polyline> carriedOutline(const PlotBox& box, const PointMap& map);

/// What a picture shows: both sets and the outlines, outlines beyond half the sets' extent cut off, and a margin.
PlotBox viewOf(const PlotBox& first, const PlotBox& second, const std::vector<Polyline>& outlines);

/// Round numbers (1, 2 or 5 times a power of ten apart) from lowest to highest, about `wantedNum` of them.
std::vector<double> ticksOf(double lowest, double highest, int wantedNum);

}  // namespace esttform::app

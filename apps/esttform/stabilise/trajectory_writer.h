// The trajectory as CSV: one row a picture.
#pragma once

#include "stabilise/trajectory.h"

#include <complex>
#include <cstdint>
#include <string>
#include <vector>

namespace esttform::app {

/// A stabilised sequence: one more picture than motions between them.
struct StabilisedPath {
    std::int64_t firstFrame = 0;          ///< number of the first picture
    std::complex<double> centre;
    std::vector<bool> isFound;            ///< one a motion; false: bridged
    std::vector<Motion> path, smooth;     ///< one a picture
};

/// Columns: frame; found, 1 if the motion from this picture to the next was found, 0 if it was bridged, empty for the last
/// picture; x, y in pixels, angle in degrees (from x towards y) and scale of the motion from the first picture to this one;
/// xSmooth, ySmooth, angleSmooth, scaleSmooth; c00 to c12, the rows of the correcting transformation: (x', y')' = c * (x, y, 1)'
/// takes a point of this picture to the stabilised one. Numbers read back to the same doubles.
std::string trajectoryCsv(const StabilisedPath& stabilised);

/// An angle in degrees, and the scale.
double degreesOf(const Motion& motion) noexcept;
double scaleOf(const Motion& motion) noexcept;

}  // namespace esttform::app

// Trajectory: the motions from picture to picture, chained into a path, the path smoothed, and what brings each picture onto
// the smooth path.
//
// A motion is a similarity about a centre c, z -> c + a * (z - c) + t with points as complex numbers x + iy; a is kept as its
// logarithm: scale and angle then add up along the path, and an angle beyond half a turn stays what it is.
#pragma once

#include "geometry/point_map.h"

#include <array>
#include <complex>
#include <cstddef>
#include <optional>
#include <vector>

namespace esttform::app {

struct Motion {
    std::complex<double> logA;   ///< real part: logarithm of the scale; imaginary part: angle in radians, from x towards y
    std::complex<double> t;      ///< how far the centre moves, pixels
};

/// What a map does about a centre: where the centre goes, and the similarity nearest to the map's derivative there, by least
/// squares over the derivative's elements. Of a similarity it is all.
///
/// @return empty if the map is not finite there, or mirrors or flattens the picture
std::optional<Motion> motionOf(const PointMap& map, std::complex<double> centre);

/// Fills in the motions that are missing: between two known ones linearly from one to the other; before the first and after
/// the last known one no motion.
std::vector<Motion> bridged(const std::vector<std::optional<Motion>>& motions);

/// The path of motions[k] from picture k to picture k + 1: element k is the motion from the first picture to picture k, so
/// there is one more than motions, and the first is none.
std::vector<Motion> chained(const std::vector<Motion>& motions);

enum class Smoothing { Gaussian, Average };

/// The path with each of its four values replaced by a weighted mean over the pictures up to `radius` away.
///
/// Gaussian: standard deviation radius / 3, as Matsushita et al., Full-frame video stabilization with motion inpainting, IEEE
/// Transactions on Pattern Analysis and Machine Intelligence 28 (2006), weigh neighbours. Average: the moving average.
/// Beyond its ends the path goes on reflected through its end point, so that steady motion stays as it is up to the ends; a
/// radius that is longer than the path is cut to it.
std::vector<Motion> smoothed(const std::vector<Motion>& path, Smoothing smoothing, std::size_t radius);

/// The map from picture k to where its content is on the smooth path: smooth * path^-1 about the centre.
PointMap correctionOf(const Motion& path, const Motion& smooth, std::complex<double> centre);

}  // namespace esttform::app

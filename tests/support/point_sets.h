// Seeded random numbers, and matched point sets with a known transformation: types, layouts, noise, wrong matches.
// Points lie in a square of FIELD units, which fits every element type of the block.
#pragma once

#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include <Eigen/Core>

namespace testsupport {

/// Gives the same numbers for a seed with every library; the standard distributions do not.
class SeededRandom {
public:
    explicit SeededRandom(std::uint32_t seed) : mEngine(seed) {}
    double uniform(double low, double high)
    {
        return low + (high - low) * static_cast<double>(mEngine()) / 4294967296.0;
    }
    std::int32_t below(std::int32_t num) { return static_cast<std::int32_t>(uniform(0.0, num)); }

private:
    std::mt19937 mEngine;
};

constexpr double FIELD = 120.0;

/// What to generate; describe() belongs into every failure text.
struct PointSetSpec {
    std::uint32_t seed = 1;
    int sampleSize = 4;          ///< 2 similarity, 3 affine, 4 projective
    bool isInRows = false;
    int ptsNum = 20;
    double noise = 0.0;          ///< largest error of a coordinate of the second set
    int outlierNum = 0;          ///< this many of the last points have a match anywhere

    std::string describe() const;
};

/// A transformation that keeps the square: a turn by any angle and a shrinking about the centre, with shear for an
/// affine one and with perspective for a projective one. It acts on (a, b, 1)'; its last element is 1.
Eigen::Matrix3d makeTransformation(int sampleSize, SeededRandom& random);
/// The same as a compact transformation, and back.
std::vector<double> compactOf(int sampleSize, const Eigen::Matrix3d& H);
Eigen::Matrix3d matrixOf(int sampleSize, const std::vector<double>& compact);
Eigen::Vector2d mapPoint(const Eigen::Matrix3d& H, const Eigen::Vector2d& point);

/// Element of coordinate a (0) or b (1) of point i: a is y for points in rows, x for points in columns.
inline std::size_t elementOf(bool isInRows, int ptsNum, int i, int coordinate)
{
    return static_cast<std::size_t>(isInRows ? i + (1 - coordinate) * ptsNum : 2 * i + coordinate);
}

/// Point i of n points as (a, b).
template <typename T>
Eigen::Vector2d pointOf(const std::vector<T>& pts, bool isInRows, int n, int i)
{
    const auto at = [&](int coordinate) { return static_cast<double>(pts[elementOf(isInRows, n, i, coordinate)]); };
    return {at(0), at(1)};
}

template <typename Ti>
struct PointSet {
    PointSetSpec spec;
    Eigen::Matrix3d H;           ///< the transformation of (a, b)
    std::vector<Ti> pts1, pts2;  ///< 2*ptsNum elements in the layout
};

/// Points with values that rounding gives.
PointSet<double> makePointSet(const PointSetSpec& spec, double (*rounding)(double));

/// The first four points lie near the corners of the square, in general position, the others anywhere. Coordinates of
/// integer types are rounded, which adds noise of up to half a unit to matches.
template <typename Ti>
PointSet<Ti> makePointSet(const PointSetSpec& spec)
{
    const PointSet<double> set = makePointSet(spec, [](double value) {
        return static_cast<double>(static_cast<Ti>(std::is_integral_v<Ti> ? std::floor(value + 0.5) : value));
    });
    const auto converted = [](const std::vector<double>& pts) {
        std::vector<Ti> result;
        for (const double value : pts) result.push_back(static_cast<Ti>(value));
        return result;
    };
    return {spec, set.H, converted(set.pts1), converted(set.pts2)};
}

}  // namespace testsupport

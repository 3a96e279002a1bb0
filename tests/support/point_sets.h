// Seeded random numbers, and matched point sets with a known transformation: types, layouts, noise, wrong matches.
// Points lie in a square of FIELD units, which fits every element type of the block.
#pragma once

#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include <Eigen/Dense>

namespace testsupport {

/// Gives the same numbers for a seed with every library; the standard distributions do not.
class SeededRandom {
public:
    explicit SeededRandom(std::uint32_t seed) : mEngine(seed) {}
    double uniform(double low, double high) { return low + (high - low) * static_cast<double>(mEngine()) / 4294967296.0; }
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

    std::string describe() const
    {
        return "seed " + std::to_string(seed) + ", sampleSize " + std::to_string(sampleSize) +
               (isInRows ? ", rows, " : ", columns, ") + std::to_string(ptsNum) + " points";
    }
};

/// A compact transformation of (a, b) as a 3-by-3 matrix that acts on (a, b, 1)'.
template <typename T>
Eigen::Matrix3d matrixOf(int sampleSize, const T* compact)
{
    const auto c = [compact](int i) { return static_cast<double>(compact[i]); };
    Eigen::Matrix3d H = Eigen::Matrix3d::Identity();
    if (sampleSize == 2) H.topRows<2>() << c(0), c(1), c(2), -c(1), c(0), c(3);
    for (int i = 0; sampleSize > 2 && i < 2 * sampleSize; ++i) H(i / 3, i % 3) = c(i);
    return H;
}

/// The compact transformation of a matrix whose last element is 1.
inline std::vector<double> compactOf(int sampleSize, const Eigen::Matrix3d& H)
{
    std::vector<double> c = {H(0, 0), H(0, 1), H(0, 2), H(1, 0), H(1, 1), H(1, 2), H(2, 0), H(2, 1), 1.0};
    if (sampleSize == 2) c = {H(0, 0), H(0, 1), H(0, 2), H(1, 2), 1.0};
    if (sampleSize == 3) c.erase(c.begin() + 6, c.begin() + 8);
    return c;
}

inline Eigen::Vector2d mapPoint(const Eigen::Matrix3d& H, const Eigen::Vector2d& point)
{
    return (H * point.homogeneous()).hnormalized();
}

/// Element of coordinate a (0) or b (1) of point i: a is y for points in rows, x for points in columns.
inline std::size_t elementOf(bool isInRows, int ptsNum, int i, int coordinate)
{
    return static_cast<std::size_t>(isInRows ? i + (1 - coordinate) * ptsNum : 2 * i + coordinate);
}

/// Point i of n points as (a, b).
template <typename T>
Eigen::Vector2d pointOf(const std::vector<T>& pts, bool isInRows, int n, int i)
{
    return {static_cast<double>(pts[elementOf(isInRows, n, i, 0)]), static_cast<double>(pts[elementOf(isInRows, n, i, 1)])};
}

template <typename Ti>
struct PointSet {
    PointSetSpec spec;
    Eigen::Matrix3d H;           ///< the transformation of (a, b), its last element 1
    std::vector<Ti> pts1, pts2;  ///< 2*ptsNum elements in the layout
};

/// A transformation that keeps the square: a turn by any angle and a shrinking about the centre, with shear for an affine
/// one and with perspective for a projective one.
inline Eigen::Matrix3d makeTransformation(int sampleSize, SeededRandom& random)
{
    Eigen::Matrix3d H = Eigen::Matrix3d::Identity();
    H.topLeftCorner<2, 2>() = random.uniform(0.4, 0.6) * Eigen::Rotation2Dd(random.uniform(-3.1, 3.1)).toRotationMatrix();
    H(0, 2) = random.uniform(-5.0, 5.0);
    H(1, 2) = random.uniform(-5.0, 5.0);
    if (sampleSize > 2) H.col(1) = random.uniform(0.8, 1.0) * H.col(1) + random.uniform(-0.2, 0.2) * H.col(0);
    if (sampleSize > 3) H.row(2) << random.uniform(-0.1, 0.1) / FIELD, random.uniform(-0.1, 0.1) / FIELD, 1.0;
    Eigen::Matrix3d toCentre = Eigen::Matrix3d::Identity();
    toCentre.topRightCorner<2, 1>().setConstant(-FIELD / 2);
    H = toCentre.inverse() * H * toCentre;
    return H / H(2, 2);
}

/// The first four points lie near the corners of the square, in general position, the others anywhere. Coordinates of
/// integer types are rounded, which adds noise of up to half a unit to matches.
template <typename Ti>
PointSet<Ti> makePointSet(const PointSetSpec& spec)
{
    SeededRandom random(spec.seed);
    PointSet<Ti> set{spec, makeTransformation(spec.sampleSize, random), {}, {}};
    const auto put = [&spec](std::vector<Ti>& pts, int i, const Eigen::Vector2d& point) {
        pts.resize(static_cast<std::size_t>(2 * spec.ptsNum));
        for (int c = 0; c < 2; ++c) {
            const double value = std::is_integral_v<Ti> ? std::floor(point(c) + 0.5) : point(c);
            pts[elementOf(spec.isInRows, spec.ptsNum, i, c)] = static_cast<Ti>(value);
        }
    };
    const auto randomPoint = [&random](double low, double high) {
        const double a = random.uniform(low, high);
        return Eigen::Vector2d(a, random.uniform(low, high));
    };
    for (int i = 0; i < spec.ptsNum; ++i) {
        const Eigen::Vector2d p = FIELD * randomPoint(0.0, 1.0);
        put(set.pts1, i, i < 4 ? 0.25 * p + 0.75 * FIELD * Eigen::Vector2d(i % 2, i / 2) : p);
        const bool isOutlier = i >= spec.ptsNum - spec.outlierNum;
        const Eigen::Vector2d match = mapPoint(set.H, pointOf(set.pts1, spec.isInRows, spec.ptsNum, i));
        put(set.pts2, i, isOutlier ? randomPoint(0.0, FIELD) : (match + randomPoint(-spec.noise, spec.noise)).eval());
    }
    return set;
}

}  // namespace testsupport

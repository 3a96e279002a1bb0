// Seeded matches for benchmarks: a transformation of a 640-by-480 picture, noise, and wrong matches among the right ones.
// Coordinates are rounded to single precision, so that whoever takes them in any precision sees the same points.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "estimator.h"

namespace bench {

constexpr double WIDTH = 640.0;
constexpr double HEIGHT = 480.0;
constexpr double NOISE = 1.0;      ///< largest error of a coordinate of a right match, pixels
constexpr double THRESHOLD = 3.0;  ///< distance up to which a match counts as right, pixels

constexpr esttform::TransformType TYPES[] = {esttform::TransformType::Similarity, esttform::TransformType::Affine,
                                             esttform::TransformType::Projective};

inline const char* nameOf(esttform::TransformType type)
{
    switch (type) {
    case esttform::TransformType::Similarity: return "similarity";
    case esttform::TransformType::Affine: return "affine";
    default: return "projective";
    }
}

/// A value from low to below high, the same with every library (whose own distributions differ).
inline double uniform(std::mt19937& random, double low, double high)
{
    return low + (high - low) * (static_cast<double>(random()) / 4294967296.0);
}

/// A transformation of (x, y, 1)', row by row.
using Matrix = std::array<double, 9>;

inline std::array<double, 2> mapPoint(const Matrix& H, double x, double y)
{
    const double w = H[6] * x + H[7] * y + H[8];
    return {(H[0] * x + H[1] * y + H[2]) / w, (H[3] * x + H[4] * y + H[5]) / w};
}

/// Mean distance, in pixels, between the picture's corners under H and under the truth; infinite for an H of zeros.
inline double cornerError(const Matrix& H, const Matrix& truth)
{
    double sum = 0.0;
    for (const double x : {0.0, WIDTH}) {
        for (const double y : {0.0, HEIGHT}) {
            const auto found = mapPoint(H, x, y);
            const auto right = mapPoint(truth, x, y);
            sum += std::hypot(found[0] - right[0], found[1] - right[1]);
        }
    }
    return std::isfinite(sum) ? sum / 4.0 : std::numeric_limits<double>::infinity();
}

struct Matches {
    Matrix truth{};
    std::vector<double> pts1;  ///< x0, y0, x1, y1, ...
    std::vector<double> pts2;

    std::int32_t ptsNum() const { return static_cast<std::int32_t>(pts1.size() / 2); }
};

/// A turn, a scale and a shift, with shear for an affine transformation and perspective too for a projective one.
inline Matrix makeTruth(esttform::TransformType type, std::mt19937& random)
{
    const double angle = uniform(random, -0.5, 0.5);
    const double scale = uniform(random, 0.8, 1.2);
    const double c = scale * std::cos(angle);
    const double s = scale * std::sin(angle);
    Matrix H = {c, -s, uniform(random, -40.0, 40.0), s, c, uniform(random, -40.0, 40.0), 0.0, 0.0, 1.0};
    if (type == esttform::TransformType::Similarity) return H;
    H[1] += uniform(random, -0.2, 0.2);
    H[4] *= uniform(random, 0.9, 1.1);
    if (type == esttform::TransformType::Affine) return H;
    H[6] = uniform(random, -2e-4, 2e-4);
    H[7] = uniform(random, -2e-4, 2e-4);
    return H;
}

/// @param inlierShare  part of the matches that are right; they lie anywhere between the others
inline Matches makeMatches(esttform::TransformType type, std::int32_t ptsNum, double inlierShare, std::uint32_t seed)
{
    std::mt19937 random(seed);
    const auto put = [](std::vector<double>& pts, double x, double y) {
        pts.push_back(static_cast<double>(static_cast<float>(x)));
        pts.push_back(static_cast<double>(static_cast<float>(y)));
    };
    std::vector<bool> isRight(static_cast<std::size_t>(ptsNum), false);
    std::fill_n(isRight.begin(), std::lround(inlierShare * ptsNum), true);
    for (std::int32_t i = ptsNum - 1; i > 0; --i) {
        const bool last = isRight[static_cast<std::size_t>(i)];
        const auto other = static_cast<std::size_t>(random() % static_cast<std::uint32_t>(i + 1));
        isRight[static_cast<std::size_t>(i)] = isRight[other];
        isRight[other] = last;
    }
    Matches matches;
    matches.truth = makeTruth(type, random);
    for (std::int32_t i = 0; i < ptsNum; ++i) {
        const double x = uniform(random, 0.0, WIDTH);
        const double y = uniform(random, 0.0, HEIGHT);
        put(matches.pts1, x, y);
        auto match = mapPoint(matches.truth, x, y);
        if (isRight[static_cast<std::size_t>(i)]) {
            for (double& value : match) value += uniform(random, -NOISE, NOISE);
        } else {
            match[0] = uniform(random, 0.0, WIDTH);
            match[1] = uniform(random, 0.0, HEIGHT);
        }
        put(matches.pts2, match[0], match[1]);
    }
    return matches;
}

/// The settings of all whole steps here: that many samplings whatever they find, then refits on the inliers.
inline esttform::Settings fixedSettings(esttform::TransformType type, std::uint32_t sampleNum,
                                        esttform::DataType precision = esttform::DataType::Double)
{
    esttform::Settings settings;
    settings.type = type;
    settings.threshold = THRESHOLD * THRESHOLD;
    settings.sampleNum = sampleNum;
    settings.confidence.reset();
    settings.pointsType = precision;
    settings.tformType = precision;
    return settings;
}

/// TForm of points in columns as a matrix of nine values.
inline Matrix matrixOf(const esttform::StepResult& result)
{
    Matrix H = {0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 1.0};
    for (int row = 0; row < result.tformRows; ++row) {
        for (int col = 0; col < 3; ++col) H[static_cast<std::size_t>(3 * row + col)] = result.tform(row, col);
    }
    return H;
}

/// Middle value; of an even number the upper middle one.
inline double medianOf(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

}  // namespace bench

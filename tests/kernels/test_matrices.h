// Matrices for the tests of the decompositions, by situation, and the tolerance by which results are judged.
// Their seed follows from situation and shape, which every failure text names.
#pragma once

#include <cstring>
#include <limits>

#include "point_sets.h"

namespace testsupport {

template <typename T>
using Matrix = Eigen::Matrix<T, Eigen::Dynamic, Eigen::Dynamic>;

enum class Content {
    RANDOM, ZERO, ONES,
    RANK_DEFICIENT,   ///< half of the full rank
    ZERO_COLUMNS,     ///< every second column, from the first
    GRADED,           ///< norms of columns over many decades, not in order
    NEARLY_PARALLEL,  ///< columns equal but for some hundred units in the last place
    REPEATED,         ///< singular values 3, 3, 3, 1, 1, 1, ...
    TINY,             ///< entries whose square is 0
    SUBNORMAL,        ///< entries whose reciprocal overflows
    LARGE,            ///< entries whose square overflows
};

struct Shape {
    int m, n;
};

inline std::string describe(Content content, Shape shape)
{
    static const char* const NAMES[] = {"random", "zero",           "ones",     "rankDeficient", "zeroColumns",
                                        "graded", "nearlyParallel", "repeated", "tiny",          "subnormal", "large"};
    return NAMES[static_cast<int>(content)] + (" " + std::to_string(shape.m)) + " x " + std::to_string(shape.n);
}

template <typename T>
Matrix<T> makeRandom(int m, int n, std::uint32_t seed)
{
    SeededRandom random(seed);
    return Matrix<T>::NullaryExpr(m, n, [&random] { return static_cast<T>(random.uniform(-1.0, 1.0)); });
}

template <typename T>
Matrix<T> makeOrthonormal(int m, int n, std::uint32_t seed)
{
    return Eigen::HouseholderQR<Matrix<T>>(makeRandom<T>(m, n, seed)).householderQ() * Matrix<T>::Identity(m, n);
}

template <typename T>
Matrix<T> makeMatrix(Content content, Shape shape)
{
    const auto scale = [](double forDouble, double forFloat) { return T(sizeof(T) == 8 ? forDouble : forFloat); };
    const auto [m, n] = shape;
    const int q = std::min(m, n);
    const std::uint32_t seed = static_cast<std::uint32_t>(1000 * static_cast<int>(content) + 30 * m + n);
    Matrix<T> A = makeRandom<T>(m, n, seed);
    switch (content) {
    case Content::RANDOM: break;
    case Content::ZERO: A.setZero(); break;
    case Content::ONES: A.setOnes(); break;
    case Content::RANK_DEFICIENT:
        A = makeRandom<T>(m, (q + 1) / 2, seed + 1) * makeRandom<T>((q + 1) / 2, n, seed + 2);
        break;
    case Content::ZERO_COLUMNS:
        for (int j = 0; j < n; j += 2) A.col(j).setZero();
        break;
    case Content::GRADED:
        for (int j = 0; j < n; ++j) A.col(j) *= static_cast<T>(std::pow(10.0, -2 * ((5 * j + 3) % 11)));
        break;
    case Content::NEARLY_PARALLEL:
        A = makeRandom<T>(m, 1, seed + 1).replicate(1, n) + std::numeric_limits<T>::epsilon() * T(200) * A;
        break;
    case Content::REPEATED: {
        Matrix<T> s = Matrix<T>::Ones(q, 1);
        s.topRows(std::min(q, 3)) *= T(3);
        A = makeOrthonormal<T>(m, q, seed + 1) * s.col(0).asDiagonal() * makeOrthonormal<T>(n, q, seed + 2).transpose();
        break;
    }
    case Content::TINY: A *= scale(1e-270, 1e-23); break;
    case Content::SUBNORMAL: A *= scale(1e-310, 1e-40); break;
    case Content::LARGE: A *= scale(1e306, 1e36); break;
    }
    return A;
}

/// Relative accuracy that a computation with A can have: units of max(m, n)*eps, and what subnormal entries lack.
template <typename T>
T relativeTolerance(const Matrix<T>& A, T units)
{
    const T norm = A.stableNorm();
    const T lack = norm > T(0) ? std::numeric_limits<T>::denorm_min() / norm : T(0);
    return units * static_cast<T>(std::max(A.rows(), A.cols())) * (std::numeric_limits<T>::epsilon() + lack);
}

/// Largest element of Q'Q - I.
template <typename T>
T lackOfOrthonormality(const Matrix<T>& Q)
{
    return (Q.transpose() * Q - Matrix<T>::Identity(Q.cols(), Q.cols())).cwiseAbs().maxCoeff();
}

template <typename T>
bool hasSameBits(const Matrix<T>& A, const Matrix<T>& B)
{
    return A.size() == B.size() && std::memcmp(A.data(), B.data(), static_cast<std::size_t>(A.size()) * sizeof(T)) == 0;
}

}  // namespace testsupport

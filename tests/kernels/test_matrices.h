// Matrices for the tests of the decompositions, by situation, and the reference results and tolerances to judge by.
// Everything is in double; matrices for single precision hold values that it can represent.
#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <Eigen/Core>

namespace testsupport {

using Eigen::MatrixXd;

/// The precision of the type under test.
struct Precision {
    bool isDouble;
    double eps, denormMin;

    template <typename T>
    static Precision of()
    {
        using Limits = std::numeric_limits<T>;
        return {sizeof(T) == 8, double(Limits::epsilon()), double(Limits::denorm_min())};
    }
};

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

/// For failure texts; the seed of a matrix follows from it.
std::string describe(Content content, Shape shape);
MatrixXd makeMatrix(Content content, Shape shape, const Precision& precision);
/// Entries from -1 to 1.
MatrixXd makeRandom(int m, int n, std::uint32_t seed);
MatrixXd makeOrthonormal(int m, int n, std::uint32_t seed);

/// Reference: singular values in decreasing order; order of columns that pivoting for the largest norm gives.
MatrixXd singularValuesOf(const MatrixXd& A);
std::vector<std::int32_t> pivotsOf(const MatrixXd& A);

/// Relative accuracy that a computation with A can have: units of max(m, n)*eps, and what subnormal entries lack.
double relativeTolerance(const MatrixXd& A, const Precision& precision, double units = 4.0);
double normOf(const MatrixXd& A);
/// Largest element of Q'Q - I.
double lackOfOrthonormality(const MatrixXd& Q);
/// Equal in every bit of every element.
bool hasSameBits(const MatrixXd& A, const MatrixXd& B);

/// A as the array that a kernel takes, and such an array as a matrix.
template <typename T>
std::vector<T> toArray(const MatrixXd& A)
{
    std::vector<T> array;
    for (Eigen::Index i = 0; i < A.size(); ++i) array.push_back(static_cast<T>(A.data()[i]));
    return array;
}

template <typename T>
MatrixXd toMatrix(const std::vector<T>& array, int m, int n)
{
    MatrixXd A(m, n);
    for (Eigen::Index i = 0; i < A.size(); ++i) A.data()[i] = static_cast<double>(array[std::size_t(i)]);
    return A;
}

}  // namespace testsupport

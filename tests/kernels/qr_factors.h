// What a QR factorization with column pivoting gives, and the properties that it has.
#pragma once

#include <vector>

#include "test_matrices.h"

namespace testsupport {

using Indices = std::vector<std::int32_t>;

/// Value of an R that a factorization must leave alone.
constexpr int UNTOUCHED = -77;

/// Everything that a factorization writes; R is UNTOUCHED where it stays in A.
struct Factors {
    MatrixXd Q, A, R, E, qraux, work;
    Indices jpvt;
    bool isInR;

    const MatrixXd& triangle() const { return isInR ? R : A; }
};

bool isPermutation(Indices jpvt);
/// A*E = Q*R with orthonormal Q, triangular R, and a permutation.
void checkProduct(const MatrixXd& A, const Factors& f, const Precision& precision);
/// The same, and a decreasing diagonal of R.
void checkFactors(const MatrixXd& A, const Factors& f, const Precision& precision);

const Shape SHAPES[] = {{9, 8}, {5, 4}, {3, 3}, {4, 7}, {2, 4}, {1, 5}, {6, 1}, {1, 1}, {12, 7}};

}  // namespace testsupport

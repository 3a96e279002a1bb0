#include "qr_factors.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace testsupport {

bool isPermutation(Indices jpvt)
{
    std::sort(jpvt.begin(), jpvt.end());
    for (std::size_t k = 0; k < jpvt.size(); ++k) {
        if (jpvt[k] != std::int32_t(k)) return false;
    }
    return true;
}

void checkProduct(const MatrixXd& A, const Factors& f, const Precision& precision)
{
    const double tolerance = relativeTolerance(A, precision);
    const MatrixXd& R = f.triangle();
    EXPECT_LE(lackOfOrthonormality(f.Q), tolerance);
    EXPECT_TRUE(MatrixXd(R.triangularView<Eigen::StrictlyLower>()).isZero(0.0));
    EXPECT_TRUE(f.isInR || (f.R.array() == UNTOUCHED).all());

    ASSERT_TRUE(isPermutation(f.jpvt));
    MatrixXd AE = A;
    for (int k = 0; k < A.cols(); ++k) {
        AE.col(k) = A.col(f.jpvt[std::size_t(k)]);
        EXPECT_EQ(f.E(k), f.jpvt[std::size_t(k)] + 1);
    }
    EXPECT_LE(normOf(AE - f.Q * R), tolerance * normOf(A));
}

void checkFactors(const MatrixXd& A, const Factors& f, const Precision& precision)
{
    checkProduct(A, f, precision);
    const MatrixXd& R = f.triangle();
    for (int k = 0; k + 1 < std::min(A.rows(), A.cols()); ++k) {  // a downdated norm is good to some percent
        EXPECT_GE(std::abs(R(k, k)), std::abs(R(k + 1, k + 1)) * 0.95 - relativeTolerance(A, precision) * normOf(A))
            << "diagonal element " << k;
    }
}

}  // namespace testsupport

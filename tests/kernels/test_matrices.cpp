#include "test_matrices.h"

#include <cmath>
#include <cstring>

#include <Eigen/QR>
#include <Eigen/SVD>

#include "point_sets.h"

namespace testsupport {

std::string describe(Content content, Shape shape)
{
    static const char* const NAMES[] = {"random", "zero",           "ones",     "rankDeficient", "zeroColumns",
                                        "graded", "nearlyParallel", "repeated", "tiny",          "subnormal", "large"};
    return NAMES[static_cast<int>(content)] + (" " + std::to_string(shape.m)) + " x " + std::to_string(shape.n);
}

MatrixXd makeRandom(int m, int n, std::uint32_t seed)
{
    SeededRandom random(seed);
    return MatrixXd::NullaryExpr(m, n, [&random] { return random.uniform(-1.0, 1.0); });
}

MatrixXd makeOrthonormal(int m, int n, std::uint32_t seed)
{
    return Eigen::HouseholderQR<MatrixXd>(makeRandom(m, n, seed)).householderQ() * MatrixXd::Identity(m, n);
}

MatrixXd makeMatrix(Content content, Shape shape, const Precision& precision)
{
    const auto [m, n] = shape;
    const int q = std::min(m, n);
    const auto seed = static_cast<std::uint32_t>(1000 * static_cast<int>(content) + 30 * m + n);
    MatrixXd A = makeRandom(m, n, seed);
    MatrixXd s = MatrixXd::Ones(q, 1);
    switch (content) {
    case Content::RANDOM: break;
    case Content::ZERO: A.setZero(); break;
    case Content::ONES: A.setOnes(); break;
    case Content::RANK_DEFICIENT:
        A = makeRandom(m, (q + 1) / 2, seed + 1) * makeRandom((q + 1) / 2, n, seed + 2);
        break;
    case Content::ZERO_COLUMNS:
        for (int j = 0; j < n; j += 2) A.col(j).setZero();
        break;
    case Content::GRADED:
        for (int j = 0; j < n; ++j) A.col(j) *= std::pow(10.0, -2 * ((5 * j + 3) % 11));
        break;
    case Content::NEARLY_PARALLEL: A = makeRandom(m, 1, seed + 1).replicate(1, n) + 200.0 * precision.eps * A; break;
    case Content::REPEATED:
        s.topRows(std::min(q, 3)).setConstant(3.0);
        A = makeOrthonormal(m, q, seed + 1) * s.col(0).asDiagonal() * makeOrthonormal(n, q, seed + 2).transpose();
        break;
    case Content::TINY: A *= precision.isDouble ? 1e-270 : 1e-23; break;
    case Content::SUBNORMAL: A *= precision.isDouble ? 1e-310 : 1e-40; break;
    case Content::LARGE: A *= precision.isDouble ? 1e306 : 1e36; break;
    }
    if (precision.isDouble) return A;
    return A.cast<float>().cast<double>();
}

MatrixXd singularValuesOf(const MatrixXd& A)
{
    const double norm = normOf(A);
    if (norm == 0.0) return MatrixXd::Zero(std::min(A.rows(), A.cols()), 1);
    return norm * Eigen::JacobiSVD<MatrixXd>(A / norm).singularValues();
}

std::vector<std::int32_t> pivotsOf(const MatrixXd& A)
{
    const auto pivots = Eigen::ColPivHouseholderQR<MatrixXd>(A / normOf(A)).colsPermutation().indices().eval();
    return {pivots.data(), pivots.data() + pivots.size()};
}

double relativeTolerance(const MatrixXd& A, const Precision& precision, double units)
{
    const double norm = normOf(A);
    const double lack = norm > 0.0 ? precision.denormMin / norm : 0.0;
    return units * static_cast<double>(std::max(A.rows(), A.cols())) * (precision.eps + lack);
}

double normOf(const MatrixXd& A)
{
    return A.stableNorm();
}

double lackOfOrthonormality(const MatrixXd& Q)
{
    return (Q.transpose() * Q - MatrixXd::Identity(Q.cols(), Q.cols())).cwiseAbs().maxCoeff();
}

bool hasSameBits(const MatrixXd& A, const MatrixXd& B)
{
    if (A.size() != B.size()) return false;
    if (A.size() == 0) return true;                      // an empty matrix may have no address
    return std::memcmp(A.data(), B.data(), static_cast<std::size_t>(A.size()) * sizeof(double)) == 0;
}

}  // namespace testsupport

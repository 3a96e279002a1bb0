// Singular value decomposition: values of the reference, orthonormal vectors, the order, null spaces, failures.

#include "svdc.h"

#include <algorithm>
#include <tuple>

#include "element_types.h"
#include "test_matrices.h"

namespace {

using namespace testsupport;

constexpr int UNTOUCHED = -77;

/// What svdc writes: min(n, p) singular values and the vectors, UNTOUCHED where the kernel leaves them alone.
struct Decomposition {
    std::int32_t status;
    MatrixXd s, U, V;
};

template <typename T>
Decomposition decompose(const MatrixXd& matrix, bool wantVectors = true)
{
    const int n = int(matrix.rows()), p = int(matrix.cols()), q = std::min(n, p);
    std::vector<T> X = toArray<T>(matrix), work(X.size() / std::size_t(p));
    std::vector<T> s(X.size() / std::size_t(n), T(UNTOUCHED)), e = s;
    std::vector<T> U(std::size_t(n * q), T(UNTOUCHED)), V(std::size_t(p * p), T(UNTOUCHED));
    const std::int32_t status = svdc(X.data(), n, p, s.data(), e.data(), work.data(), U.data(), V.data(), wantVectors);
    return {status, toMatrix(s, q, 1), toMatrix(U, n, q), toMatrix(V, p, p)};
}

/// The decomposition of X, and that of the values alone.
void checkDecomposition(const MatrixXd& X, const Decomposition& d, const Decomposition& alone,
                        const Precision& precision)
{
    ASSERT_EQ(d.status, 0);
    const double tolerance = relativeTolerance(X, precision);
    const double norm = normOf(X);
    const MatrixXd expected = singularValuesOf(X);
    for (int i = 0; i < d.s.rows(); ++i) {
        EXPECT_LE(std::abs(d.s(i) - expected(i)), tolerance * norm) << "singular value " << i;
        EXPECT_GE(d.s(i), 0.0);
        EXPECT_LE(d.s(i), d.s(std::max(i - 1, 0)));
    }
    EXPECT_LE(lackOfOrthonormality(d.U), tolerance);
    EXPECT_LE(lackOfOrthonormality(d.V), tolerance);
    EXPECT_LE(normOf(X - d.U * d.s.col(0).asDiagonal() * d.V.leftCols(d.s.rows()).transpose()), tolerance * norm);
    EXPECT_TRUE(alone.status == 0 && hasSameBits(alone.s, d.s));
    EXPECT_TRUE((alone.U.array() == UNTOUCHED).all() && (alone.V.array() == UNTOUCHED).all());
}

template <typename T>
class SvdTest : public ::testing::Test {
protected:
    const Precision precision = Precision::of<T>();

    void check(const MatrixXd& X) const { checkDecomposition(X, decompose<T>(X), decompose<T>(X, false), precision); }
};
TYPED_TEST_SUITE(SvdTest, CompTypes, CompName);

TYPED_TEST(SvdTest, DecomposesEverySituation)
{
    for (const Content content : {Content::RANDOM, Content::ZERO, Content::ONES, Content::RANK_DEFICIENT,
                                  Content::ZERO_COLUMNS, Content::GRADED, Content::NEARLY_PARALLEL, Content::REPEATED,
                                  Content::TINY, Content::LARGE}) {
        for (const Shape shape : {Shape{6, 5}, Shape{24, 9}, Shape{100, 7}, Shape{3, 3}, Shape{4, 5}, Shape{3, 8},
                                  Shape{5, 1}, Shape{1, 1}, Shape{1, 2}, Shape{1, 6}}) {
            SCOPED_TRACE(describe(content, shape));
            this->check(makeMatrix(content, shape, this->precision));
        }
    }
}

/// Bidiagonal matrices with zeros, which the iteration treats apart from the QR steps: splitting and deflation.
TYPED_TEST(SvdTest, DecomposesBidiagonals)
{
    const std::tuple<const char*, Eigen::Vector4d, Eigen::Vector3d> cases[] = {
        {"zeroFirst", {0, 2, 3, 4}, {1, 1, 1}}, {"zeroInside", {1, 2, 0, 4}, {3, 1, 2}},
        {"zeroLast", {1, 2, 3, 0}, {1, 1, 1}},  {"twoZeros", {1, 0, 0, 4}, {1, 2, 3}},
        {"nilpotent", {0, 0, 0, 0}, {3, 1, 2}}, {"diagonal", {1, -3, 2, -3}, {0, 0, 0}},
        {"equal", {1, 1, 1, 1}, {1, 1, 1}}};
    for (const auto& [name, diagonal, superDiagonal] : cases) {
        for (const int rowNum : {4, 6}) {
            SCOPED_TRACE(name + (", rows " + std::to_string(rowNum)));
            MatrixXd X = MatrixXd::Zero(rowNum, 4);
            X.diagonal() = diagonal;
            for (int i = 0; i < 3; ++i) X(i, i + 1) = superDiagonal(i);
            this->check(X);
        }
    }
}

/// Up to the smallest normal number over eps a super-diagonal element is nothing, however small its neighbours are.
TYPED_TEST(SvdTest, DropsSuperDiagonalsOfNoSize)
{
    using Limits = std::numeric_limits<TypeParam>;
    const double unit = double(Limits::min() / Limits::epsilon());
    const MatrixXd X = (MatrixXd(2, 2) << 1, 1, 0, 1).finished();
    EXPECT_LE(std::abs(decompose<TypeParam>(0.9 * unit * X).s(0) - 0.9 * unit), 4 * this->precision.eps * unit);
    EXPECT_GE(decompose<TypeParam>(4.0 * unit * X).s(0), 4.0 * unit * 1.5);
}

TYPED_TEST(SvdTest, LastColumnSpansTheNullSpace)
{
    for (const Shape shape : {Shape{24, 9}, Shape{10, 9}, Shape{8, 7}, Shape{6, 5}, Shape{8, 9}}) {
        SCOPED_TRACE(describe(Content::RANDOM, shape));
        const MatrixXd h = makeRandom(shape.n, 1, 31).normalized();
        const MatrixXd A = makeMatrix(Content::RANDOM, shape, this->precision);
        const MatrixXd X = A - (A * h) * h.transpose();  // X*h = 0 and nothing else
        const Decomposition d = decompose<TypeParam>(X);
        ASSERT_EQ(d.status, 0);
        const double tolerance = relativeTolerance(X, this->precision) * normOf(X);
        EXPECT_LE((X * d.V.col(shape.n - 1)).norm(), tolerance);
        EXPECT_LE(std::abs(std::abs(d.V.col(shape.n - 1).dot(h.col(0))) - 1.0), tolerance);
    }
}

/// A single column has no super-diagonal that would be tested, so two columns are the fewest here.
TYPED_TEST(SvdTest, NotFiniteIsNeverDone)
{
    using Limits = std::numeric_limits<double>;
    for (const double value : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity()}) {
        for (const Shape shape : {Shape{6, 4}, Shape{3, 3}, Shape{2, 5}, Shape{1, 2}, Shape{4, 2}}) {
            for (int at = 0; at < shape.m * shape.n; ++at) {
                MatrixXd X = makeMatrix(Content::RANDOM, shape, this->precision);
                X.data()[at] = value;
                const std::int32_t status = decompose<TypeParam>(X).status;
                EXPECT_TRUE(status == -1 || (status > 0 && status <= shape.n))
                    << status << " for " << shape.m << " x " << shape.n << ", " << value << " at " << at;
            }
        }
    }
}

}  // namespace

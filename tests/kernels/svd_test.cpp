// Singular value decomposition: values of the reference, orthonormal vectors, the order, null spaces, failures.

#include "svdc.h"

#include "element_types.h"
#include "test_matrices.h"

namespace {

using namespace testsupport;

constexpr int UNTOUCHED = -77;

/// What svdc writes: min(n, p) singular values and the vectors, UNTOUCHED where the kernel leaves them alone.
template <typename T>
struct Decomposition {
    std::int32_t status;
    Matrix<T> s, U, V;
};

template <typename T>
Decomposition<T> decompose(Matrix<T> X, bool wantVectors = true)
{
    const int n = int(X.rows()), p = int(X.cols()), q = std::min(n, p);
    Matrix<T> s(p, 1), e(p, 1), work(n, 1);
    Decomposition<T> d{0, {}, Matrix<T>::Constant(n, q, T(UNTOUCHED)), Matrix<T>::Constant(p, p, T(UNTOUCHED))};
    d.status = svdc(X.data(), n, p, s.data(), e.data(), work.data(), d.U.data(), d.V.data(), wantVectors);
    d.s = s.topRows(q);
    return d;
}

template <typename T>
void checkDecomposition(const Matrix<T>& X)
{
    const Decomposition<T> d = decompose(X);
    ASSERT_EQ(d.status, 0);
    const T tolerance = relativeTolerance<T>(X, T(4));
    const T norm = X.stableNorm();
    const T unit = norm > T(0) ? norm : T(1);            // the reference computes in double, without extreme values
    const Eigen::MatrixXd scaled = (X / unit).template cast<double>();
    const Matrix<T> expected = Eigen::JacobiSVD<Eigen::MatrixXd>(scaled).singularValues().template cast<T>();
    for (int i = 0; i < d.s.rows(); ++i) {
        EXPECT_LE(std::abs(d.s(i) / unit - expected(i)), tolerance) << "singular value " << i;
        EXPECT_GE(d.s(i), T(0));
        EXPECT_LE(d.s(i), d.s(std::max(i - 1, 0)));
    }
    EXPECT_LE(lackOfOrthonormality(d.U), tolerance);
    EXPECT_LE(lackOfOrthonormality(d.V), tolerance);
    EXPECT_LE((X - d.U * d.s.col(0).asDiagonal() * d.V.leftCols(d.s.rows()).transpose()).stableNorm(), tolerance * norm);
}

const Shape SHAPES[] = {{6, 5}, {24, 9}, {100, 7}, {3, 3}, {4, 5}, {3, 8}, {5, 1}, {1, 1}, {1, 2}, {1, 6}};

template <typename T>
class SvdTest : public ::testing::Test {};
TYPED_TEST_SUITE(SvdTest, CompTypes, CompName);

TYPED_TEST(SvdTest, DecomposesEverySituation)
{
    for (const Content content : {Content::RANDOM, Content::ZERO, Content::ONES, Content::RANK_DEFICIENT,
                                  Content::ZERO_COLUMNS, Content::GRADED, Content::NEARLY_PARALLEL, Content::REPEATED,
                                  Content::TINY, Content::LARGE}) {
        for (const Shape shape : SHAPES) {
            SCOPED_TRACE(describe(content, shape));
            checkDecomposition(makeMatrix<TypeParam>(content, shape));
        }
    }
}

/// Bidiagonal matrices with zeros, which the iteration treats apart from the QR steps: splitting and deflation.
TYPED_TEST(SvdTest, DecomposesBidiagonals)
{
    using Diagonal = Eigen::Vector4i;
    using SuperDiagonal = Eigen::Vector3i;
    const std::tuple<const char*, Diagonal, SuperDiagonal> cases[] = {
        {"zeroFirst", {0, 2, 3, 4}, {1, 1, 1}}, {"zeroInside", {1, 2, 0, 4}, {3, 1, 2}},
        {"zeroLast", {1, 2, 3, 0}, {1, 1, 1}},  {"twoZeros", {1, 0, 0, 4}, {1, 2, 3}},
        {"nilpotent", {0, 0, 0, 0}, {3, 1, 2}}, {"diagonal", {1, -3, 2, -3}, {0, 0, 0}},
        {"equal", {1, 1, 1, 1}, {1, 1, 1}}};
    for (const auto& [name, diagonal, superDiagonal] : cases) {
        for (const int rowNum : {4, 6}) {
            SCOPED_TRACE(name + (", rows " + std::to_string(rowNum)));
            Matrix<TypeParam> X = Matrix<TypeParam>::Zero(rowNum, 4);
            X.diagonal() = diagonal.template cast<TypeParam>();
            X.template diagonal<1>().head(3) = superDiagonal.template cast<TypeParam>();
            checkDecomposition(X);
        }
    }
}

TYPED_TEST(SvdTest, LastColumnSpansTheNullSpace)
{
    for (const Shape shape : {Shape{24, 9}, Shape{10, 9}, Shape{8, 7}, Shape{6, 5}, Shape{8, 9}}) {
        SCOPED_TRACE(describe(Content::RANDOM, shape));
        const int p = shape.n;
        const Matrix<TypeParam> h = makeRandom<TypeParam>(p, 1, 31).normalized();
        const Matrix<TypeParam> A = makeMatrix<TypeParam>(Content::RANDOM, shape);
        const Matrix<TypeParam> X = A - (A * h) * h.transpose();  // X*h = 0 and nothing else
        const Decomposition<TypeParam> d = decompose(X);
        ASSERT_EQ(d.status, 0);
        const TypeParam tolerance = relativeTolerance<TypeParam>(X, TypeParam(4)) * X.norm();
        EXPECT_LE((X * d.V.col(p - 1)).norm(), tolerance);
        EXPECT_LE(std::abs(std::abs(d.V.col(p - 1).dot(h.col(0))) - TypeParam(1)), tolerance);
    }
}

TYPED_TEST(SvdTest, ValuesAloneAreTheSameValues)
{
    for (const Shape shape : SHAPES) {
        SCOPED_TRACE(describe(Content::RANDOM, shape));
        const Matrix<TypeParam> X = makeMatrix<TypeParam>(Content::RANDOM, shape);
        const Decomposition<TypeParam> alone = decompose(X, false);
        EXPECT_EQ(alone.status, 0);
        EXPECT_TRUE(hasSameBits(alone.s, decompose(X).s));
        EXPECT_TRUE((alone.U.array() == TypeParam(UNTOUCHED)).all());
        EXPECT_TRUE((alone.V.array() == TypeParam(UNTOUCHED)).all());
    }
}

/// A single column has no super-diagonal that would be tested, so two columns are the fewest here.
TYPED_TEST(SvdTest, NotFiniteIsNeverDone)
{
    using Limits = std::numeric_limits<TypeParam>;
    for (const TypeParam value : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity()}) {
        for (const Shape shape : {Shape{6, 4}, Shape{3, 3}, Shape{2, 5}, Shape{1, 2}, Shape{4, 2}}) {
            for (int at = 0; at < shape.m * shape.n; ++at) {
                Matrix<TypeParam> X = makeMatrix<TypeParam>(Content::RANDOM, shape);
                X.data()[at] = value;
                const std::int32_t status = decompose(X).status;
                EXPECT_TRUE(status == -1 || (status > 0 && status <= shape.n))
                    << status << " for " << shape.m << " x " << shape.n << ", " << value << " at " << at;
            }
        }
    }
}

}  // namespace

// QR factorization with column pivoting: properties of the factors in every situation, pivots, norms, variants; the
// scalar operations of its cache.

#include "dspqrfact.h"

#include <algorithm>
#include <memory>

#include "element_types.h"
#include "test_matrices.h"

namespace {

using namespace testsupport;

template <typename T>
using Cache = QRFactRealInBRealFltSFcnCache<T, T, T>;
template <typename T>
using Limits = std::numeric_limits<T>;
using Indices = std::vector<std::int32_t>;

constexpr int UNTOUCHED = -77;

/// Everything that qrFactor writes; R is UNTOUCHED where the kernel leaves it alone.
template <typename T>
struct Factors {
    Matrix<T> Q, A, R, E, qraux, work;
    Indices jpvt;
    bool isInR;

    const Matrix<T>& triangle() const { return isInR ? R : A; }
};

template <typename T, typename Rows, typename Cols>
Factors<T> factor(const Matrix<T>& matrix, Rows m, Cols n, bool isEconomy)
{
    const int rowNum = m, colNum = n;
    const Matrix<T> column(colNum, 1);
    Factors<T> f{Matrix<T>(rowNum, isEconomy ? std::min(rowNum, colNum) : rowNum), matrix,
                 Matrix<T>::Constant(colNum, colNum, T(UNTOUCHED)), column, column, column,
                 Indices(std::size_t(colNum), 0), isEconomy && m > n};
    qrFactor(Cache<T>(), m, n, f.Q.data(), f.A.data(), f.E.data(), f.qraux.data(), f.work.data(), f.jpvt.data(),
             f.R.data(), isEconomy);
    return f;
}

template <typename T>
Factors<T> factor(const Matrix<T>& A, bool isEconomy = true)
{
    return factor(A, int(A.rows()), int(A.cols()), isEconomy);
}

bool isPermutation(Indices jpvt)
{
    std::sort(jpvt.begin(), jpvt.end());
    for (std::size_t k = 0; k < jpvt.size(); ++k) {
        if (jpvt[k] != std::int32_t(k)) return false;
    }
    return true;
}

/// A*E = Q*R with orthonormal Q, triangular R with a decreasing diagonal, and a permutation.
template <typename T>
void checkFactors(const Matrix<T>& A, const Factors<T>& f)
{
    const T tolerance = relativeTolerance<T>(A, T(4));
    const T norm = A.stableNorm();
    const Matrix<T>& R = f.triangle();
    EXPECT_LE(lackOfOrthonormality(f.Q), tolerance);
    EXPECT_TRUE(Matrix<T>(R.template triangularView<Eigen::StrictlyLower>()).isZero(T(0)));
    EXPECT_TRUE(f.isInR || (f.R.array() == T(UNTOUCHED)).all());

    ASSERT_TRUE(isPermutation(f.jpvt));
    Matrix<T> AE = A;
    for (int k = 0; k < A.cols(); ++k) {
        AE.col(k) = A.col(f.jpvt[std::size_t(k)]);
        EXPECT_EQ(f.E(k), T(f.jpvt[std::size_t(k)] + 1));
    }
    EXPECT_LE((AE - f.Q * R).stableNorm(), tolerance * norm);
    const Matrix<T> d = R.diagonal().cwiseAbs();
    for (int k = 0; k + 1 < d.rows(); ++k) {             // a downdated norm is good to some percent
        EXPECT_GE(d(k), d(k + 1) * T(0.95) - tolerance * norm) << "diagonal element " << k;
    }
}

const Shape SHAPES[] = {{9, 8}, {5, 4}, {3, 3}, {4, 7}, {1, 5}, {6, 1}, {1, 1}, {12, 7}};

template <typename T>
class QrTest : public ::testing::Test {};
TYPED_TEST_SUITE(QrTest, CompTypes, CompName);

TYPED_TEST(QrTest, FactorsEverySituation)
{
    for (const Content content : {Content::RANDOM, Content::ZERO, Content::RANK_DEFICIENT, Content::ZERO_COLUMNS,
                                  Content::GRADED, Content::NEARLY_PARALLEL, Content::REPEATED, Content::TINY,
                                  Content::SUBNORMAL, Content::LARGE}) {
        for (const Shape shape : SHAPES) {
            for (const bool isEconomy : {true, false}) {
                SCOPED_TRACE(describe(content, shape) + (isEconomy ? ", economy" : ", full"));
                const Matrix<TypeParam> A = makeMatrix<TypeParam>(content, shape);
                checkFactors(A, factor(A, isEconomy));
            }
        }
    }
}

TYPED_TEST(QrTest, ChoosesThePivotsOfTheReference)
{
    for (const Content content : {Content::RANDOM, Content::GRADED, Content::LARGE}) {
        for (const Shape shape : SHAPES) {
            SCOPED_TRACE(describe(content, shape));
            const Matrix<TypeParam> A = makeMatrix<TypeParam>(content, shape);
            const Indices jpvt = factor(A).jpvt;
            const Matrix<TypeParam> scaled = A / A.cwiseAbs().maxCoeff();
            const auto pivots = scaled.colPivHouseholderQr().colsPermutation().indices().eval();
            for (int k = 0; k < std::min(shape.m, shape.n); ++k) EXPECT_EQ(jpvt[std::size_t(k)], pivots(k)) << k;
        }
    }
}

TYPED_TEST(QrTest, EqualNormsKeepTheLowerIndex)
{
    struct PivotCase {
        const char* name;
        Eigen::Vector4i diagonal;
        Indices jpvt;
    };
    for (const PivotCase& c : {PivotCase{"allEqual", {3, 3, 3, 3}, {0, 1, 2, 3}},
                               PivotCase{"increasing", {1, 2, 3, 4}, {3, 2, 1, 0}},
                               PivotCase{"twoLargest", {1, 2, 2, 1}, {1, 2, 0, 3}},
                               PivotCase{"oneNotZero", {0, 0, -5, 0}, {2, 1, 0, 3}}}) {
        Matrix<TypeParam> A = Matrix<TypeParam>::Zero(5, 4);
        A.diagonal() = c.diagonal.template cast<TypeParam>();
        EXPECT_EQ(factor(A).jpvt, c.jpvt) << c.name;
    }
}

TYPED_TEST(QrTest, ZeroMatrixGetsNoTransformation)
{
    for (const Shape shape : SHAPES) {
        SCOPED_TRACE(describe(Content::ZERO, shape));
        const Factors<TypeParam> f = factor<TypeParam>(Matrix<TypeParam>::Zero(shape.m, shape.n));
        EXPECT_TRUE(f.Q == Matrix<TypeParam>::Identity(f.Q.rows(), f.Q.cols()));
        EXPECT_TRUE(f.triangle().isZero(TypeParam(0)) && f.qraux.isZero(TypeParam(0)));
        EXPECT_TRUE(std::is_sorted(f.jpvt.begin(), f.jpvt.end()));
    }
}

/// The Householder vector is the column times the reciprocal of its norm, or divided by it where the norm is tiny.
TYPED_TEST(QrTest, DividesOnlyByTinyNorms)
{
    using T = TypeParam;
    const bool isDouble = sizeof(T) == 8;
    struct ScaleCase {
        T scale;
        bool isDivided;
    };
    for (const ScaleCase& c : {ScaleCase{T(1), false}, ScaleCase{T(isDouble ? 1e-303 : 1e-24), false},
                               ScaleCase{T(isDouble ? 1e-306 : 1e-28), true}}) {
        const Matrix<T> x = makeRandom<T>(40, 1, 7) * c.scale;
        const Factors<T> f = factor(x);
        const T norm = -f.R(0);
        const Matrix<T> divided = x / norm;
        const Matrix<T> multiplied = x * (T(1) / norm);
        ASSERT_NE(divided.bottomRows(39), multiplied.bottomRows(39)) << "the data cannot tell";
        EXPECT_EQ(f.A.bottomRows(39), (c.isDivided ? divided : multiplied).bottomRows(39)) << "scale " << c.scale;
    }
}

/// The rest of a column that is nearly parallel to the pivot has a norm that downdating cannot give.
TYPED_TEST(QrTest, RecomputesOnlyCancelledNorms)
{
    using T = TypeParam;
    const T small = std::sqrt(Limits<T>::epsilon()) / T(10);
    for (std::uint32_t seed = 1; seed <= 40; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const Matrix<T> basis = makeOrthonormal<T>(7, 3, seed);
        const bool isFirst = seed % 2 == 0;
        const T rests[] = {small * T(isFirst ? 3 : 1), small * T(2)};
        Matrix<T> A(7, 3);
        A << T(0.9) * basis.col(0) + rests[0] * basis.col(1), rests[1] * basis.col(2), basis.col(0);
        const Factors<T> f = factor(A);
        EXPECT_EQ(f.jpvt, (isFirst ? Indices{2, 0, 1} : Indices{2, 1, 0}));
        // The norm as last computed afresh, here of the column that was not chosen, is that of a rest.
        EXPECT_LE(std::abs(f.work(2) - std::min(rests[0], rests[1])), T(20) * Limits<T>::epsilon());
    }
    Matrix<T> A(3, 2);
    A << 8, 3, 0, 4, 0, 0;
    EXPECT_EQ(factor(A).work(1), T(5));                  // downdated to 4, the whole column's norm stays
}

TYPED_TEST(QrTest, NotFinitePropagatesAndTerminates)
{
    for (const TypeParam value : {Limits<TypeParam>::quiet_NaN(), Limits<TypeParam>::infinity()}) {
        for (const Shape shape : {Shape{4, 3}, Shape{3, 4}, Shape{1, 2}, Shape{3, 1}}) {
            for (int at = 0; at < shape.m * shape.n; ++at) {
                SCOPED_TRACE(describe(Content::RANDOM, shape) + ", value " + std::to_string(at));
                Matrix<TypeParam> A = makeMatrix<TypeParam>(Content::RANDOM, shape);
                A.data()[at] = value;
                const Factors<TypeParam> f = factor(A);
                EXPECT_TRUE(isPermutation(f.jpvt));
                EXPECT_FALSE(f.Q.allFinite() && f.triangle().allFinite());
            }
        }
    }
}

TYPED_TEST(QrTest, KnownSizesGiveTheSameBits)
{
    const auto check = [](auto m, auto n) {
        const Matrix<TypeParam> A = makeMatrix<TypeParam>(Content::GRADED, {m, n});
        const Factors<TypeParam> known = factor(A, m, n, true);
        const Factors<TypeParam> atRunTime = factor(A);
        EXPECT_TRUE(hasSameBits(known.Q, atRunTime.Q) && hasSameBits(known.R, atRunTime.R)) << int(m) << " x " << int(n);
    };
    check(FixedSize<5>{}, FixedSize<4>{});
    check(FixedSize<7>{}, FixedSize<6>{});
    check(FixedSize<9>{}, FixedSize<8>{});
}

TYPED_TEST(QrTest, AppliesQToSeveralColumnsAsToOne)
{
    const Cache<TypeParam> cache;
    Factors<TypeParam> f = factor(makeMatrix<TypeParam>(Content::RANDOM, {9, 8}));
    const Matrix<TypeParam> before = f.A;
    for (int yNum = 1; yNum <= 9; ++yNum) {
        Matrix<TypeParam> together = makeRandom<TypeParam>(9, yNum, 11);
        Matrix<TypeParam> oneByOne = together;
        qrCompQy(cache, 9, 8, f.A.data(), f.qraux.data(), together.data(), yNum);
        for (int j = 0; j < yNum; ++j) qrCompQy(cache, 9, 8, f.A.data(), f.qraux.data(), oneByOne.data() + j * 9);
        EXPECT_TRUE(hasSameBits(together, oneByOne)) << yNum << " columns";
    }
    EXPECT_TRUE(hasSameBits(f.A, before)) << "the diagonal was not restored";
}

TYPED_TEST(QrTest, ScalarOperationsOnExtremeValues)
{
    using T = TypeParam;
    const Cache<T> cache;
    const T large = Limits<T>::max() / T(2), small = Limits<T>::min(), nan = Limits<T>::quiet_NaN(), root = std::sqrt(T(2));
    const T cases[][3] = {{0, 0, 0},         {-7, 0, 7}, {0, -7, 7}, {-3, 4, 5}, {12, -5, 13}, {large, large, root * large},
                          {1, -large, large}, {small, small, root * small}};
    for (const auto& [a, b, expected] : cases) {
        EXPECT_LE(std::abs(cache.hypot(a, b) - expected), T(2) * Limits<T>::epsilon() * expected) << a << ", " << b;
    }
    EXPECT_TRUE(std::isnan(cache.hypot(nan, T(1))) && std::isnan(cache.hypot(T(1), nan)));
    EXPECT_TRUE(cache.isNonZero(nan) && cache.isNonZero(Limits<T>::denorm_min()));
    EXPECT_FALSE(cache.isNonZero(-T(0)));
}

TEST(QrCacheTest, DeletingTheBaseRunsTheDerivedDestructorOnce)
{
    static int num = 0;
    struct Counting final : DSPSFcnCache {
        ~Counting() override { ++num; }
        void compute() override {}
    };
    std::unique_ptr<DSPSFcnCache>(new Counting).reset();
    EXPECT_EQ(num, 1);
}

}  // namespace

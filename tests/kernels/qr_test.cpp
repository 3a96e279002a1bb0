// QR factorization with column pivoting: properties of the factors in every situation, pivots, norms, variants; the
// scalar operations of its cache.

#include "dspqrfact.h"

#include <algorithm>
#include <memory>

#include "element_types.h"
#include "qr_factors.h"

namespace {

using namespace testsupport;

template <typename T>
using Cache = QRFactRealInBRealFltSFcnCache<T, T, T>;
template <typename T>
using Limits = std::numeric_limits<T>;

template <typename T, typename Rows, typename Cols>
Factors factor(const MatrixXd& matrix, Rows m, Cols n, bool isEconomy)
{
    const int rowNum = m, colNum = n, q = isEconomy ? std::min(rowNum, colNum) : rowNum;
    const std::vector<T> column(std::size_t(colNum), T(0));
    std::vector<T> Q(std::size_t(rowNum * q)), A = toArray<T>(matrix), R(std::size_t(colNum * colNum), T(UNTOUCHED));
    std::vector<T> E = column, qraux = column, work = column;
    Indices jpvt(column.size(), 0);
    qrFactor(Cache<T>(), m, n, Q.data(), A.data(), E.data(), qraux.data(), work.data(), jpvt.data(), R.data(),
             isEconomy);
    return {toMatrix(Q, rowNum, q), toMatrix(A, rowNum, colNum), toMatrix(R, colNum, colNum), toMatrix(E, colNum, 1),
            toMatrix(qraux, colNum, 1), toMatrix(work, colNum, 1), jpvt, isEconomy && rowNum > colNum};
}

template <typename T>
Factors factor(const MatrixXd& A, bool isEconomy = true)
{
    return factor<T>(A, int(A.rows()), int(A.cols()), isEconomy);
}

template <typename T>
class QrTest : public ::testing::Test {
protected:
    const Precision precision = Precision::of<T>();
};
TYPED_TEST_SUITE(QrTest, CompTypes, CompName);

TYPED_TEST(QrTest, FactorsEverySituation)
{
    for (const Content content : {Content::RANDOM, Content::ZERO, Content::RANK_DEFICIENT, Content::ZERO_COLUMNS,
                                  Content::GRADED, Content::NEARLY_PARALLEL, Content::REPEATED, Content::TINY,
                                  Content::SUBNORMAL, Content::LARGE}) {
        for (const Shape shape : SHAPES) {
            for (const bool isEconomy : {true, false}) {
                SCOPED_TRACE(describe(content, shape) + (isEconomy ? ", economy" : ", full"));
                const MatrixXd A = makeMatrix(content, shape, this->precision);
                const Factors f = factor<TypeParam>(A, isEconomy);
                checkFactors(A, f, this->precision);
                if (content != Content::ZERO) continue;  // gets no transformation at all
                EXPECT_TRUE(f.Q == MatrixXd::Identity(f.Q.rows(), f.Q.cols()) && f.triangle().isZero(0.0));
                EXPECT_TRUE(f.qraux.isZero(0.0) && std::is_sorted(f.jpvt.begin(), f.jpvt.end()));
            }
        }
    }
}

TYPED_TEST(QrTest, ChoosesThePivotsOfTheReference)
{
    for (const Content content : {Content::RANDOM, Content::GRADED, Content::LARGE}) {
        for (const Shape shape : SHAPES) {
            const MatrixXd A = makeMatrix(content, shape, this->precision);
            const Indices jpvt = factor<TypeParam>(A).jpvt, expected = pivotsOf(A);
            const int num = std::min(shape.m, shape.n);
            EXPECT_TRUE(std::equal(jpvt.begin(), jpvt.begin() + num, expected.begin())) << describe(content, shape);
        }
    }
}

TYPED_TEST(QrTest, EqualNormsKeepTheLowerIndex)
{
    struct PivotCase {
        const char* name;
        Eigen::Vector4d diagonal;
        Indices jpvt;
    };
    for (const PivotCase& c : {PivotCase{"allEqual", {3, 3, 3, 3}, {0, 1, 2, 3}},
                               PivotCase{"increasing", {1, 2, 3, 4}, {3, 2, 1, 0}},
                               PivotCase{"twoLargest", {1, 2, 2, 1}, {1, 2, 0, 3}},
                               PivotCase{"oneNotZero", {0, 0, -5, 0}, {2, 1, 0, 3}}}) {
        MatrixXd A = MatrixXd::Zero(5, 4);
        A.diagonal() = c.diagonal;
        EXPECT_EQ(factor<TypeParam>(A).jpvt, c.jpvt) << c.name;
    }
}

/// The Householder vector is the column times the reciprocal of its norm, or divided by it where the norm is tiny.
TYPED_TEST(QrTest, DividesOnlyByTinyNorms)
{
    using T = TypeParam;
    const bool isDouble = this->precision.isDouble;
    for (const double scale : {1.0, isDouble ? 1e-303 : 1e-24, isDouble ? 1e-306 : 1e-28}) {
        const std::vector<T> x = toArray<T>(makeRandom(40, 1, 7) * scale);
        const Factors f = factor<T>(toMatrix(x, 40, 1));
        const T norm = -static_cast<T>(f.R(0));
        const bool isDivided = norm * T(5e-20) == T(0);
        int differNum = 0;
        for (int i = 1; i < 40; ++i) {
            const T divided = x[std::size_t(i)] / norm;
            const T multiplied = x[std::size_t(i)] * (T(1) / norm);
            differNum += divided != multiplied ? 1 : 0;
            EXPECT_EQ(static_cast<T>(f.A(i)), isDivided ? divided : multiplied) << "scale " << scale << ", row " << i;
        }
        EXPECT_GT(differNum, 0) << "the data cannot tell";
    }
}

/// The rest of a column that is nearly parallel to the pivot has a norm that downdating cannot give.
TYPED_TEST(QrTest, RecomputesOnlyCancelledNorms)
{
    const double small = std::sqrt(this->precision.eps) / 10;
    for (std::uint32_t seed = 1; seed <= 40; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const MatrixXd basis = makeOrthonormal(7, 3, seed);
        const bool isFirst = seed % 2 == 0;
        const double rests[] = {small * (isFirst ? 3 : 1), small * 2};
        MatrixXd A(7, 3);
        A << 0.9 * basis.col(0) + rests[0] * basis.col(1), rests[1] * basis.col(2), basis.col(0);
        const Factors f = factor<TypeParam>(A);
        EXPECT_EQ(f.jpvt, (isFirst ? Indices{2, 0, 1} : Indices{2, 1, 0}));
        // The norm as last computed afresh, here of the column that was not chosen, is that of a rest.
        EXPECT_LE(std::abs(f.work(2) - std::min(rests[0], rests[1])), 20 * this->precision.eps);
    }
    MatrixXd A(3, 2);
    A << 8, 3, 0, 4, 0, 0;
    EXPECT_EQ(factor<TypeParam>(A).work(1), 5.0);        // downdated to 4, the whole column's norm stays
}

TYPED_TEST(QrTest, NotFinitePropagatesAndTerminates)
{
    for (const double value : {Limits<double>::quiet_NaN(), Limits<double>::infinity()}) {
        for (const Shape shape : {Shape{4, 3}, Shape{3, 4}, Shape{1, 2}, Shape{3, 1}}) {
            for (int at = 0; at < shape.m * shape.n; ++at) {
                MatrixXd A = makeMatrix(Content::RANDOM, shape, this->precision);
                A.data()[at] = value;
                const Factors f = factor<TypeParam>(A);
                EXPECT_TRUE(isPermutation(f.jpvt) && !(f.Q.allFinite() && f.triangle().allFinite()))
                    << describe(Content::RANDOM, shape) << ", " << value << " at " << at;
            }
        }
    }
}

TYPED_TEST(QrTest, KnownSizesGiveTheSameBits)
{
    const auto check = [this](auto m, auto n) {
        const MatrixXd A = makeMatrix(Content::GRADED, {m, n}, this->precision);
        const Factors known = factor<TypeParam>(A, m, n, true);
        const Factors atRunTime = factor<TypeParam>(A);
        EXPECT_TRUE(hasSameBits(known.Q, atRunTime.Q)) << int(m) << " x " << int(n);
        EXPECT_TRUE(hasSameBits(known.R, atRunTime.R)) << int(m) << " x " << int(n);
    };
    check(FixedSize<5>{}, FixedSize<4>{});
    check(FixedSize<7>{}, FixedSize<6>{});
    check(FixedSize<9>{}, FixedSize<8>{});
}

TYPED_TEST(QrTest, AppliesQToSeveralColumnsAsToOne)
{
    const Factors f = factor<TypeParam>(makeMatrix(Content::RANDOM, {9, 8}, this->precision));
    std::vector<TypeParam> A = toArray<TypeParam>(f.A);
    const std::vector<TypeParam> qraux = toArray<TypeParam>(f.qraux);
    for (int yNum = 1; yNum <= 9; ++yNum) {
        std::vector<TypeParam> together = toArray<TypeParam>(makeRandom(9, yNum, 11)), oneByOne = together;
        qrCompQy(Cache<TypeParam>(), 9, 8, A.data(), qraux.data(), together.data(), yNum);
        for (int j = 0; j < yNum; ++j) {
            qrCompQy(Cache<TypeParam>(), 9, 8, A.data(), qraux.data(), &oneByOne[std::size_t(9 * j)]);
        }
        EXPECT_EQ(together, oneByOne);
    }
}

TYPED_TEST(QrTest, ScalarOperationsOnExtremeValues)
{
    using T = TypeParam;
    const Cache<T> cache;
    const T large = Limits<T>::max() / T(2), small = Limits<T>::min(), nan = Limits<T>::quiet_NaN();
    const T root = std::sqrt(T(2));
    const T cases[][3] = {{0, 0, 0},    {-7, 0, 7},                  {0, -7, 7},         {-3, 4, 5},
                          {12, -5, 13}, {large, large, root * large}, {1, -large, large}, {small, small, root * small}};
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
        ~Counting() { ++num; }
        void compute() override {}
    };
    std::unique_ptr<DSPSFcnCache>(new Counting).reset();
    EXPECT_EQ(num, 1);
}

}  // namespace

// Fits: the transformation of exact points comes back, minimal and larger, what each step does with odd data, and TForm
// as a caller applies it.

#include "szelesttform_fit.h"

#include <array>
#include <numeric>

#include "element_types.h"
#include "point_sets.h"
#include "szelesttform_points.h"
#include "szelesttform_tform.h"
#include "test_matrices.h"

namespace {

using namespace testsupport;

/// Null vector of the constraints of n pairs, minimal or larger.
template <int SAMPLE_SIZE, typename Tc>
bool solve(std::vector<Tc> rows, std::int32_t n, Tc* h)
{
    if (n == SAMPLE_SIZE) {
        solveMinimalSet<SAMPLE_SIZE>(QRFactRealInBRealFltSFcnCache<Tc, Tc, Tc>(), rows.data(), h);
        return true;
    }
    std::vector<Tc> columns(rows.size()), s(std::size_t(2 * n) + 9), work(std::size_t(2 * n));
    return solveLargerSet<SAMPLE_SIZE, Tc>(n, {columns.data(), rows.data(), s.data(), work.data()}, h);
}

/// Fits the first n points, the last one first.
template <int SAMPLE_SIZE, typename Tc>
bool fit(const PointSet<Tc>& set, int n, Tc* t)
{
    const PointLayout layout = PointLayout::of(set.spec.isInRows, set.spec.ptsNum);
    const PointLayout layoutNorm = PointLayout::of(set.spec.isInRows, n);
    std::vector<std::uint32_t> samples(std::size_t(n), 0);
    std::iota(samples.rbegin(), samples.rend(), 0U);
    std::vector<Tc> norm1(2 * samples.size()), norm2(2 * samples.size());
    Normalization<Tc> norm;
    normPts(set.pts1.data(), layout, samples.data(), n, norm1.data(), layoutNorm, &norm.scale1, norm.cents1);
    normPts(set.pts2.data(), layout, samples.data(), n, norm2.data(), layoutNorm, &norm.scale2, norm.cents2);
    std::vector<Tc> constraint(std::size_t(2 * n) * (2 * SAMPLE_SIZE + 1));
    makeConstraintMatrix(norm1.data(), norm2.data(), layoutNorm, SAMPLE_SIZE, n, constraint.data());
    Tc h[2 * SAMPLE_SIZE + 1];
    if (!solve<SAMPLE_SIZE>(constraint, n, h)) return false;
    denormalizeTForm<SAMPLE_SIZE>(h, norm, t);
    return scaleToLastOne<2 * SAMPLE_SIZE + 1>(t);
}

constexpr std::integral_constant<int, 2> SIMILARITY;
constexpr std::integral_constant<int, 3> AFFINE;
constexpr std::integral_constant<int, 4> PROJECTIVE;

template <typename Test>
void forEachType(Test test)
{
    test(SIMILARITY);
    test(AFFINE);
    test(PROJECTIVE);
}

template <typename T>
class FitTest : public ::testing::Test {};
TYPED_TEST_SUITE(FitTest, CompTypes, CompName);

/// Pairs outside of the subset are wrong, so that a fit which reads them shows.
TYPED_TEST(FitTest, RecoversTheTransformationOfExactPairs)
{
    forEachType([](auto sampleSize) {
        constexpr int SAMPLE_SIZE = decltype(sampleSize)::value;
        for (int i = 0; i < 60; ++i) {
            const int n = std::array{SAMPLE_SIZE, SAMPLE_SIZE + 1, 30}[std::size_t(i % 3)];
            const PointSetSpec spec{std::uint32_t(i), SAMPLE_SIZE, i % 2 == 1, n + 3, 0.0, 3};
            SCOPED_TRACE(spec.describe());
            const PointSet<TypeParam> set = makePointSet<TypeParam>(spec);
            std::vector<TypeParam> t(9);
            ASSERT_TRUE(fit<SAMPLE_SIZE>(set, n, t.data()));
            EXPECT_EQ(t[2 * SAMPLE_SIZE], TypeParam(1));
            const Eigen::Matrix3d found = matrixOf(SAMPLE_SIZE, std::vector<double>(t.begin(), t.end()));
            for (int c = 0; c < 4; ++c) {
                const Eigen::Vector2d corner = FIELD * Eigen::Vector2d(c % 2, c / 2);
                EXPECT_LE((mapPoint(found, corner) - mapPoint(set.H, corner)).norm(),
                          100 * double(std::numeric_limits<TypeParam>::epsilon()) * FIELD);
            }
        }
    });
}

TYPED_TEST(FitTest, FitsSmallKnownSets)
{
    using T = TypeParam;
    using Values = std::vector<T>;
    const auto check = [](auto sampleSize, const Values& pts1, const Values& pts2, const Values& expected) {
        constexpr int SAMPLE_SIZE = decltype(sampleSize)::value;
        const int ptsNum = static_cast<int>(pts1.size() / 2);
        T t[9];
        ASSERT_TRUE(fit<SAMPLE_SIZE>(PointSet<T>{{0, SAMPLE_SIZE, false, ptsNum}, {}, pts1, pts2}, ptsNum, t));
        for (std::size_t i = 0; i < expected.size(); ++i) {
            EXPECT_LE(std::abs(t[i] - expected[i]), T(40) * std::numeric_limits<T>::epsilon()) << i;
        }
    };
    check(SIMILARITY, {0, 0, 1, 0}, {1, 1, 1, 2}, {0, -1, 1, 1, 1});
    check(AFFINE, {0, 0, 1, 0, 0, 1}, {2, 3, 3, 3, 2, 4}, {1, 0, 2, 0, 1, 3, 1});
    check(PROJECTIVE, {0, 0, 1, 0, 0, 1, 1, 1}, {0, 0, 0.5, 0, 0, 1, 0.5, 0.5}, {1, 0, 0, 0, 1, 0, 1, 0, 1});
    // Matches that coincide determine no scale; every point maps to them.
    check(SIMILARITY, {0, 0, 4, 1}, {7, 2, 7, 2}, {0, 0, 7, 2, 1});
    check(AFFINE, {0, 0, 4, 1, 1, 3, 2, 2}, {7, 2, 7, 2, 7, 2, 7, 2}, {0, 0, 7, 0, 0, 2, 1});
}

/// Also for constraints of lower rank: a null vector, the row of Q*Q' - I with the largest entry.
TYPED_TEST(FitTest, MinimalSetGivesANullVector)
{
    forEachType([precision = Precision::of<TypeParam>()](auto sampleSize) {
        constexpr int SAMPLE_SIZE = decltype(sampleSize)::value;
        constexpr int COL_NUM = 2 * SAMPLE_SIZE + 1;
        for (const Content content : {Content::RANDOM, Content::RANK_DEFICIENT, Content::REPEATED}) {
            SCOPED_TRACE(describe(content, {COL_NUM, COL_NUM - 1}));
            const MatrixXd At = makeMatrix(content, {COL_NUM, COL_NUM - 1}, precision);
            std::vector<TypeParam> array(COL_NUM);
            solve<SAMPLE_SIZE>(toArray<TypeParam>(At), SAMPLE_SIZE, array.data());
            const MatrixXd h = toMatrix(array, COL_NUM, 1);
            EXPECT_LE(normOf(At.transpose() * h), relativeTolerance(At, precision) * normOf(At));
            const double lowest = h.minCoeff();          // in its own column, minus the square of the row's norm
            EXPECT_LE(lowest, -1.0 / COL_NUM);
            EXPECT_LE(h.maxCoeff(), -lowest);
            EXPECT_LE(std::abs(h.squaredNorm() + lowest), 40 * precision.eps);
        }
    });
}

TYPED_TEST(FitTest, FailuresLeaveTheResultAlone)
{
    using T = TypeParam;
    const T nan = std::numeric_limits<T>::quiet_NaN();
    std::vector<T> constraint(70, T(1));
    constraint[33] = nan;
    T h[7] = {1, 2, 3, 4, 5, 6, 7};
    EXPECT_FALSE(solve<3>(constraint, 5, h));
    for (int i = 0; i < 7; ++i) EXPECT_EQ(h[i], T(i + 1));

    const auto scaled = [](std::vector<T> t, bool isScaled) {
        EXPECT_EQ(scaleToLastOne<5>(t.data()), isScaled) << t.back();
        return t;
    };
    EXPECT_EQ(scaled({2, -4, 0, 6, -8}, true), (std::vector<T>{-0.25, 0.5, 0, -0.75, 1}));
    EXPECT_EQ(scaled({2, -4, 1, 6, 0}, false), (std::vector<T>{2, -4, 1, 6, 0}));
    EXPECT_EQ(scaled({2, -4, 1, 6, -T(0)}, false), (std::vector<T>{2, -4, 1, 6, 0}));
    const std::vector<T> notNumbers = scaled({2, -4, 1, 6, nan}, true);
    for (std::size_t i = 0; i < 4; ++i) EXPECT_TRUE(std::isnan(notNumbers[i])) << i;
}

/// TForm acts on x, y from the left for points in columns, from the right for points in rows.
TEST(TFormTest, MapsPointsAsTheCompactTransformationDoes)
{
    const auto swapped = [](const Eigen::Vector2d& p) { return Eigen::Vector2d(p(1), p(0)); };
    for (const int sampleSize : {2, 3, 4}) {
        for (const bool isInRows : {false, true}) {
            SCOPED_TRACE("sampleSize " + std::to_string(sampleSize) + (isInRows ? ", rows" : ", columns"));
            SeededRandom random(17);
            const Eigen::Matrix3d H = makeTransformation(sampleSize, random);
            std::vector<double> tform(10, -77.0);
            writeTForm(sampleSize, isInRows, compactOf(sampleSize, H).data(), tform.data());
            const int size = sampleSize == 4 ? 3 : 2;
            EXPECT_EQ(tform[std::size_t(3 * size)], -77.0);
            MatrixXd A = toMatrix(tform, isInRows ? 3 : size, isInRows ? size : 3);
            if (isInRows) A.transposeInPlace();
            for (int i = 0; i < 4; ++i) {
                const Eigen::Vector2d xy = FIELD * Eigen::Vector2d(i % 2, i / 2);
                const Eigen::Vector2d expected = isInRows ? swapped(mapPoint(H, swapped(xy))) : mapPoint(H, xy);
                const MatrixXd mapped = A * Eigen::Vector3d(xy(0), xy(1), 1.0);
                const Eigen::Vector2d found = mapped.topRows(2) / (size == 3 ? mapped(2) : 1.0);
                EXPECT_LE((found - expected).norm(), 10 * FIELD * std::numeric_limits<double>::epsilon());
            }
        }
    }
}

}  // namespace

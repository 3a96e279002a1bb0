// Normalization of point subsets, and rows of the constraint matrix, for every pair of types.

#include "szelesttform_points.h"

#include "element_types.h"
#include "point_sets.h"

namespace {

using namespace testsupport;

constexpr int UNTOUCHED = -77;

template <typename Tc>
struct Normalized {
    std::vector<Tc> out;
    Tc scale = Tc(UNTOUCHED);
    Tc cents[2];
};

template <typename Tc, typename Ti>
Normalized<Tc> normalize(const std::vector<Ti>& points, bool isInRows, const std::vector<std::uint32_t>& samples)
{
    const auto n = static_cast<std::int32_t>(samples.size());
    Normalized<Tc> result;
    result.out.assign(2 * samples.size() + 1, Tc(UNTOUCHED));
    normPts(points.data(), PointLayout::of(isInRows, static_cast<std::int32_t>(points.size() / 2)), samples.data(), n,
            result.out.data(), PointLayout::of(isInRows, n), &result.scale, result.cents);
    EXPECT_EQ(result.out.back(), Tc(UNTOUCHED));
    result.out.pop_back();
    return result;
}

template <typename P>
class PointsTest : public ::testing::Test {};
TYPED_TEST_SUITE(PointsTest, EnginePairs, PairName);

/// (0,1), (4,1), (0,5), (4,5) in x, y, after a point that is not used: everything is exact but the scale.
TYPED_TEST(PointsTest, NormalizesTheFourCorners)
{
    using Ti = typename TypeParam::Ti;
    using Tc = typename TypeParam::Tc;
    for (const bool isInRows : {false, true}) {
        const std::vector<Ti> columns = {9, 9, 0, 1, 4, 1, 0, 5, 4, 5}, rows = {9, 0, 4, 0, 4, 9, 1, 1, 5, 5};
        const std::vector<Tc> outColumns = {-1, -1, 1, -1, -1, 1, 1, 1}, outRows = {-1, 1, -1, 1, -1, -1, 1, 1};
        const Normalized<Tc> result = normalize<Tc>(isInRows ? rows : columns, isInRows, {1, 2, 3, 4});
        const Tc tolerance = Tc(4) * std::numeric_limits<Tc>::epsilon();
        EXPECT_LE(std::abs(result.scale - Tc(0.5)), tolerance);
        EXPECT_EQ(result.cents[0], Tc(isInRows ? 3 : 2));
        EXPECT_EQ(result.cents[1], Tc(isInRows ? 2 : 3));
        for (std::size_t i = 0; i < 8; ++i) {
            EXPECT_LE(std::abs(result.out[i] - (isInRows ? outRows : outColumns)[i]), tolerance) << "element " << i;
        }
    }
}

/// Centroid 0, mean distance sqrt(2), out = scale * (point - cents); integer points as the same real points.
TYPED_TEST(PointsTest, NormalizesSubsets)
{
    using Ti = typename TypeParam::Ti;
    using Tc = typename TypeParam::Tc;
    const std::vector<std::uint32_t> samples = {7, 2, 19, 0, 11, 2, 16};
    const auto n = static_cast<int>(samples.size());
    for (const bool isInRows : {false, true}) {
        const PointSetSpec spec{5, 3, isInRows};
        SCOPED_TRACE(spec.describe());
        const std::vector<Ti> points = makePointSet<Ti>(spec).pts1;
        const Normalized<Tc> result = normalize<Tc>(points, isInRows, samples);
        const double tolerance = 10.0 * n * double(std::numeric_limits<Tc>::epsilon());
        const Eigen::Vector2d cents(double(result.cents[0]), double(result.cents[1]));
        Eigen::Vector2d sum(0.0, 0.0);
        double sumDis = 0.0;
        for (int i = 0; i < n; ++i) {
            const Eigen::Vector2d out = pointOf(result.out, isInRows, n, i);
            const auto sample = static_cast<int>(samples[std::size_t(i)]);
            const Eigen::Vector2d point = pointOf(points, isInRows, spec.ptsNum, sample);
            sum += out;
            sumDis += out.norm();
            EXPECT_LE((out - double(result.scale) * (point - cents)).norm(), tolerance) << "point " << i;
        }
        EXPECT_LE(sum.norm(), tolerance);
        EXPECT_LE(std::abs(sumDis / n - std::sqrt(2.0)), tolerance);
        EXPECT_EQ(result.out, normalize<Tc>(std::vector<Tc>(points.begin(), points.end()), isInRows, samples).out);
    }
}

TYPED_TEST(PointsTest, CoincidentPointsLeaveScaleAlone)
{
    using Tc = typename TypeParam::Tc;
    const std::vector<typename TypeParam::Ti> points = {3, 8, 5, 6, 3, 8};
    const Normalized<Tc> result = normalize<Tc>(points, false, {0, 2, 0, 2});
    EXPECT_EQ(result.scale, Tc(UNTOUCHED));
    EXPECT_EQ(result.out, std::vector<Tc>(8, Tc(0)));
}

/// Pairs (1,2) -> (3,4) and (5,6) -> (0,0) in x, y.
TYPED_TEST(PointsTest, WritesTheRowsOfEachType)
{
    using Ti = typename TypeParam::Ti;
    using Tc = typename TypeParam::Tc;
    struct RowsCase {
        int sampleSize;
        bool isInRows;
        std::vector<Tc> rows;
    };
    const RowsCase cases[] = {
        {2, false, {-2, 1, 0, -1, 4, 1, 2, 1, 0, -3, -6, 5, 0, -1, 0, 5, 6, 1, 0, 0}},
        {2, true, {-1, 2, 0, -1, 3, 2, 1, 1, 0, -4, -5, 6, 0, -1, 0, 6, 5, 1, 0, 0}},
        {3, false, {0, 0, 0, -1, -2, -1, 4, 1, 2, 1, 0, 0, 0, -3, 0, 0, 0, -5, -6, -1, 0, 5, 6, 1, 0, 0, 0, 0}},
        {3, true, {0, 0, 0, -2, -1, -1, 3, 2, 1, 1, 0, 0, 0, -4, 0, 0, 0, -6, -5, -1, 0, 6, 5, 1, 0, 0, 0, 0}},
        {4, false, {0, 0, 0, -1, -2, -1, 4, 8, 4, 1, 2, 1, 0, 0, 0, -3, -6, -3,
                    0, 0, 0, -5, -6, -1, 0, 0, 0, 5, 6, 1, 0, 0, 0, 0, 0, 0}},
        {4, true, {0, 0, 0, -2, -1, -1, 6, 3, 3, 2, 1, 1, 0, 0, 0, -8, -4, -4,
                   0, 0, 0, -6, -5, -1, 0, 0, 0, 6, 5, 1, 0, 0, 0, 0, 0, 0}},
    };
    for (const RowsCase& c : cases) {
        const std::vector<Ti> pts1 = c.isInRows ? std::vector<Ti>{1, 5, 2, 6} : std::vector<Ti>{1, 2, 5, 6};
        const std::vector<Ti> pts2 = c.isInRows ? std::vector<Ti>{3, 0, 4, 0} : std::vector<Ti>{3, 4, 0, 0};
        std::vector<Tc> out(c.rows.size() + 1, Tc(UNTOUCHED));
        makeConstraintMatrix(pts1.data(), pts2.data(), PointLayout::of(c.isInRows, 2), c.sampleSize, 2, out.data());
        EXPECT_EQ(out.back(), Tc(UNTOUCHED));
        out.pop_back();
        EXPECT_EQ(out, c.rows) << "sampleSize " << c.sampleSize << (c.isInRows ? ", rows" : ", columns");
    }
}

}  // namespace

// Scores of candidates: distances, truncated sums, order statistics, inliers, the loop number, conversion to integers.

#include "szelesttform_scoring.h"

#include <algorithm>
#include <array>
#include <limits>

#include "element_types.h"
#include "point_sets.h"

namespace {

using namespace testsupport;

constexpr int UNTOUCHED = -77;

template <typename T>
class ScoringTest : public ::testing::Test {
protected:
    static constexpr T NOT_A_NUMBER = std::numeric_limits<T>::quiet_NaN();
    static constexpr T INF = std::numeric_limits<T>::infinity();
};
TYPED_TEST_SUITE(ScoringTest, CompTypes, CompName);

/// A candidate and the constraints of all pairs.
template <int SAMPLE_SIZE, typename T>
struct Scene {
    static constexpr int COL_NUM = 2 * SAMPLE_SIZE + 1;
    PointSet<T> set;
    std::vector<T> constraint, h;

    explicit Scene(const PointSetSpec& spec) : set(makePointSet<T>(spec))
    {
        constraint.resize(std::size_t(2 * spec.ptsNum * COL_NUM));
        makeConstraintMatrix(set.pts1.data(), set.pts2.data(), PointLayout::of(spec.isInRows, spec.ptsNum), SAMPLE_SIZE,
                             spec.ptsNum, constraint.data());
        for (const double value : compactOf(SAMPLE_SIZE, set.H)) h.push_back(static_cast<T>(value));
    }

    std::vector<T> distances() const
    {
        std::vector<T> result(std::size_t(set.spec.ptsNum) + 1, T(UNTOUCHED));
        computeDistances<COL_NUM>(constraint.data(), set.spec.ptsNum, h.data(), result.data());
        EXPECT_EQ(result.back(), T(UNTOUCHED));
        return result;
    }

    /// Products of both rows with h, columns ascending, without a shortcut.
    T plainDistance(int i) const
    {
        T sum[2] = {T(0), T(0)};
        for (int k = 0; k < 2 * COL_NUM; ++k) {
            sum[k / COL_NUM] += constraint[std::size_t(2 * i * COL_NUM + k)] * h[std::size_t(k % COL_NUM)];
        }
        return sum[0] * sum[0] + sum[1] * sum[1];
    }
};

template <typename T>
bool hasEqualValue(T a, T b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

template <int SAMPLE_SIZE, typename T>
void checkDistances()
{
    for (const bool isInRows : {false, true}) {
        const PointSetSpec spec{23, SAMPLE_SIZE, isInRows, 40, 1.5, 12};
        SCOPED_TRACE(spec.describe());
        const Scene<SAMPLE_SIZE, T> scene(spec);
        const Eigen::Matrix3d H = matrixOf(SAMPLE_SIZE, std::vector<double>(scene.h.begin(), scene.h.end()));
        const std::vector<T> distances = scene.distances();
        const double error = 40.0 * double(std::numeric_limits<T>::epsilon()) * FIELD;  // of one coordinate
        for (int i = 0; i < spec.ptsNum; ++i) {
            const Eigen::Vector2d p1 = pointOf(scene.set.pts1, isInRows, spec.ptsNum, i);
            const Eigen::Vector2d p2 = pointOf(scene.set.pts2, isInRows, spec.ptsNum, i);
            const double w = H(2, 0) * p1(0) + H(2, 1) * p1(1) + 1.0;
            const double dis = w * (mapPoint(H, p1) - p2).norm();
            EXPECT_LE(std::abs(double(distances[std::size_t(i)]) - dis * dis), error * (2.0 * dis + error)) << i;
        }
        for (const T value : {T(0.25), T(0), std::numeric_limits<T>::quiet_NaN(), std::numeric_limits<T>::infinity()}) {
            for (std::size_t k = 0; k + 1 < scene.h.size(); ++k) {
                Scene<SAMPLE_SIZE, T> changed = scene;
                changed.h[k] = value;
                const std::vector<T> found = changed.distances();
                for (int i = 0; i < spec.ptsNum; ++i) {
                    const T expected = changed.plainDistance(i);
                    ASSERT_TRUE(hasEqualValue(found[std::size_t(i)], expected))
                        << found[std::size_t(i)] << ", expected " << expected << ": " << value << " at " << k;
                }
            }
        }
    }
}

TYPED_TEST(ScoringTest, DistancesAreThoseOfTheTransformation)
{
    checkDistances<2, TypeParam>();
    checkDistances<3, TypeParam>();
    checkDistances<4, TypeParam>();
}

TYPED_TEST(ScoringTest, ScoresAndListsInliersUpToTheThreshold)
{
    using T = TypeParam;
    const T above = std::nextafter(T(9), T(10));
    const T nan = this->NOT_A_NUMBER;
    struct ThresholdCase {
        const char* name;
        std::vector<T> distance;
        T disThr, inlierDis;
        std::vector<std::uint32_t> inliers;
    };
    const ThresholdCase cases[] = {
        {"mixed", {16, 1, 4, 100, 0, 3}, 9, 26, {1, 2, 4, 5}}, {"equal", {9, 8, 9}, 9, 26, {0, 1, 2}},
        {"justAbove", {above, above, 2}, 9, 20, {2}},          {"notANumber", {nan, 1, nan, 2}, 9, 21, {1, 3}},
        {"infinite", {this->INF, 1}, 9, 10, {1}},              {"zeroThreshold", {0, 1, 0, nan}, 0, 0, {0, 2}},
    };
    for (const ThresholdCase& c : cases) {
        SCOPED_TRACE(c.name);
        const auto ptsNum = static_cast<std::int32_t>(c.distance.size());
        EXPECT_EQ(sumTruncatedDistances(c.distance.data(), ptsNum, c.disThr), c.inlierDis);
        std::vector<std::uint32_t> inliers(c.distance.size() + 1, 77);
        const std::int32_t inlierNum = collectInliers(c.distance.data(), ptsNum, c.disThr, inliers.data());
        EXPECT_EQ(inliers.back(), 77U);
        inliers.resize(std::size_t(inlierNum));
        EXPECT_EQ(inliers, c.inliers);
    }
}

// ---- Order statistics

/// n values in one of six orders: random, few different ones, sorted, reversed, equal, a sawtooth.
template <typename T>
std::vector<T> makeValues(int order, int n, SeededRandom& random)
{
    std::vector<T> values;
    for (int i = 0; i < n; ++i) {
        const double any = random.uniform(0.0, 100.0);
        const double value[] = {any, std::floor(any / 25.0), double(i), double(-i), 5.0, double(i % 4)};
        values.push_back(static_cast<T>(value[order]));
    }
    return values;
}

/// selectKth on values between guards, smaller than all so that an upward scan goes on over them; the element for the
/// pivot stands behind the values, which are returned reordered.
template <typename T>
T select(std::vector<T>& values, std::int32_t k)
{
    const std::vector<T> guards(4, T(-1000));
    std::vector<T> a = guards;
    a.insert(a.end(), values.begin(), values.end());
    a.insert(a.end(), 5, T(-1000));
    const T kth = selectKth(a.data() + 4, static_cast<std::int32_t>(values.size()), k);
    EXPECT_TRUE(std::equal(guards.begin(), guards.end(), a.begin()));
    EXPECT_TRUE(std::equal(guards.begin(), guards.end(), a.end() - 4));
    std::copy(a.begin() + 4, a.end() - 5, values.begin());
    return kth;
}

TYPED_TEST(ScoringTest, SelectsTheKthSmallest)
{
    for (std::uint32_t seed = 1; seed <= 300; ++seed) {
        SeededRandom random(seed);
        const int n = static_cast<int>(seed % 25) + 1;
        std::vector<TypeParam> values = makeValues<TypeParam>(static_cast<int>(seed % 6), n, random);
        std::vector<TypeParam> sorted = values;
        for (int k = 0; k < n; ++k) {
            std::nth_element(sorted.begin(), sorted.begin() + k, sorted.end());
            EXPECT_EQ(select(values, k), sorted[std::size_t(k)]) << "seed " << seed << ", k " << k << " of " << n;
            EXPECT_TRUE(std::is_permutation(values.begin(), values.end(), sorted.begin())) << "seed " << seed;
            values = makeValues<TypeParam>(static_cast<int>(seed % 6), n, random);
            sorted = values;
        }
    }
}

TYPED_TEST(ScoringTest, SelectingAmongNotANumberEndsWithinBounds)
{
    const auto isNan = [](TypeParam value) { return value != value; };
    for (std::uint32_t seed = 1; seed <= 300; ++seed) {
        SeededRandom random(seed);
        const int n = static_cast<int>(seed % 25) + 1;
        std::vector<TypeParam> values = makeValues<TypeParam>(static_cast<int>(seed % 6), n, random);
        for (int i = 0; i < n; i += 1 + random.below(3)) values[std::size_t(random.below(n))] = this->NOT_A_NUMBER;
        const auto nanNum = std::count_if(values.begin(), values.end(), isNan);
        select(values, random.below(n));
        EXPECT_EQ(std::count_if(values.begin(), values.end(), isNan), nanNum) << "seed " << seed;
    }
}

TYPED_TEST(ScoringTest, MedianOfOddAndEvenNumbers)
{
    using Values = std::vector<TypeParam>;
    const std::pair<Values, TypeParam> cases[] = {
        {{3}, 3}, {{8, 3}, 5.5}, {{9, 1, 8, 3, 4}, 4}, {{9, 1, 8, 3, 4, 7}, 5.5}, {{2, 9, 2, 1, 9, 2}, 2}};
    for (const auto& [distance, median] : cases) {
        const Values before = distance;
        Values scratch(distance.size() + 1);
        EXPECT_EQ(medianDistance(distance.data(), static_cast<std::int32_t>(before.size()), scratch.data()), median);
        EXPECT_EQ(distance, before);
    }
}

// ---- Stopping

TYPED_TEST(ScoringTest, SamplingNumFollowsConfidenceAndShare)
{
    constexpr std::int32_t NO_NUM = std::numeric_limits<std::int32_t>::min();
    // 99.9999 is 99.99990082 in single precision; the logarithm of the rest, 1e-6, is taken in double all the same.
    const std::int32_t almostSure = std::is_same_v<TypeParam, double> ? 1027 : 1028;
    struct NumCase {
        const char* name;
        double confidence;
        int inlierNum, ptsNum, sampleSize;
        std::int32_t loopNum;
    };
    const NumCase cases[] = {
        {"projectiveHalf", 99, 50, 100, 4, 72},    {"similarityHalf", 99, 50, 100, 2, 17},
        {"affineMost", 95, 70, 100, 3, 8},         {"affineEasy", 50, 80, 100, 3, 1},
        {"almostSure", 99.9999, 34, 100, 4, almostSure}, {"allInliers", 99, 100, 100, 4, 0},
        {"noInlier", 99, 0, 100, 4, NO_NUM},       {"sure", 100, 50, 100, 4, NO_NUM},
        {"sureOfAll", 100, 100, 100, 4, NO_NUM},   {"noConfidence", 0, 50, 100, 4, 0},
        {"nothing", 0, 0, 100, 4, NO_NUM},         {"beyondInt32", 99, 1, 1000, 4, NO_NUM}};
    for (const NumCase& c : cases) {
        EXPECT_EQ(samplingNumFor(static_cast<TypeParam>(c.confidence), c.inlierNum, c.ptsNum, c.sampleSize), c.loopNum)
            << c.name;
    }
}

/// 7 * 0.01 * 100 is a little above 7 in double and would be 7 in single precision.
TYPED_TEST(ScoringTest, PercentageIsReachedInDouble)
{
    struct PercentageCase {
        TypeParam percentage;
        int inlierNum, ptsNum;
        bool isReached;
    };
    for (const PercentageCase& c : {PercentageCase{90, 90, 100, true}, {90, 89, 100, false}, {0, 0, 100, true},
                                    {100, 6, 6, true}, {50, 3, 7, false}, {50, 4, 7, true}, {7, 7, 100, false}}) {
        EXPECT_EQ(reachesPercentage(c.inlierNum, c.ptsNum, c.percentage), c.isReached)
            << c.percentage << " percent, " << c.inlierNum << " of " << c.ptsNum;
    }
}

template <typename Int, typename Real, std::size_t N>
constexpr std::array<Int, N> truncateAll(const std::array<Real, N>& values)
{
    std::array<Int, N> result{};
    for (std::size_t i = 0; i < N; ++i) result[i] = truncateTo<Int>(values[i]);
    return result;
}

template <typename Int, typename Real>
void checkTruncation()
{
    using Limits = std::numeric_limits<Real>;
    constexpr Int MIN = std::numeric_limits<Int>::min();
    constexpr Real BORDER = -static_cast<Real>(MIN);     // one above the largest integer
    constexpr Real INSIDE = BORDER - BORDER / 2 * Limits::epsilon();
    constexpr Real BELOW = -BORDER - BORDER * Limits::epsilon();
    constexpr Real INF = Limits::infinity();
    constexpr Real NOT_A_NUMBER = Limits::quiet_NaN();
    constexpr std::array<Real, 12> VALUES = {Real(0.99), Real(-0.99), Real(2.5), Real(-2.5), INSIDE, -INSIDE,
                                             BORDER,     -BORDER,     BELOW,     INF,        -INF,   NOT_A_NUMBER};
    // In a constant expression: an undefined conversion does not compile.
    constexpr std::array<Int, 12> FOUND = truncateAll<Int>(VALUES);
    constexpr Int LARGEST = static_cast<Int>(INSIDE);
    EXPECT_EQ(FOUND, (std::array<Int, 12>{0, 0, 2, -2, LARGEST, -LARGEST, MIN, MIN, MIN, MIN, MIN, MIN}));
}

TYPED_TEST(ScoringTest, TruncationIsDefinedForEveryValue)
{
    checkTruncation<std::int32_t, TypeParam>();
    checkTruncation<std::int64_t, TypeParam>();
}

}  // namespace

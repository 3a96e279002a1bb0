// The runtime's decomposition gives the bits of the library's, and knows finite values by their words.
#include "svdc.h"
#include "zelsvd_rt.h"

#include "element_types.h"
#include "test_matrices.h"

#include <cstring>
#include <limits>

namespace {

using namespace testsupport;

std::int32_t runtimeSvd(double* X, std::uint32_t n, std::int32_t p, double* s, double* e, double* work, double* U, double* V)
{
    return NQZEL_SVD_D(X, n, p, s, e, work, U, V, 1);
}
std::int32_t runtimeSvd(float* X, std::uint32_t n, std::int32_t p, float* s, float* e, float* work, float* U, float* V)
{
    return NQZEL_SVD_R(X, n, p, s, e, work, U, V, 1);
}

bool isFiniteByWords(double value) { return NQZEL_IS_FINITE_D(value) != 0; }
bool isFiniteByWords(float value) { return NQZEL_IS_FINITE_R(value) != 0; }

/// Every array of a decomposition, one after the other.
template <typename T>
struct Arrays {
    explicit Arrays(const MatrixXd& matrix) : n(std::size_t(matrix.rows())), p(std::size_t(matrix.cols()))
    {
        values = toArray<T>(matrix);
        values.resize(size(), T(-77));
    }
    std::size_t size() const { return n * p + 2 * p + n + n * n + p * p; }
    T* X() { return values.data(); }
    T* s() { return X() + n * p; }
    T* e() { return s() + p; }
    T* work() { return e() + p; }
    T* U() { return work() + n; }
    T* V() { return U() + n * n; }

    std::size_t n, p;
    std::vector<T> values;
};

/// @return the status
template <typename T>
std::int32_t expectSameBits(const MatrixXd& X)
{
    Arrays<T> expected(X), got(X);
    const auto n = std::int32_t(X.rows()), p = std::int32_t(X.cols());
    const std::int32_t status = svdc(expected.X(), n, p, expected.s(), expected.e(), expected.work(), expected.U(), expected.V(), true);
    EXPECT_EQ(runtimeSvd(got.X(), std::uint32_t(n), p, got.s(), got.e(), got.work(), got.U(), got.V()), status);
    EXPECT_EQ(std::memcmp(got.X(), expected.X(), got.size() * sizeof(T)), 0);
    return status;
}

template <typename T>
class RuntimeSvdTest : public ::testing::Test {};
TYPED_TEST_SUITE(RuntimeSvdTest, CompTypes, CompName);

TYPED_TEST(RuntimeSvdTest, GivesTheBitsOfTheLibrary)
{
    for (const Content content : {Content::RANDOM, Content::ZERO, Content::RANK_DEFICIENT, Content::GRADED, Content::REPEATED,
                                  Content::TINY, Content::SUBNORMAL, Content::LARGE}) {
        for (const Shape shape : {Shape{6, 5}, Shape{100, 9}, Shape{3, 3}, Shape{3, 8}, Shape{5, 1}, Shape{1, 2}}) {
            SCOPED_TRACE(describe(content, shape));
            expectSameBits<TypeParam>(makeMatrix(content, shape, Precision::of<TypeParam>()));
        }
    }
}

TYPED_TEST(RuntimeSvdTest, RefusesWhatTheLibraryRefuses)
{
    using Limits = std::numeric_limits<double>;
    for (const double value : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity()}) {
        MatrixXd X = makeMatrix(Content::RANDOM, {8, 5}, Precision::of<TypeParam>());
        X(3, 2) = value;
        EXPECT_NE(expectSameBits<TypeParam>(X), 0) << value;
    }
}

template <typename T, typename Word>
T fromBits(Word bits)
{
    T value;
    static_assert(sizeof(value) == sizeof(bits));
    std::memcpy(&value, &bits, sizeof(value));
    return value;
}

TYPED_TEST(RuntimeSvdTest, KnowsFiniteValues)
{
    using Limits = std::numeric_limits<TypeParam>;
    for (const TypeParam value : {TypeParam(0), TypeParam(-0.0), TypeParam(1), Limits::denorm_min(), Limits::min(), Limits::max(),
                                  Limits::lowest()})
        EXPECT_TRUE(isFiniteByWords(value)) << value;
    for (const TypeParam value : {Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN(), -Limits::quiet_NaN()})
        EXPECT_FALSE(isFiniteByWords(value)) << value;
}

/// Values whose two words would answer differently if they were exchanged.
TEST(RuntimeFiniteTest, TakesTheMoreSignificantWord)
{
    EXPECT_TRUE(isFiniteByWords(fromBits<double>(std::uint64_t(0x000000007FF00000))));
    EXPECT_TRUE(isFiniteByWords(fromBits<double>(std::uint64_t(0x3FF00000FFFFFFFF))));
    EXPECT_FALSE(isFiniteByWords(fromBits<double>(std::uint64_t(0x7FF0000000000001))));
}

}  // namespace

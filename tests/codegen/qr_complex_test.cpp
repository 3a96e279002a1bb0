// The generated QR functions for complex elements: the real ones for real data, and unitary factors for complex data.
#include "qr_functions.h"

#include "element_types.h"
#include "qr_factors.h"

#include <Eigen/QR>

namespace {

using namespace codegentest;
using namespace testsupport;

using Complex = std::complex<double>;
using Eigen::MatrixXcd;

constexpr Content CONTENTS[] = {Content::RANDOM, Content::ZERO, Content::RANK_DEFICIENT, Content::GRADED,
                                Content::TINY,   Content::ONES, Content::SUBNORMAL,      Content::NEARLY_PARALLEL};

template <typename T>
std::vector<std::complex<T>> toComplexArray(const MatrixXcd& A)
{
    std::vector<std::complex<T>> array;
    for (Eigen::Index i = 0; i < A.size(); ++i)
        array.emplace_back(static_cast<T>(A.data()[i].real()), static_cast<T>(A.data()[i].imag()));
    return array;
}

template <typename T>
MatrixXcd toComplexMatrix(const std::vector<std::complex<T>>& array, int m, int n)
{
    MatrixXcd A(m, n);
    for (Eigen::Index i = 0; i < A.size(); ++i)
        A.data()[i] = Complex(array[std::size_t(i)]);
    return A;
}

/// Values as complex numbers.
template <typename T>
std::vector<std::complex<T>> widened(const std::vector<T>& values)
{
    return {values.begin(), values.end()};
}

template <typename T>
class GeneratedComplexQrTest : public ::testing::Test {
protected:
    using Element = std::complex<T>;
    const Precision precision = Precision::of<T>();

    QreArrays<Element> factor(const MatrixXcd& A, bool isEconomy) const
    {
        QreArrays<Element> arrays(toComplexArray<T>(A), std::int32_t(A.rows()), std::int32_t(A.cols()), isEconomy,
                                  Element(UNTOUCHED));
        arrays.factor();
        return arrays;
    }
    MatrixXcd makeComplex(Content content, Shape shape, bool hasRealParts = true) const
    {
        const MatrixXd imagParts = makeMatrix(content, {shape.n, shape.m}, precision).transpose();
        return (hasRealParts ? 1.0 : 0.0) * makeMatrix(content, shape, precision) + Complex(0, 1) * imagParts;
    }
};
TYPED_TEST_SUITE(GeneratedComplexQrTest, CompTypes, CompName);

TYPED_TEST(GeneratedComplexQrTest, RealDataGivesTheBitsOfTheRealForm)
{
    for (const Content content : CONTENTS) {
        for (const Shape shape : SHAPES) {
            for (const bool isEconomy : {true, false}) {
                SCOPED_TRACE(describe(content, shape) + (isEconomy ? ", economy" : ", full"));
                const MatrixXd A = makeMatrix(content, shape, this->precision);
                QreArrays<TypeParam> expected(toArray<TypeParam>(A), shape.m, shape.n, isEconomy, TypeParam(UNTOUCHED));
                expected.factor();
                auto got = this->factor(A, isEconomy);
                EXPECT_TRUE(got.Q == widened(expected.Q) && got.A == widened(expected.A) && got.R == widened(expected.R));
                EXPECT_TRUE(got.qraux == widened(expected.qraux) && got.jpvt == expected.jpvt && got.E == expected.E);
                if (shape.m <= shape.n || !isEconomy)    // R is in the place of the Householder vectors
                    continue;
                std::vector<TypeParam> x = toArray<TypeParam>(makeRandom(shape.m, 1, 3));
                auto complexX = widened(x);
                GENERATED<TypeParam>.sl2(raw(expected.A), raw(expected.qraux), raw(x), shape.m, shape.n);
                GENERATED<std::complex<TypeParam>>.sl2(raw(got.A), raw(got.qraux), raw(complexX), shape.m, shape.n);
                if (toMatrix(x, shape.m, 1).allFinite()) {
                    EXPECT_EQ(complexX, widened(x));
                }
            }
        }
    }
}

/// Q'*Q = I, A*E = Q*R, R triangular with a decreasing diagonal.
template <typename T>
void checkUnitaryFactors(const MatrixXcd& A, const QreArrays<T>& a, const Precision& precision)
{
    const double tolerance = 4 * relativeTolerance(A.cwiseAbs(), precision), norm = normOf(A.cwiseAbs());
    const MatrixXcd Q = toComplexMatrix(a.Q, a.m, a.q);
    EXPECT_LE(MatrixXcd(Q.adjoint() * Q - MatrixXcd::Identity(a.q, a.q)).cwiseAbs().maxCoeff(), tolerance);

    const MatrixXcd R = toComplexMatrix(a.triangle(), a.isEconomy ? a.q : a.m, a.n);
    EXPECT_TRUE(MatrixXcd(R.triangularView<Eigen::StrictlyLower>()).isZero(0.0));
    ASSERT_TRUE(isPermutation(a.jpvt));
    MatrixXcd AE = A;
    for (int k = 0; k < a.n; ++k)
        AE.col(k) = A.col(a.jpvt[std::size_t(k)]);
    EXPECT_LE(normOf((AE - Q * R).cwiseAbs()), tolerance * norm);
    for (int k = 0; k + 1 < std::min(a.m, a.n); ++k)
        EXPECT_GE(std::abs(R(k, k)), std::abs(R(k + 1, k + 1)) * 0.95 - tolerance * norm) << "diagonal element " << k;
}

TYPED_TEST(GeneratedComplexQrTest, ComplexDataGivesUnitaryFactors)
{
    for (const Content content : CONTENTS) {
        for (const Shape shape : SHAPES) {
            for (const bool isEconomy : {true, false}) {
                SCOPED_TRACE(describe(content, shape) + (isEconomy ? ", economy" : ", full"));
                for (const bool hasRealParts : {true, false}) {
                    const MatrixXcd A = this->makeComplex(content, shape, hasRealParts);
                    checkUnitaryFactors(A, this->factor(A, isEconomy), this->precision);
                }
            }
        }
    }
}

TYPED_TEST(GeneratedComplexQrTest, SolvesLeastSquares)
{
    for (const Shape shape : {Shape{9, 8}, Shape{12, 7}, Shape{6, 1}}) {
        SCOPED_TRACE(describe(Content::RANDOM, shape));
        const MatrixXcd A = this->makeComplex(Content::RANDOM, shape), b = this->makeComplex(Content::RANDOM, {shape.m, 1});
        auto a = this->factor(A, true);
        auto x = toComplexArray<TypeParam>(b);
        GENERATED<std::complex<TypeParam>>.sl2(raw(a.A), raw(a.qraux), raw(x), a.m, a.n);
        const MatrixXcd reference = A.colPivHouseholderQr().solve(b);
        for (int k = 0; k < shape.n; ++k)
            EXPECT_LE(std::abs(Complex(x[std::size_t(k)]) - reference(a.jpvt[std::size_t(k)])),
                      relativeTolerance(A.cwiseAbs(), this->precision) * 100 * normOf(reference.cwiseAbs()));
    }
}

/// A real factorization treats the real and the imaginary part of a complex vector alike.
TEST(GeneratedMixedQrTest, RealFactorsOnAComplexVector)
{
    const Shape shape = {9, 8};
    QreArrays<double> a(toArray<double>(makeRandom(shape.m, shape.n, 1)), shape.m, shape.n, true, 0.0);
    a.factor();
    std::vector<double> re = toArray<double>(makeRandom(shape.m, 1, 2)), im = toArray<double>(makeRandom(shape.m, 1, 3));
    std::vector<Complex> b;
    for (std::size_t i = 0; i < re.size(); ++i)
        b.emplace_back(re[i], im[i]);
    qr_cdouble_QRSL2_Cindouble(raw(a.A), raw(a.qraux), raw(b), shape.m, shape.n);
    for (std::vector<double>* const part : {&re, &im})
        GENERATED<double>.sl2(raw(a.A), raw(a.qraux), raw(*part), shape.m, shape.n);
    for (std::size_t i = 0; i < b.size(); ++i)
        EXPECT_EQ(b[i], Complex(re[i], im[i])) << i;
}

}  // namespace

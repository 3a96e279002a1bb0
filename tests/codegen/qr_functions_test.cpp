// The generated QR functions for real elements: against the kernel to the bit, and by the properties of their results.
#include "qr_functions.h"

#include "blockhost/ir/model.h"
#include "dspqrfact.h"
#include "element_types.h"
#include "qr_factors.h"

#include <Eigen/QR>

#include <map>
#include <numeric>
#include <string>

namespace {

using namespace codegentest;
using namespace testsupport;

constexpr Content CONTENTS[] = {Content::RANDOM, Content::ZERO,     Content::ONES, Content::RANK_DEFICIENT,
                                Content::GRADED, Content::REPEATED, Content::TINY, Content::NEARLY_PARALLEL,
                                Content::LARGE,  Content::SUBNORMAL, Content::ZERO_COLUMNS};

template <typename T>
using Cache = QRFactRealInBRealFltSFcnCache<T, T, T>;

template <typename T>
QreArrays<T> arraysOf(const MatrixXd& A, bool isEconomy)
{
    return {toArray<T>(A), std::int32_t(A.rows()), std::int32_t(A.cols()), isEconomy, T(UNTOUCHED)};
}

template <typename T>
QreArrays<T> factor(const MatrixXd& A, bool isEconomy = true)
{
    QreArrays<T> arrays = arraysOf<T>(A, isEconomy);
    arrays.factor();
    return arrays;
}

template <typename T>
QreArrays<T> factorByKernel(const MatrixXd& A, bool isEconomy)
{
    QreArrays<T> a = arraysOf<T>(A, isEconomy);
    qrFactor(Cache<T>(), a.m, a.n, a.Q.data(), a.A.data(), a.E.data(), a.qraux.data(),
             a.work.data(), a.jpvt.data(), a.R.data(), isEconomy);
    return a;
}

template <typename T>
Factors factorsOf(const QreArrays<T>& a)
{
    return {toMatrix(a.Q, a.m, a.q),      toMatrix(a.A, a.m, a.n),    toMatrix(a.R, a.n, a.n), toMatrix(a.E, a.n, 1),
            toMatrix(a.qraux, a.n, 1), toMatrix(a.work, a.n, 1), a.jpvt,                a.isEconomy && a.m > a.n};
}

template <typename T>
class GeneratedQrTest : public ::testing::Test {
protected:
    const Precision precision = Precision::of<T>();

    /// Runs a check for every content and shape.
    template <typename Check>
    void forEveryMatrix(Check check)
    {
        for (const Content content : CONTENTS) {
            for (const Shape shape : SHAPES) {
                SCOPED_TRACE(describe(content, shape));
                check(content, makeMatrix(content, shape, precision));
            }
        }
    }
};
TYPED_TEST_SUITE(GeneratedQrTest, CompTypes, CompName);

TYPED_TEST(GeneratedQrTest, NormIsTheKernelsToTheBit)
{
    this->forEveryMatrix([](Content, const MatrixXd& A) {
        std::vector<TypeParam> v = toArray<TypeParam>(A);
        TypeParam norm = -1;
        GENERATED<TypeParam>.norm(v.data(), std::int32_t(v.size()), &norm);
        EXPECT_EQ(norm, qrdetail::runningNorm(Cache<TypeParam>(), v.data(), std::int32_t(v.size())));
        GENERATED<TypeParam>.norm(v.data(), 0, &norm);
        EXPECT_EQ(norm, TypeParam(0));
    });
}

TYPED_TEST(GeneratedQrTest, AppliesQToTheBit)
{
    const Cache<TypeParam> cache;
    this->forEveryMatrix([&cache](Content, const MatrixXd& matrix) {
        QreArrays<TypeParam> a = arraysOf<TypeParam>(matrix, true);
        qrdc(cache, a.m, a.n, a.A.data(), a.qraux.data(), a.jpvt.data(), a.work.data());
        const std::vector<TypeParam> before = a.A;
        for (const std::int32_t k : {1, a.n}) {
            std::vector<TypeParam> expected = toArray<TypeParam>(makeRandom(a.m, 1, 5)), y = expected;
            qrCompQy(cache, a.m, k, a.A.data(), a.qraux.data(), expected.data());
            GENERATED<TypeParam>.sl1(a.A.data(), a.qraux.data(), y.data(), a.m, k);
            EXPECT_EQ(y, expected) << "k = " << k;
            EXPECT_EQ(a.A, before);
        }
    });
}

/// The sign step differs from the kernel's by rounding. Up to the first column where it does all is equal to the bit.
TYPED_TEST(GeneratedQrTest, FactorsAsTheKernelUpToTheSignStep)
{
    std::map<bool, int> num;
    this->forEveryMatrix([this, &num](Content, const MatrixXd& A) {
        for (const bool isEconomy : {true, false}) {
            const QreArrays<TypeParam> got = factor<TypeParam>(A, isEconomy), want = factorByKernel<TypeParam>(A, isEconomy);
            const MatrixXd R = toMatrix(got.triangle(), isEconomy ? got.q : got.m, got.n);
            const MatrixXd kernelR = toMatrix(want.triangle(), isEconomy ? got.q : got.m, got.n);
            Eigen::Index l = 0;
            while (l < got.q && l < got.n && R(l, l) == kernelR(l, l))
                ++l;
            EXPECT_TRUE(hasSameBits(R.leftCols(l), kernelR.leftCols(l)));
            const bool isEqual = l == std::min(got.m, got.n);
            ++num[isEqual];
            if (isEqual) {
                EXPECT_TRUE(got.Q == want.Q && got.A == want.A && got.R == want.R && got.qraux == want.qraux);
                EXPECT_TRUE(got.work == want.work && got.jpvt == want.jpvt && got.E == want.E);
            } else {
                const double unit = std::abs(kernelR(l, l)) * this->precision.eps + this->precision.denormMin;
                EXPECT_LE(std::abs(R(l, l) - kernelR(l, l)), 2 * unit);
            }
        }
    });
    EXPECT_GE(num[true], 60);
    EXPECT_GE(num[false], 1) << "no matrix shows the difference";
}

TYPED_TEST(GeneratedQrTest, FactorsEverySituation)
{
    this->forEveryMatrix([this](Content content, const MatrixXd& A) {
        if (content == Content::ONES)                    // rests shrink to subnormal numbers, which lack digits
            return;
        for (const bool isEconomy : {true, false}) {
            const Factors f = factorsOf(factor<TypeParam>(A, isEconomy));
            checkFactors(A, f, this->precision);
            if (content == Content::ZERO) {
                EXPECT_TRUE(f.Q.isIdentity(0.0) && f.triangle().isZero(0.0) && f.qraux.isZero(0.0));
            }
        }
    });
}

/// Columns marked for an end are no pivots and have no norms.
TYPED_TEST(GeneratedQrTest, MarkedColumnsKeepTheirEnds)
{
    constexpr int LARGE = 77;
    struct MarksCase { const char* name; Shape shape; Indices marks, first, last; };
    const MarksCase cases[] = {{"front", {6, 4}, {0, 0, 1, 0}, {2}, {}},
                               {"back", {6, 4}, {-1, 0, 0, 0}, {}, {0}},
                               {"both", {7, 6}, {0, -3, 2, 0, -1, 1}, {2, 5}, {4, 1}},
                               {"backBeforeFront", {5, 3}, {-1, 0, 1}, {2}, {0}},
                               {"allFront", {4, 3}, {1, 1, 1}, {0, 1, 2}, {}},
                               {"allBack", {4, 3}, {-1, -1, -1}, {}, {0, 1, 2}},
                               {"moreMarksThanRows", {2, 5}, {0, 1, 1, -1, 1}, {1, 2, 4}, {3}}};
    for (const MarksCase& c : cases) {
        SCOPED_TRACE(c.name);
        const MatrixXd A = makeMatrix(Content::RANDOM, c.shape, this->precision);
        QreArrays<TypeParam> arrays = arraysOf<TypeParam>(A, true);
        arrays.jpvt = c.marks;
        std::iota(arrays.qraux.begin(), arrays.qraux.end(), TypeParam(LARGE));
        arrays.factor();
        const Factors f = factorsOf(arrays);
        checkProduct(A, f, this->precision);
        EXPECT_EQ(Indices(f.jpvt.begin(), f.jpvt.begin() + std::ptrdiff_t(c.first.size())), c.first);
        EXPECT_EQ(Indices(f.jpvt.end() - std::ptrdiff_t(c.last.size()), f.jpvt.end()), c.last);
        const int firstFree = int(c.first.size()), endFree = c.shape.n - int(c.last.size());
        for (int k = c.shape.m; k < c.shape.n; ++k)
            EXPECT_EQ(f.qraux(k) == LARGE + k, k < firstFree || k >= endFree) << "column " << k;
        for (int k = firstFree; k + 1 < std::min(c.shape.m, endFree); ++k)
            EXPECT_GE(std::abs(f.triangle()(k, k)), std::abs(f.triangle()(k + 1, k + 1))) << "diagonal element " << k;
    }
}

TYPED_TEST(GeneratedQrTest, NotFinitePropagatesAndTerminates)
{
    using Limits = std::numeric_limits<double>;
    for (const double value : {Limits::quiet_NaN(), Limits::infinity()}) {
        for (const Shape shape : {Shape{4, 3}, Shape{3, 4}, Shape{1, 2}, Shape{3, 1}}) {
            MatrixXd A = makeMatrix(Content::RANDOM, shape, this->precision);
            for (int at = 0; at < shape.m * shape.n; ++at) {
                MatrixXd spoilt = A;
                spoilt.data()[at] = value;
                const Factors f = factorsOf(factor<TypeParam>(spoilt));
                EXPECT_TRUE(isPermutation(f.jpvt) && !(f.Q.allFinite() && f.triangle().allFinite()))
                    << describe(Content::RANDOM, shape) << ", " << value << " at " << at;
            }
        }
    }
}

TYPED_TEST(GeneratedQrTest, SkipsTransformationsThatAreNone)
{
    using Values = std::vector<TypeParam>;
    Values qr = {1, 2, 3, 4}, y = {5, 6}, aux = {0, TypeParam(1.5)};
    GENERATED<TypeParam>.compQy(qr.data(), aux.data(), y.data(), 2, 0);
    GENERATED<TypeParam>.sl1(qr.data(), aux.data(), y.data(), 2, 2);
    GENERATED<TypeParam>.sl1(qr.data(), &aux[1], y.data(), 1, 1);    // the last row has none, whatever stands in aux
    EXPECT_EQ(y, (Values{5, 6}));
    EXPECT_EQ(qr, (Values{1, 2, 3, 4}));
}

TYPED_TEST(GeneratedQrTest, SolvesLeastSquares)
{
    for (const Shape shape : {Shape{9, 8}, Shape{12, 7}, Shape{5, 5}, Shape{6, 1}, Shape{2, 2}, Shape{1, 1}}) {
        SCOPED_TRACE(describe(Content::RANDOM, shape));
        const MatrixXd A = makeMatrix(Content::RANDOM, shape, this->precision), b = makeRandom(shape.m, 1, 3);
        QreArrays<TypeParam> a = arraysOf<TypeParam>(A, true);
        qrdc(Cache<TypeParam>(), a.m, a.n, a.A.data(), a.qraux.data(), a.jpvt.data(), a.work.data());
        std::vector<TypeParam> x = toArray<TypeParam>(b);
        GENERATED<TypeParam>.sl2(a.A.data(), a.qraux.data(), x.data(), a.m, a.n);
        const MatrixXd reference = A.colPivHouseholderQr().solve(toMatrix(toArray<TypeParam>(b), shape.m, 1));
        for (int k = 0; k < shape.n; ++k)
            EXPECT_NEAR(double(x[std::size_t(k)]), reference(a.jpvt[std::size_t(k)]),
                        relativeTolerance(A, this->precision) * 100 * normOf(reference));
    }
}

/// Upper triangles without transformations: Q is I.
TYPED_TEST(GeneratedQrTest, BackSubstitutionStopsAtAZeroPivot)
{
    struct PivotCase { const char* name; std::vector<TypeParam> R, b, x; };
    const PivotCase cases[] = {{"regular", {2, 0, 3, 4}, {8, 8}, {1, 2}},
                               {"last", {2, 0, 3, 0}, {8, 8}, {8, 8}},
                               {"first", {0, 0, 3, 4}, {8, 8}, {2, 2}},
                               {"oneRow", {2}, {8}, {4}},
                               {"oneRowZero", {0}, {8}, {8}}};
    for (PivotCase c : cases) {
        std::vector<TypeParam> aux(c.b.size(), TypeParam(0));
        aux.back() = TypeParam(1.5);                     // of the last row: no transformation
        const auto n = std::int32_t(c.b.size());
        GENERATED<TypeParam>.sl2(c.R.data(), aux.data(), c.b.data(), n, n);
        EXPECT_EQ(c.b, c.x) << c.name;
    }
}

// ---- What the generators say about the functions

TEST(QrGeneratorsTest, OneFunctionForEachNameInAModel)
{
    blockhost::ir::Model model;
    CG::Cfg caller(model.module, "caller");
    for (const CG::Type* const type : {CG::doubleT(), CG::singleT(), CG::doubleT()})
        QRFactQREGen(&caller, type, true).findOrCreateFcn();
    const CG::Type* const complexD = CG::complexT(CG::doubleT());
    QRFactQRSL2Gen(&caller, complexD, false, complexD, false).findOrCreateFcn();
    QRFactQRSL2Gen(&caller, complexD, false, CG::doubleT(), true).findOrCreateFcn();
    std::vector<std::string> names;
    for (const auto& fcn : model.module.fcns)
        names.push_back(fcn->name);
    const std::vector<std::string> expected = {
        "QRV2Norm_double", "QRDC_double", "QRCompQy_double", "QRSL1_double", "QRE_double",
        "QRV2Norm_single", "QRDC_single", "QRCompQy_single", "QRSL1_single", "QRE_single",
        "QRCompQy_CinCoutdouble", "QRSL2_CinCoutdouble", "QRCompQy_Cindouble", "QRSL2_Cindouble"};
    EXPECT_EQ(names, expected);
}

TEST(QrGeneratorsTest, NoInputBeyondTheLast)
{
    blockhost::ir::Model model;
    CG::Cfg caller(model.module, "caller");
    const QRFactQREGen qre(&caller, CG::staticUnknownMatrixT(CG::singleT()), true);
    EXPECT_EQ(qre.getInputType(10), nullptr);
    EXPECT_EQ(qre.getInputType(-1), nullptr);
    EXPECT_EQ(qre.getInputType(2), CG::pointerT(CG::staticUnknownMatrixT(CG::singleT())));
    EXPECT_STREQ(qre.getInputName(9), "economy");
    EXPECT_STREQ(qre.getOutputName(0), "noOutput");
}

}  // namespace
